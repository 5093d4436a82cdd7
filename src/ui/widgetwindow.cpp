#include "ui/widgetwindow.h"

#include "document/mainwincontroller.h"
#include "document/providersheet.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "ui/alertbox.h"
#include "ui/filepanels.h"
#include "ui/framewindow.h"
#include "ui/itempanel.h"
#include "ui/logprinter.h"
#include "ui/outcomebanner.h"
#include "ui/providernamesheet.h"
#include "ui/relaunchplace.h"
#include "ui/setupdialog.h"
#include "ui/shown.h"
#include "ui/windoworder.h"

#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QInputMethod>
#include <QPrintDialog>
#include <QPrinter>
#include <QScreen>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;
using Ending = platform::FileChooserPortal::Ending;
using Kind = platform::FileChooserPortal::Kind;

namespace sealwright {

namespace {

constexpr QSize largestFrame(4096, 4096); // or that of all screens together; the host keeps an image of each

qint16 side(int position)
{
    using Side = std::numeric_limits<qint16>;
    return qint16(std::clamp<int>(position, Side::min(), Side::max()));
}

QString saveLogTitle()
{
    return QCoreApplication::translate("WidgetWindow", "Save Log As");
}

/// One that stands on the page, and begins where ours would.
filepanels::DesktopPanel *makeDesktopPanel(DocumentPage &page, const PanelFolder &folder,
                                           platform::FileChooserPortal::Question question)
{
    question.parent = filepanels::portalNameOf(page);
    question.folder = folder.path();
    return new filepanels::DesktopPanel(*filepanels::desktopPanels(), question, &page);
}

/// What the panel's owner would have had enabled.
bool mayBeChosen(const platform::OpenPanel &panel, const QUrl &item)
{
    return panel.allowedFileTypes.contains(itempath::lowerExtension(itempath::fromUrl(item)))
        && (!panel.shouldEnable || panel.shouldEnable(item));
}

/// The rectangle as one counts from the other end of the main screen's height.
QRect turnedOver(const QRect &place)
{
    const int height = QGuiApplication::primaryScreen()->geometry().height();
    return {place.x(), height - place.y() - place.height(), place.width(), place.height()};
}

} // namespace

WidgetWindow::WidgetWindow(MainWinController &document, WindowOrder &order, LogPrinter &printer,
                           PanelFolder &panelFolder)
    : m_document(document)
    , m_order(order)
    , m_printer(printer)
    , m_panelFolder(panelFolder)
    , m_page(document)
{
    // There a run can be cancelled, whatever is asked.
    m_sheets.leaveUncovered(m_page.header(),
                            [&document] { return document.progressIndicator.isAnimating(); });
    QObject::connect(&document.progressIndicator, &Control::changed, &m_sheets, &Sheets::heedUse);
    QObject::connect(&m_page.setupBanner(), &SetupBanner::wanted, &m_page,
                     [this](SetupRoad road) { beginSetup(road); });
    auto *const frame = new FrameWindow(order);
    relaunchplace::takeUp(document.host().preferences, *frame);
    frame->insertWindow(*this, 0);
}

WidgetWindow::~WidgetWindow()
{
    m_sheets.drop();
    frameWindow()->release(*this);
}

FrameWindow *WidgetWindow::frameWindow() const
{
    return qobject_cast<FrameWindow *>(m_page.window());
}

QWidget &WidgetWindow::widget()
{
    return *frameWindow();
}

platform::TabGroup &WidgetWindow::tabGroup() const
{
    return *frameWindow();
}

void WidgetWindow::show()
{
    if (m_isClosed)
        return;
    const auto frames = m_order.framesFrontToBack();
    const bool isNew = !m_order.contains(*frameWindow());
    if (isNew && m_tabbingMode == platform::TabbingMode::preferred && !frames.isEmpty())
        frames.first()->insertWindow(*this, frames.first()->count());
    frameWindow()->setSelectedWindow(*this);
    frameWindow()->comeToFront();
    m_page.activateWindow();
}

// Its place

QRect WidgetWindow::frame() const
{
    return turnedOver(place());
}

void WidgetWindow::setFrame(const QRect &frame)
{
    setPlace(turnedOver(frame));
}

platform::QDRect WidgetWindow::boundsAsQDRect() const
{
    const QRect bounds = place();
    return {.top = side(bounds.y()),
            .left = side(bounds.x()),
            .bottom = side(bounds.y() + bounds.height()),
            .right = side(bounds.x() + bounds.width())};
}

void WidgetWindow::setBoundsAsQDRect(const platform::QDRect &bounds)
{
    setPlace({bounds.left, bounds.top, bounds.right - bounds.left, bounds.bottom - bounds.top});
}

QRect WidgetWindow::place() const
{
    return frameWindow()->frameGeometry();
}

void WidgetWindow::setPlace(const QRect &place)
{
    FrameWindow &frame = *frameWindow();
    const QSize size = place.size().boundedTo(largestFrame.expandedTo(frame.screen()->virtualSize()));
    frame.resize(size - (frame.frameGeometry().size() - frame.size()));
    frame.move(place.topLeft());
}

void WidgetWindow::orderAbove(qint64 windowNumber)
{
    if (windowNumber == 0 && !m_isClosed) // this desktop's windows have no numbers
        frameWindow()->comeToFront();
}

// Editing

void WidgetWindow::endEditing()
{
    // What is typed is in the control at once, but for what an input method still composes.
    if (m_page.isVisible() && m_page.isActiveWindow())
        QGuiApplication::inputMethod()->commit();
}

bool WidgetWindow::makeNothingFirstResponder()
{
    if (auto *const widget = m_page.focusWidget())
        widget->clearFocus();
    return true;
}

// Closing

void WidgetWindow::performClose()
{
    if (hasSheet())
        return insistOnSheet();
    if (!m_delegate.shouldClose || m_delegate.shouldClose())
        return close();
    FrameWindow &frame = *frameWindow();
    if (!frame.selected().hasSheet())
        frame.setSelectedWindow(*this); // the question is not asked out of sight
}

void WidgetWindow::insistOnSheet()
{
    frameWindow()->setSelectedWindow(*this);
    m_sheets.activate();
    QApplication::beep();
}

void WidgetWindow::close()
{
    if (std::exchange(m_isClosed, true))
        return;
    m_sheets.drop();
    frameWindow()->putAway(*this);
    if (m_delegate.willClose)
        m_delegate.willClose();
}

// Sheets

void WidgetWindow::beginSheet(const platform::Alert &alert, std::function<void(int)> completion)
{
    if (m_isClosed)
        return;
    m_page.banner().heedSheet(alert);
    auto *const box = new AlertBox(alert, &m_page);
    m_sheets.begin(box, [box, completion = std::move(completion)] { completion(box->answer()); });
}

void WidgetWindow::beginSheetNamed(const QString &interfaceName, std::function<void(int)> completion)
{
    if (m_isClosed || interfaceName != providerNameSheet) // the only one there is
        return;
    m_namedSheet = new ProviderNameSheet(m_document, &m_page);
    m_sheets.begin(m_namedSheet, [sheet = m_namedSheet.get(), completion = std::move(completion)] {
        completion(sheet->result());
    });
}

void WidgetWindow::endSheet(int returnCode)
{
    if (m_namedSheet)
        m_namedSheet->done(returnCode);
}

void WidgetWindow::beginOpenPanel(const platform::OpenPanel &panel,
                                  std::function<void(const QUrl &)> completion)
{
    if (m_isClosed)
        return;
    if (filepanels::suitsTheDesktop(panel) && filepanels::desktopPanels())
        beginDesktopPanel(panel, std::move(completion));
    else
        beginOwnPanel(panel, std::move(completion));
}

void WidgetWindow::beginOwnPanel(const platform::OpenPanel &panel,
                                 std::function<void(const QUrl &)> completion)
{
    auto *const dialog = new ItemPanel(panel, m_panelFolder.path(), &m_page);
    m_sheets.begin(dialog, [this, dialog, completion = std::move(completion)] {
        m_panelFolder.remember(dialog->chosenItem());
        completion(dialog->chosenItem());
    });
}

void WidgetWindow::beginDesktopPanel(const platform::OpenPanel &panel,
                                     std::function<void(const QUrl &)> completion)
{
    auto *const dialog = makeDesktopPanel(
        m_page, m_panelFolder,
        {.kind = Kind::openFile, .title = shown(panel.message), .extensions = panel.allowedFileTypes});
    m_sheets.begin(dialog, [this, dialog, panel, completion = std::move(completion)] {
        const auto &answer = dialog->answer();
        const QUrl chosen = answer.path.isEmpty() ? QUrl() : itempath::toUrl(answer.path);
        if (answer.ending == Ending::failed)
            return beginOwnPanel(panel, completion);
        if (!chosen.isEmpty() && !mayBeChosen(panel, chosen)) {
            QApplication::beep(); // the desktop cannot turn single files off
            return beginOpenPanel(panel, completion);
        }
        m_panelFolder.remember(chosen);
        completion(chosen);
    });
}

void WidgetWindow::beginSetup(SetupRoad road)
{
    beginDialog(*new SetupDialog(m_document, road, &m_page), [] {});
}

void WidgetWindow::sayWhereItLies(const QString &path)
{
    const auto text = [](const char *source) { return QCoreApplication::translate("WidgetWindow", source); };
    if (m_isClosed)
        return;
    auto *const box = new AlertBox(
        {text(QT_TRANSLATE_NOOP("WidgetWindow", "No File Manager")),
         text(QT_TRANSLATE_NOOP("WidgetWindow", "Nothing here shows folders. It lies at:\n%1")).arg(path),
         {u"OK"_s, text(QT_TRANSLATE_NOOP("WidgetWindow", "Copy Path"))}},
        &m_page);
    beginDialog(*box, [box, path] {
        if (box->answer() == platform::alertSecondButton)
            QGuiApplication::clipboard()->setText(path);
    });
}

void WidgetWindow::beginDialog(QDialog &dialog, std::function<void()> completion)
{
    m_sheets.begin(&dialog, std::move(completion));
}

void WidgetWindow::printLog()
{
    if (m_isClosed)
        return;
    QPrintDialog *const dialog = m_printer.makeDialog(title(), &m_page);
    m_sheets.begin(dialog, [this, dialog] {
        if (dialog->result() == QDialog::Accepted)
            m_page.printLog(*dialog->printer());
    });
}

void WidgetWindow::saveLog()
{
    if (m_isClosed)
        return;
    if (filepanels::desktopPanels())
        saveLogByTheDesktop();
    else
        saveLogByOurs();
}

QString WidgetWindow::nameOfLog() const
{
    return title().replace(u'/', u'-') + u" log.txt"_s;
}

void WidgetWindow::saveLogByOurs()
{
    auto *const dialog = new QFileDialog(&m_page, saveLogTitle(), m_panelFolder.path());
    dialog->setObjectName(u"saveLogPanel"_s);
    dialog->setOption(QFileDialog::DontUseNativeDialog); // a sheet is drawn inside of its page
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(u"txt"_s);
    dialog->selectFile(nameOfLog());
    m_sheets.begin(dialog, [this, dialog] {
        if (dialog->result() == QDialog::Accepted && !dialog->selectedFiles().isEmpty())
            writeLog(dialog->selectedFiles().first());
    });
}

void WidgetWindow::saveLogByTheDesktop()
{
    auto *const dialog = makeDesktopPanel(
        m_page, m_panelFolder, {.kind = Kind::saveFile, .title = saveLogTitle(), .name = nameOfLog()});
    m_sheets.begin(dialog, [this, dialog] {
        if (dialog->answer().ending == Ending::failed)
            saveLogByOurs();
        else if (!dialog->answer().path.isEmpty())
            writeLog(dialog->answer().path);
    });
}

void WidgetWindow::writeLog(const QString &path)
{
    const QString text = m_document.statusTextView.string();
    const auto written = m_document.host().files.writeFileAtomically(path, text.toUtf8());
    if (!written)
        beginSheet({QCoreApplication::translate("WidgetWindow", "The log is not saved"), written.error(), {}},
                   [](int) {});
}

} // namespace sealwright
