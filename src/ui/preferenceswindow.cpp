#include "ui/preferenceswindow.h"

#include "app/preferencekeys.h"
#include "ui/named.h"
#include "ui/notaryservicerow.h"
#include "ui/settingssection.h"
#include "ui/spacing.h"
#include "ui/toolfolderrow.h"
#include "ui/toplevel.h"

#include <QApplication>
#include <QBoxLayout>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QScreen>
#include <QScrollArea>
#include <QStackedWidget>

using namespace Qt::StringLiterals;

namespace sealwright {

using icons::Command;

namespace {

constexpr int charactersAcross = 92; // of a page
constexpr int titleBarHeight = 40; // about what a desktop adds on top
constexpr int sparedLines = 2; // for what comes up below a field
constexpr int rowPadding = 8; // pixels round a row of the list
constexpr int betweenRows = 4; // pixels

} // namespace

void PreferencesWindow::present(platform::Preferences &preferences, const KeychainTools &keychain)
{
    PreferencesWindow *window = nullptr;
    for (QWidget *const top : QApplication::topLevelWidgets()) {
        if (auto *const open = qobject_cast<PreferencesWindow *>(top))
            window = open;
    }
    if (!window) {
        window = new PreferencesWindow(preferences, keychain);
        window->setAttribute(Qt::WA_DeleteOnClose);
        toplevel::placeOver(*window, QApplication::activeWindow());
    }
    toplevel::bringToFront(*window);
    window->activateWindow();
}

PreferencesWindow::PreferencesWindow(platform::Preferences &preferences,
                                     std::optional<KeychainTools> keychain)
    : m_preferences(preferences)
    , m_keychain(keychain && keychain->isThere() ? std::move(keychain) : std::nullopt)
    , m_list(named(new QListWidget(this), u"settingsPages"_s, tr("Pages")))
    , m_pages(new QStackedWidget(this))
{
    setWindowTitle(tr("Settings"));
    const int picture = m_list->fontMetrics().height();
    m_list->setIconSize({picture, picture});
    m_list->setSpacing(betweenRows);
    addPage(tr("Signing"), Command::sign, &PreferencesWindow::addSigning);
    addPage(tr("Notarization"), Command::submit, &PreferencesWindow::addNotarization);
    addPage(tr("Log"), Command::selectAll, &PreferencesWindow::addLog);
    addPage(tr("Tools"), Command::settings, &PreferencesWindow::addTools);
    connect(m_list, &QListWidget::currentRowChanged, m_pages, &QStackedWidget::setCurrentIndex);
    showPage(Page::signing);
    arrange();
    toplevel::closeByKeys(*this);
}

void PreferencesWindow::showPage(Page page)
{
    m_list->setCurrentRow(static_cast<int>(page));
}

void PreferencesWindow::closeEvent(QCloseEvent *event)
{
    if (QWidget *const edited = focusWidget())
        edited->clearFocus(); // what is being typed counts
    QWidget::closeEvent(event);
    Q_EMIT closed();
}

int PreferencesWindow::heightOf(QWidget &page, int width)
{
    page.ensurePolished();
    page.layout()->activate();
    return page.heightForWidth(width) + page.fontMetrics().lineSpacing() * sparedLines;
}

/// As wide and high as the largest page wants it, on a screen that has the room.
void PreferencesWindow::arrange()
{
    auto *const columns = new QHBoxLayout(this);
    columns->setContentsMargins(0, 0, 0, 0);
    columns->addWidget(m_list);
    columns->addWidget(m_pages, 1);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setFixedWidth(m_list->sizeHintForColumn(0) + 2 * m_list->spacing());
    const int pageWidth = fontMetrics().averageCharWidth() * charactersAcross;
    int height = 0;
    for (auto *const scroll : m_pages->findChildren<QScrollArea *>(Qt::FindDirectChildrenOnly))
        height = qMax(height, heightOf(*scroll->widget(), pageWidth));
    const QSize wanted(m_list->width() + pageWidth, height);
    resize(wanted.boundedTo(screen()->availableSize() - QSize(0, titleBarHeight)));
}

void PreferencesWindow::addPage(const QString &title, icons::Command picture,
                                void (PreferencesWindow::*fill)(SettingsSection &))
{
    auto *const item = new QListWidgetItem(icons::of(picture), title, m_list);
    const int width = m_list->iconSize().width() + m_list->fontMetrics().horizontalAdvance(title);
    item->setSizeHint(QSize(width + 4 * spacing::edge, m_list->fontMetrics().height() + 2 * rowPadding));
    auto *const scroll = new QScrollArea(m_pages);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setFocusPolicy(Qt::NoFocus);
    auto *const section = new SettingsSection(m_preferences, scroll);
    section->addTitle(title);
    (this->*fill)(*section);
    section->fillUp();
    scroll->setWidget(section);
    toplevel::keepFocusInSight(*scroll);
    m_pages->addWidget(scroll);
}

void PreferencesWindow::addSigning(SettingsSection &section)
{
    section.addCheckbox(key::prefCodesignForce, tr("&Replace signatures that are there"),
                        tr("Without it, codesign refuses code that is signed already."));
    section.addCheckbox(key::prefCodesignDeep, tr("Have codesign sign &nested code too"),
                        tr("Rarely needed: nested code is signed piece by piece in any case."));
    section.addCheckbox(key::prefDoPostCodesignCheck, tr("&Verify after signing"),
                        tr("spctl assesses what was signed, if it is no disk image. Its answer is for the "
                           "log file; the upload goes on."));
}

void PreferencesWindow::addNotarization(SettingsSection &section)
{
    constexpr double mostFailures = 1'000'000;
    if (m_keychain) {
        auto *const service = new NotaryServiceRow(*m_keychain, &section);
        section.addField(service, service->choice(), tr("Notary &service"),
                         tr("Which service the tools ask. The one of this machine is for practice: nobody "
                            "else accepts what it notarizes."));
    }
    section.addCheckbox(key::preferXcodeAltool, tr("Prefer the notary tool of &Xcode"),
                        tr("Otherwise that of Transporter comes first. Takes effect at the next launch."));
    section.addSeconds(key::pollingDelay, tr("&Ask for the verdict every"),
                       {shortestPollingDelay, longestPollingDelay, 5, 1},
                       tr("From 20 to 300 seconds. A verdict usually takes several minutes."));
    section.addNumber(key::prefRetryLimitFor239Failure, tr("&Give up after"),
                      {lowestRetryLimit, mostFailures}, tr("failures"),
                      tr("Failures with code 239, which pass by themselves when the service is busy."));
    section.addCheckbox(
        key::resumeWaiting, tr("Go on &waiting by itself at launch"),
        tr("For what an earlier launch has left. Otherwise the window says what still waits, and asks."));
    section.addCheckbox(key::userInfoShowWhenActive, tr("Notif&y me while Sealwright is in front"),
                        tr("Otherwise a verdict is announced only while you work in another program."));
    section.addCheckbox(key::notifiesOfEndings, tr("Announce the &end of a run in the background"),
                        tr("While no window of Sealwright is active; a click leads to the document."));
}

void PreferencesWindow::addLog(SettingsSection &section)
{
    constexpr double leastSize = 6;
    constexpr double mostSize = 72;
    section.addCheckbox(key::detailedLogToFile, tr("Keep a detailed &log beside the item"),
                        tr("“Submission Log.txt” has every line of the window and each tool's full report."));
    section.addNumber(key::logFontSize, tr("Text si&ze in the window"), {leastSize, mostSize}, tr("points"),
                      tr("12 is as large as the rest of the window. Counts from the next line on."));
}

void PreferencesWindow::addTools(SettingsSection &section)
{
    constexpr double longestPause = 10;
    auto *const folder = new ToolFolderRow(m_preferences, &section);
    section.addField(folder, folder->field(), tr("&Folder of tools"),
                     tr("Holds tools at Apple's paths, such as usr/bin/codesign. Takes effect at the next "
                        "launch."));
    section.addSeconds(key::toolPause, tr("&Pause after each tool"), {0, longestPause, 0.05, 2},
                       tr("0 is safe on this system. Counts for documents opened from now on."));
}

} // namespace sealwright
