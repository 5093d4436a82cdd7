#include "app/appdelegate.h"

#include "about/aboutcontroller.h"
#include "app/keychaintools.h"
#include "app/logging.h"
#include "app/preferencekeys.h"
#include "document/documentcommands.h"
#include "document/documentdefaults.h"
#include "document/windowfactory.h"
#include "platform/applicationhost.h"
#include "platform/itempath.h"
#include "platform/mainqueue.h"
#include "platform/preferences.h"
#include "platform/updater.h"
#include "platform/workspace.h"
#include "run/item.h"
#include "run/waits.h"
#include "scripting/NSApplication+Scripting.h"
#include "scripting/scripterrors.h"

#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr qsizetype usualControllers = 30;
constexpr int lastTitleNumber = 99;
constexpr int separateWindowTag = 1;
constexpr int tabTag = 2;

const QString configurationsChanged = u"com.c-command.DropDMG.ConfigurationsChanged"_s;

} // namespace

AppDelegate::AppDelegate(const platform::Host &host, WindowFactory &windowFactory,
                         Configuration configuration)
    : m_host(host)
    , m_windowFactory(windowFactory)
    , m_configuration(std::move(configuration))
    , m_scripting(std::make_unique<NSApplicationScripting>(*this))
{
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::initialize(platform::Preferences &preferences)
{
    preferences.registerDefaults(key::registeredDefaults());
}

// Launch

void AppDelegate::applicationWillFinishLaunching()
{
    m_host.userNotifications.setShouldPresent(&AppDelegate::shouldPresentNotification);
    sampleCodesignIdentities();
    checkForDropDMG();
    statusString.set(status::loading.toString());
    taskMaster.set(newTaskMaster());
    uploadTaskMaster.set(newTaskMaster());
    m_droppedURLs.reset();
    m_allControllers.clear();
    m_allControllers.reserve(usualControllers);
}

void AppDelegate::applicationDidFinishLaunching()
{
    if (!findAltool())
        return quitWithoutAltool();
    findVersionNumberOfAltool();
    m_host.application.deliverPendingOpens();
    if (!m_droppedURLs)
        addedDocument();
    if (m_host.updater)
        m_host.updater->setSendsSystemProfile(true);
    if (m_droppedURLs)
        loadDroppedURLs(*m_droppedURLs);
    changeStatus(status::ready);
    m_host.distributedNotifications.addObserver(
        *this, configurationsChanged, [this] { dropDMGConfigChange(); }, platform::Repeats::areMerged);
    lookForWaits();
    lookAtKeychain();
}

bool AppDelegate::findAltool()
{
    // The key puts Transporter first; it is no toggle.
    const bool xcodeFirst =
        !m_host.application.isOptionKeyDown() && m_host.preferences.boolean(key::preferXcodeAltool);
    return xcodeFirst ? checkForXcode() || checkForTransporter() : checkForTransporter() || checkForXcode();
}

void AppDelegate::quitWithoutAltool()
{
    m_hasLaunchFailed = true; // before the word that ends the waiting of calls
    changeStatus(status::interacting);
    platform::Alert alert{
        u"Xcode or Transporter Not Found"_s,
        u"Notarization cannot be performed without either Xcode.app 10.2 or later installed and running, or Transporter.app 1.1 or later installed. Both are free downloads from the Apple Store. You should install one or the other and run it at least once before trying to run Sealwright again.\n\nSealwright will now quit."_s,
        {}};
    alert.remedy = u"Settings…"_s; // or a wrong folder of tools could not be mended but by hand
    m_host.application.beep();
    if (m_host.application.runModal(alert) == platform::alertSecondButton && hasMendedToolRoot())
        m_host.application.relaunch();
    else
        m_host.application.terminate();
}

/// Lets the person set where the tools are; whether it is elsewhere now.
bool AppDelegate::hasMendedToolRoot()
{
    const QString before = m_host.preferences.string(key::toolRoot);
    m_host.application.runToolSettings(m_host.preferences);
    return m_host.preferences.string(key::toolRoot) != before;
}

void AppDelegate::applicationWillTerminate()
{
    m_host.distributedNotifications.removeObserver(*this);
}

void AppDelegate::endBySignal(const QString &signal)
{
    for (const DocumentPtr &document : m_allControllers) {
        if (!document->isBusy())
            continue;
        document->logErrorMain(u"Sealwright has been ended by %1 while this was going on."_s.arg(signal));
        document->closeLog();
    }
    m_host.application.terminate();
}

SLWTaskMasterPtr AppDelegate::newTaskMaster() const
{
    return std::make_shared<SLWTaskMaster>(
        m_host.launcher, RunnerPauses{.afterExit = m_host.preferences.number(key::toolPause)});
}

// Files from outside

void AppDelegate::applicationOpenFiles(const QStringList &paths)
{
    qCDebug(appLogging).noquote() << "opens:" << paths;
    QList<QUrl> urls;
    for (const QString &path : paths) {
        if (submittableExtensions().contains(itempath::extension(path)) || waits::isFolderOfOne(m_host, path))
            urls.append(itempath::toUrl(path));
    }
    if (statusString() == status::loading) {
        m_droppedURLs = urls;
        return;
    }
    loadDroppedURLs(urls);
    m_host.application.activate();
}

QList<DocumentPtr> AppDelegate::loadDroppedURLs(const QList<QUrl> &urls)
{
    QList<DocumentPtr> documents;
    for (const QUrl &url : urls) {
        const DocumentPtr document = addedDocument();
        documents.append(document);
        if (const QString path = itempath::fromUrl(url); waits::isFolderOfOne(m_host, path))
            document->commands().resume.goOnInFolder(path);
        else
            document->commands().submit.prepareForDirectSubmit(url, {});
    }
    return documents;
}

QList<WaitRecord> AppDelegate::openWaits() const
{
    QList<WaitRecord> open = waits::all(m_host);
    open.removeIf([this](const WaitRecord &wait) { return waits::isAttended(m_host, wait); });
    return open;
}

void AppDelegate::lookForWaits()
{
    if (m_host.preferences.boolean(key::resumeWaiting))
        return goOnWaiting();
    QStringList folders;
    for (const WaitRecord &wait : openWaits())
        folders.append(wait.folder);
    unattendedWaits.set(folders);
}

void AppDelegate::goOnWaiting()
{
    unattendedWaits.set({});
    for (const WaitRecord &wait : openWaits())
        addedDocument()->commands().resume.goOnByPerson(wait);
}

void AppDelegate::lookAtKeychain()
{
    if (keychainProgram().isEmpty() || identities().contains(noIdentitiesPlaceholder))
        return;
    KeychainTools(m_host, keychainProgram())
        .run(keychain::status(), *this, [this](const KeychainTools::Answer &answer) {
            const auto state = keychain::stateIn(answer.valueOr({}));
            isKeychainLocked.set(state && state->isLocked);
        });
}

// Documents

DocumentPtr AppDelegate::makeTitledDocument()
{
    const DocumentPtr document = MainWinController::withLoadedWindow(*this);
    document->window().setTitle(uniqueWindowNameFrom({}));
    return document;
}

void AppDelegate::append(const DocumentPtr &document)
{
    m_allControllers.append(document);
    Q_EMIT documentAdded(document.get());
}

DocumentPtr AppDelegate::addedDocument()
{
    m_host.application.activate();
    const DocumentPtr document = makeTitledDocument();
    document->window().show();
    append(document);
    return document;
}

void AppDelegate::newDocument(int tag)
{
    const DocumentPtr document = makeTitledDocument();
    append(document);
    if (tag == separateWindowTag)
        document->window().setTabbingMode(platform::TabbingMode::disallowed);
    else if (tag == tabTag)
        document->window().setTabbingMode(platform::TabbingMode::preferred);
    document->window().show();
    document->window().setTabbingMode(platform::TabbingMode::automatic);
}

QString AppDelegate::uniqueWindowNameFrom(const QString &base) const
{
    const QString name = base.isNull() ? u"Untitled"_s : base;
    QSet<QString> taken; // of thousands, a list would be looked through a hundred times
    for (const DocumentPtr &document : m_allControllers)
        taken.insert(document->window().title());
    if (!taken.contains(name))
        return name;
    for (int number = 2; number <= lastTitleNumber; ++number) {
        const QString numbered = name + u'-' + QString::number(number);
        if (!taken.contains(numbered))
            return numbered;
    }
    return name;
}

void AppDelegate::removeWindowController(MainWinController &document)
{
    const auto found = std::find_if(m_allControllers.cbegin(), m_allControllers.cend(),
                                    [&document](const DocumentPtr &open) { return open.get() == &document; });
    if (found == m_allControllers.cend())
        return;
    // The window that is closing belongs to the document, so neither may go before this call has returned.
    m_host.mainQueue.post([held = *found] {});
    m_allControllers.erase(found);
    Q_EMIT documentRemoved(&document);
}

void AppDelegate::doCloseAll()
{
    for (platform::Window *window : scripting().allOrderedWindows())
        window->performClose();
}

void AppDelegate::doResetDocumentDefaults()
{
    changeStatus(status::interacting);
    m_host.application.beep();
    const platform::Alert alert{
        u"Reset Document Defaults"_s,
        u"Click Reset if you want the values, settings and entitlements used for newly created documents reset to their factory values. The Apple ID, app-specific password, and provider short name will be set to empty values."_s,
        {u"Reset"_s, u"Cancel"_s}};
    if (m_host.application.runModal(alert) == platform::alertFirstButton) {
        for (const DocumentDefault &documentDefault : documentDefaults())
            m_host.preferences.remove(documentDefault.key);
    }
    changeStatus(status::ready);
}

void AppDelegate::menuNeedsUpdate(AgainItem &doAgainMenuItem) const
{
    const MainWinController *const document = scripting().frontmostPseudoDocument();
    switch (document ? document->lastAction() : nothingToRepeat) {
    case nothingToRepeat:
        doAgainMenuItem = {u"Submit Again"_s, Action::none};
        break;
    case submitAction:
        doAgainMenuItem = {u"Submit Again"_s, Action::doSubmitAgain};
        break;
    case stapleAction:
        doAgainMenuItem = {u"Staple Again"_s, Action::doStapleAgain};
        break;
    case signAction:
        doAgainMenuItem = {u"Sign Again"_s, Action::doSignAgain};
        break;
    default:
        break;
    }
}

// The rest of the application's face

void AppDelegate::doShowAboutPanel()
{
    AboutController::instance(*this).showWindow();
}

QString AppDelegate::daysToGo()
{
    return u"does not expire"_s;
}

void AppDelegate::doSendUsEmail()
{
    m_host.workspace.openUrl(m_configuration.supportAddress);
}

void AppDelegate::doVisitOurWebsite()
{
    m_host.workspace.openUrl(m_configuration.website);
}

void AppDelegate::doShowUsersForum()
{
    m_host.workspace.openUrl(m_configuration.usersForum);
}

bool AppDelegate::shouldPresentNotification(const platform::UserNotification &notification)
{
    return notification.userInfo.value(platform::showWhenActiveKey.toString()).toBool();
}

void AppDelegate::changeStatus(QStringView newStatus)
{
    if (!newStatus.isNull())
        statusString.set(newStatus.toString());
}

ScriptFailure AppDelegate::scriptFailure(const QString &title, const QString &text,
                                         const QString &logError) const
{
    return sealwright::scriptFailure(title, text, logError);
}

} // namespace sealwright
