#include "ui/commandbar.h"

#include "document/mainwincontroller.h"
#include "ui/bindings.h"
#include "ui/keepplace.h"
#include "ui/named.h"
#include "ui/settingrows.h"
#include "ui/shown.h"

#include <QBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr int mostPages = 99'999;
constexpr int digitsAcross = 7;

/// Puts the number of pages that is in force in the place of a text that is none, when the edit ends.
class PagesValidator : public QIntValidator {
public:
    PagesValidator(const MainWinController &document, QObject *parent)
        : QIntValidator(1, mostPages, parent)
        , m_document(document)
    {
    }

    void fixup(QString &text) const override { text = QString::number(m_document.maxPageCount()); }

private:
    const MainWinController &m_document;
};

/// As wide as the widest of the titles that a button has in the course of time.
void makeRoomFor(QPushButton &push, const QStringList &titles)
{
    const QFontMetrics metrics = push.fontMetrics();
    const int border = push.sizeHint().width() - metrics.horizontalAdvance(push.text());
    for (const QString &title : titles)
        push.setMinimumWidth(qMax(push.minimumWidth(), metrics.horizontalAdvance(shown(title)) + border));
}

} // namespace

CommandBar::CommandBar(MainWinController &document, QWidget *parent)
    : TwoPartRow(parent)
    , m_document(document)
{
    addHistory(first());
    QPushButton *const sign = makeButton(document.signOnlyButton, u"signOnlyButton"_s);
    QPushButton *const staple = makeButton(document.stapleOnlyButton, u"stapleOnlyButton"_s);
    m_submit = makeButton(document.submitAppButton, u"submitAppButton"_s);
    makeRoomFor(*staple, {u"Cancel"_s, u"Staple Only…"_s});
    makeRoomFor(*m_submit, {u"Submit Now"_s, u"Submit…"_s});
    for (QPushButton *const button : {sign, staple, m_submit})
        second().addWidget(button);
    m_submit->setDefault(true);
}

void CommandBar::pressPrimaryButton()
{
    m_submit->click();
}

void CommandBar::pressButtonOf(const QLineEdit &field)
{
    (&field == m_pages ? m_fetchHistory : m_submit)->click();
}

void CommandBar::addHistory(QBoxLayout &row)
{
    m_fetchHistory = makeButton(m_document.fetchHistoryButton, u"fetchHistoryButton"_s);
    row.addWidget(m_fetchHistory);
    auto *const label = new QLabel(this);
    label->setObjectName(u"historyMaxPagesLabel"_s);
    bindings::bind(*label, m_document.historyMaxPagesLabel);
    keepPlace(*label);
    m_pages = makePages();
    label->setBuddy(m_pages);
    label->setToolTip(m_pages->toolTip());
    row.addWidget(label);
    row.addWidget(m_pages);
}

QLineEdit *CommandBar::makePages()
{
    auto *const pages = named(new QLineEdit(this), u"historyMaxPagesField"_s,
                              shown(m_document.historyMaxPagesLabel.stringValue()));
    pages->setToolTip(tr("More pages of the history than this are not asked for. Return fetches it."));
    pages->setValidator(new PagesValidator(m_document, pages));
    pages->setFixedWidth(pages->fontMetrics().horizontalAdvance(u'0') * digitsAcross);
    pages->setAcceptDrops(false);
    keepPlace(*pages);
    bindings::bind(*pages, m_document.historyMaxPagesField);
    return pages;
}

QPushButton *CommandBar::makeButton(Button &button, const QString &name)
{
    auto *const push = new QPushButton(this);
    push->setObjectName(name);
    push->setAutoDefault(false);
    keepPlace(*push);
    bindings::bind(*push, button, [this](Action action) { m_document.perform(action); });
    settingrows::offerWhenIdle(*push, button, m_document);
    return push;
}

} // namespace sealwright
