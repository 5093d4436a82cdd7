#include "ui/documentpage.h"

#include "app/appdelegate.h"
#include "document/documentcommands.h"
#include "document/mainwincontroller.h"
#include "platform/itempath.h"
#include "run/item.h"
#include "run/status.h"
#include "run/waits.h"
#include "ui/commandbar.h"
#include "ui/dropoverlay.h"
#include "ui/itemheader.h"
#include "ui/itemlook.h"
#include "ui/lockedbanner.h"
#include "ui/logpane.h"
#include "ui/logview.h"
#include "ui/outcomebanner.h"
#include "ui/pageparts.h"
#include "ui/progresstext.h"
#include "ui/runpanes.h"
#include "ui/settingspane.h"
#include "ui/setupbanner.h"
#include "ui/spacing.h"
#include "ui/uploadprogress.h"
#include "ui/waitingbanner.h"

#include <QBoxLayout>
#include <QDropEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMimeData>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr int lowPage = 640; // pixels, less than a window on a screen of 1024 by 768 has

/// Of what is dragged, the items that would be taken.
QStringList itemsOf(const QMimeData &data, const platform::Host &host)
{
    QStringList items;
    for (const QUrl &url : data.urls()) {
        const QString path = url.isLocalFile() ? itempath::fromUrl(url) : QString();
        if (submittableExtensions().contains(itempath::extension(path)) || waits::isFolderOfOne(host, path))
            items.append(path);
    }
    return items;
}

/// Whatever is proposed: an owner who was told of a move would take the files away.
void acceptCopy(QDropEvent &event)
{
    event.setDropAction(Qt::CopyAction);
    event.accept();
}

} // namespace

DocumentPage::DocumentPage(MainWinController &document)
    : m_document(document)
    , m_look(new ItemLook(document, this))
    , m_header(new ItemHeader(document, *m_look, this))
    , m_setupBanner(new SetupBanner(document, this))
    , m_banner(new OutcomeBanner(document, this))
    , m_dropOutline(new DropOverlay(this))
{
    setAcceptDrops(true);
    new UploadProgress(document, this);
    auto *const rows = new QVBoxLayout(this);
    rows->setContentsMargins(spacing::edge, spacing::between, spacing::edge, spacing::between);
    rows->addWidget(m_header);
    rows->addWidget(m_setupBanner);
    auto *const locked = new LockedBanner(document, this);
    rows->addWidget(locked);
    rows->addWidget(m_banner);
    rows->addWidget(new WaitingBanner(document, this));
    rows->addWidget(makeParts(), 1);
    m_commands = new CommandBar(document, this); // after what stands above it: the keyboard goes that way
    rows->addWidget(m_commands);
    setStatusWord(document.statusString());
    connect(&document.stepList, &Observable::changed, this, &DocumentPage::progressed); // after the banner
    findChild<QWidget *>(u"appleIDField"_s)->setFocus();
    m_banners = {m_setupBanner, locked, m_banner, findChild<WaitingBanner *>()};
    for (QWidget *const banner : m_banners)
        banner->installEventFilter(this);
    shareRoom();
}

void DocumentPage::shareRoom()
{
    const bool isCrowded = std::any_of(m_banners.cbegin(), m_banners.cend(),
                                       [](const QWidget *banner) { return !banner->isHidden(); });
    const bool hasLittleRoom = isCrowded || height() < lowPage;
    m_logPane->setRoom(hasLittleRoom ? LogPane::Room::little : LogPane::Room::plenty);
}

void DocumentPage::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    shareRoom();
}

bool DocumentPage::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ShowToParent || event->type() == QEvent::HideToParent)
        shareRoom();
    return QWidget::eventFilter(watched, event);
}

QWidget *DocumentPage::makeParts()
{
    auto *const settings = new SettingsPane(m_document, this);
    auto *const run = new RunPanes(m_document, *m_look, this);
    m_logPane = &run->log();
    return new PageParts(*settings, *run, this);
}

QWidget &DocumentPage::header() const
{
    return *m_header;
}

FindBar &DocumentPage::findBar() const
{
    return m_logPane->findBar();
}

void DocumentPage::pressPrimaryButton()
{
    m_commands->pressPrimaryButton();
}

void DocumentPage::setStatusWord(const QString &word)
{
    m_header->setStatusWord(word);
}

std::optional<StepState> DocumentPage::runState() const
{
    const StepList &steps = m_document.stepList;
    if (steps.running())
        return StepState::running;
    const RunOutcome::Kind kind = m_banner->outcome().kind;
    if (kind == RunOutcome::Kind::none || kind == RunOutcome::Kind::waiting)
        return std::nullopt;
    return stateOf(kind);
}

QString DocumentPage::progress() const
{
    // A countdown would stand still there: nobody is told of each second.
    const bool isWaiting = m_document.stepList.wait().has_value();
    const QString present = isWaiting ? QString() : progresstext::present(m_document.stepList);
    return present.isEmpty() && runState() ? m_banner->outcome().title : present;
}

void DocumentPage::rememberFocus()
{
    if (focusWidget()) // not in a frame where the page has never been on show
        m_lastFocus = focusWidget();
}

void DocumentPage::restoreFocus()
{
    // What shows a page for the first time gives the keyboard to the first of its parts.
    QWidget *const remembered = std::exchange(m_lastFocus, nullptr).get();
    if (QWidget *const focused = remembered ? remembered : focusWidget())
        focused->setFocus();
}

void DocumentPage::printLog(QPagedPaintDevice &paper) const
{
    m_logPane->log().printOn(paper);
}

void DocumentPage::dragEnterEvent(QDragEnterEvent *event)
{
    const QStringList items = itemsOf(*event->mimeData(), m_document.host());
    if (items.isEmpty())
        return;
    acceptCopy(*event);
    const FirstItem first = isWithoutItem() ? FirstItem::staysHere : FirstItem::opensElsewhere;
    m_dropOutline->showFor(items, dropSentence(m_document, items, first));
}

void DocumentPage::dragLeaveEvent(QDragLeaveEvent *)
{
    m_dropOutline->hide();
}

void DocumentPage::dropEvent(QDropEvent *event)
{
    m_dropOutline->hide();
    acceptCopy(*event);
    QStringList items = itemsOf(*event->mimeData(), m_document.host());
    if (!items.isEmpty() && isWithoutItem())
        takeHere(items.takeFirst());
    if (!items.isEmpty())
        m_document.appDelegate().applicationOpenFiles(items);
}

void DocumentPage::takeHere(const QString &path)
{
    if (waits::isFolderOfOne(m_document.host(), path))
        m_document.commands().resume.goOnInFolder(path);
    else
        m_document.commands().submit.prepareForDirectSubmit(itempath::toUrl(path), {});
}

/// Whether an item that is dropped here can stay, with what has been typed for it.
bool DocumentPage::isWithoutItem() const
{
    return !m_document.isBusy() && m_document.statusString() == status::ready
        && m_document.appletNameField.stringValue().isEmpty();
}

void DocumentPage::keyPressEvent(QKeyEvent *event)
{
    // A default button has the key from elsewhere in a dialog only, and a page is none.
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool isPlain = !(event->modifiers() & ~Qt::KeypadModifier) && !event->isAutoRepeat();
    const auto *const field = qobject_cast<QLineEdit *>(focusWidget());
    if (isReturn && isPlain && field)
        m_commands->pressButtonOf(*field);
    else
        QWidget::keyPressEvent(event);
}

} // namespace sealwright
