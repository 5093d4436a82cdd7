#include "ui/documentpage.h"

#include "app/appdelegate.h"
#include "document/mainwincontroller.h"
#include "platform/itempath.h"
#include "ui/bindings.h"
#include "ui/busybar.h"
#include "ui/logview.h"
#include "ui/named.h"
#include "ui/settingspane.h"

#include <QBoxLayout>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

constexpr int progressWidth = 120;
constexpr int leastLogLines = 4;
constexpr qreal itemNameScale = 1.25;

QStringList pathsOf(const QMimeData &data)
{
    QStringList paths;
    for (const QUrl &url : data.urls()) {
        if (url.isLocalFile())
            paths.append(itempath::fromUrl(url));
    }
    return paths;
}

} // namespace

DocumentPage::DocumentPage(MainWinController &document)
    : m_document(document)
{
    setAcceptDrops(true);
    auto *const rows = new QVBoxLayout(this);
    addHeader(*rows);
    rows->addWidget(new SettingsPane(document, this));
    addLog(*rows);
    addCommands(*rows);
    setStatusWord(document.statusString());
    findChild<QWidget *>(u"appleIDField"_s)->setFocus();
}

void DocumentPage::setStatusWord(const QString &word)
{
    m_statusWord->setText(word);
}

void DocumentPage::rememberFocus()
{
    if (focusWidget()) // not in a frame where the page has never been on show
        m_lastFocus = focusWidget();
}

void DocumentPage::restoreFocus()
{
    if (QWidget *const focused = focusWidget() ? focusWidget() : m_lastFocus.get())
        focused->setFocus();
}

void DocumentPage::printLog(QPagedPaintDevice &paper) const
{
    m_log->print(&paper);
}

void DocumentPage::addHeader(QBoxLayout &rows)
{
    auto *const header = new QHBoxLayout;
    header->addWidget(makeItemName(), 1);
    m_statusWord = new QLabel(this);
    m_statusWord->setObjectName(u"statusString"_s);
    m_statusWord->setTextFormat(Qt::PlainText);
    header->addWidget(m_statusWord);
    auto *const progress = named(new BusyBar(this), u"progressIndicator"_s, u"Progress"_s);
    progress->setFixedWidth(progressWidth);
    QSizePolicy policy = progress->sizePolicy();
    policy.setRetainSizeWhenHidden(true); // so that nothing moves when a run starts
    progress->setSizePolicy(policy);
    bindings::bind(*progress, m_document.progressIndicator);
    header->addWidget(progress);
    header->addWidget(makeCancelButton());
    rows.addLayout(header);
}

QWidget *DocumentPage::makeItemName()
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

QWidget *DocumentPage::makeCancelButton()
{
    auto *const cancel = named(new QPushButton(u"&Cancel"_s, this), u"cancelButton"_s, u"Cancel"_s);
    cancel->setToolTip(u"Stops the run in progress"_s);
    const auto showCanCancel = [this, cancel] { cancel->setEnabled(m_document.canCancel()); };
    connect(&m_document.canCancel, &Observable::changed, cancel, showCanCancel);
    showCanCancel();
    connect(cancel, &QPushButton::clicked, this, [this] { m_document.perform(Action::doCancel); });
    return cancel;
}

void DocumentPage::addLog(QBoxLayout &rows)
{
    const QString label = u"Log"_s;
    m_log = named(new LogView(m_document.statusTextView, this), u"statusTextView"_s, label);
    m_log->setAcceptDrops(false);
    m_log->setMinimumHeight(leastLogLines * m_log->fontMetrics().lineSpacing());
    auto *const caption = new QLabel(label, this);
    caption->setBuddy(m_log);
    rows.addWidget(caption);
    rows.addWidget(m_log, 1);
}

void DocumentPage::addCommands(QBoxLayout &rows)
{
    auto *const commands = new QHBoxLayout;
    commands->addStretch(1);
    commands->addWidget(makeStapleButton());
    commands->addWidget(makeSubmitButton());
    rows.addLayout(commands);
}

QWidget *DocumentPage::makeStapleButton()
{
    Button &button = m_document.stapleOnlyButton;
    auto *const push = new QPushButton(this);
    push->setObjectName(u"stapleOnlyButton"_s);
    bindings::bind(*push, button, [this](Action action) { m_document.perform(action); });
    const auto showIfOffered = [&button, push] {
        push->setVisible(button.action() == Action::doCancelDirectSubmit && !button.isHidden());
    };
    connect(&button, &Control::changed, push, showIfOffered);
    showIfOffered();
    return push;
}

QWidget *DocumentPage::makeSubmitButton()
{
    auto *const push = new QPushButton(this);
    push->setObjectName(u"submitAppButton"_s);
    bindings::bind(*push, m_document.submitAppButton, [this](Action action) { m_document.perform(action); });
    // A document runs one workflow at a time; the spinner turns for as long as one runs.
    const auto offerWhenIdle = [this, push] {
        push->setEnabled(m_document.submitAppButton.isEnabled()
                         && !m_document.progressIndicator.isAnimating());
    };
    connect(&m_document.submitAppButton, &Control::changed, push, offerWhenIdle);
    connect(&m_document.progressIndicator, &Control::changed, push, offerWhenIdle);
    offerWhenIdle();
    push->setDefault(true);
    return push;
}

void DocumentPage::dragEnterEvent(QDragEnterEvent *event)
{
    if (!pathsOf(*event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void DocumentPage::dropEvent(QDropEvent *event)
{
    event->acceptProposedAction();
    m_document.appDelegate().applicationOpenFiles(pathsOf(*event->mimeData()));
}
