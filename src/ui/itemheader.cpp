#include "ui/itemheader.h"

#include "document/mainwincontroller.h"
#include "ui/bindings.h"
#include "ui/busybar.h"
#include "ui/keepplace.h"
#include "ui/named.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

constexpr int progressWidth = 140;
constexpr qreal itemNameScale = 1.35;

} // namespace

ItemHeader::ItemHeader(MainWinController &document, QWidget *parent)
    : QWidget(parent)
    , m_document(document)
    , m_statusWord(new QLabel(this))
{
    m_statusWord->setObjectName(u"statusString"_s);
    m_statusWord->setTextFormat(Qt::PlainText);
    auto *const grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setVerticalSpacing(2);
    grid->setColumnStretch(0, 1);
    grid->addWidget(makeItemName(), 0, 0);
    grid->addWidget(m_statusWord, 1, 0);
    grid->addWidget(makeProgress(), 0, 1, 2, 1, Qt::AlignVCenter);
    grid->addWidget(makeCancelButton(), 0, 2, 2, 1, Qt::AlignVCenter);
}

void ItemHeader::setStatusWord(const QString &word)
{
    m_statusWord->setText(word);
}

QWidget *ItemHeader::makeItemName()
{
    auto *const name = named(new QLineEdit(this), u"appletNameField"_s, u"Item"_s);
    name->setReadOnly(true);
    name->setFrame(false);
    name->setAcceptDrops(false);
    name->setPlaceholderText(u"No item chosen"_s);
    QPalette palette = name->palette();
    palette.setColor(QPalette::Base, Qt::transparent);
    name->setPalette(palette);
    QFont font = name->font();
    font.setPointSizeF(font.pointSizeF() * itemNameScale);
    font.setBold(true);
    name->setFont(font);
    bindings::bind(*name, m_document.appletNameField);
    return name;
}

BusyBar *ItemHeader::makeProgress()
{
    auto *const progress = named(new BusyBar(this), u"progressIndicator"_s, u"Progress"_s);
    progress->setFixedWidth(progressWidth);
    keepPlace(*progress);
    bindings::bind(*progress, m_document.progressIndicator);
    return progress;
}

QPushButton *ItemHeader::makeCancelButton()
{
    auto *const cancel = named(new QPushButton(u"Cancel"_s, this), u"cancelButton"_s, u"Cancel"_s);
    cancel->setToolTip(u"Stops the run in progress (Ctrl+.)"_s);
    cancel->setShortcut(QKeySequence(u"Ctrl+."_s));
    cancel->setAutoDefault(false);
    keepPlace(*cancel);
    const auto show = [this, cancel] {
        cancel->setEnabled(m_document.canCancel());
        cancel->setVisible(m_document.canCancel() || m_document.progressIndicator.isAnimating());
    };
    connect(&m_document.canCancel, &Observable::changed, cancel, show);
    connect(&m_document.progressIndicator, &Control::changed, cancel, show);
    show();
    connect(cancel, &QPushButton::clicked, this, [this] { m_document.perform(Action::doCancel); });
    return cancel;
}
