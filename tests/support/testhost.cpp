#include "support/testhost.h"

#include "app/preferencekeys.h"
#include "document/documentcommands.h"
#include "platform/itempath.h"
#include "run/run.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::seconds deadlineForAll{60};
constexpr qsizetype timeStampLength = 14; // "14:03:22.123: "

QString madeFolder(const QString &path)
{
    QDir().mkpath(path);
    return path;
}

} // namespace

TestHost::TestHost(WindowFactory *windowFactory)
    : tools(madeFolder(m_folder.filePath(u"root"_s)))
    , files(m_folder.filePath(u"trash"_s))
    , launcher([root = ToolRoot(tools.root())](const QString &path) { return root.locate(path); },
               ToolRoot(tools.root()).searchFolders())
    , configuration{m_folder.filePath(u"DropDMG/Configurations"_s),
                    QUrl(u"mailto:help@example.com"_s),
                    QUrl(u"https://example.com/"_s),
                    QUrl(u"https://example.com/forum"_s),
                    {{u"CFBundleShortVersionString"_s, u"1.2.3"_s},
                     {u"CFBundleVersion"_s, u"45"_s},
                     {u"NSHumanReadableCopyright"_s, u"Copyright © 2026 Example"_s}},
                    creditsFile(),
                    u"Oct  9 2026"_s}
    , m_fakeWindows(applicationHost)
    , m_windowFactory(windowFactory ? *windowFactory : m_fakeWindows)
    , m_workers(std::make_unique<TestWorkerQueue>())
{
    madeFolder(m_folder.filePath(u"items"_s));
    configuration.profilesFolder = m_folder.filePath(u"Profiles"_s);
    AppDelegate::initialize(preferences);
    preferences.setValue(key::toolPause, 0);
    preferences.setValue(key::appleIDValue, u"dev@example.com"_s);
    preferences.setValue(key::appPassValue, u"notary"_s);
    workspace.running.insert(u"com.apple.dt.Xcode"_s);
    takeConfiguration();
}

void TestHost::takeConfiguration()
{
    m_application = std::make_unique<AppDelegate>(host(), m_windowFactory, configuration);
}

TestHost::~TestHost()
{
    settle(); // a test that leaves a tool hanging has failed to end what it began
    // A timer that is armed and a sheet that is up hold their document, whose window needs the services.
    timers.forgetAll();
    for (FakeWindow *window : QList(applicationHost.onScreen)) {
        window->sheet.reset();
        window->namedSheet.reset();
        window->panel.reset();
    }
    m_application.reset();
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

platform::Host TestHost::host(const Instead &instead)
{
    return {instead.mainQueue ? *instead.mainQueue : mainQueue,
            *m_workers,
            instead.timers ? *instead.timers : timers,
            clock,
            instead.launcher ? *instead.launcher : launcher,
            instead.files ? *instead.files : files,
            urls,
            preferences,
            workspace,
            appleScript,
            distributedNotifications,
            userNotifications,
            applicationHost,
            pasteboard,
            &updater,
            stateFolder};
}

void TestHost::launch()
{
    m_application->applicationWillFinishLaunching();
    m_application->applicationDidFinishLaunching();
    tools.forgetCalls();
}

MainWinController &TestHost::document()
{
    return *m_application->allControllers().last();
}

FakeWindow &TestHost::window(MainWinController &document)
{
    return dynamic_cast<FakeWindow &>(document.window());
}

void TestHost::runUntil(const std::function<bool()> &condition)
{
    const QDeadlineTimer deadline(deadlineForAll);
    while (!condition()) {
        if (deadline.hasExpired()) {
            ADD_FAILURE() << "waited in vain; the tools that ran: "
                          << tools.order().join(u", "_s).toStdString();
            return;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        QThread::usleep(200);
    }
}

void TestHost::settle()
{
    runUntil([this] { return m_workers->isIdle() && mainQueue.isEmpty(); });
}

void TestHost::openLog(MainWinController &document, const QString &path, const QString &banner)
{
    document.makeRun(document.runInputs(), {})->openLog(path, banner);
}

void TestHost::submit(const QString &path)
{
    document().isScripted.set(false);
    document().commands().submit.submitURL(itempath::toUrl(path));
    settle();
}

void TestHost::submitToTheEnd(const QString &path)
{
    submit(path);
    firePolls();
}

void TestHost::firePolls()
{
    while (timers.fireNext() >= 0)
        settle();
}

QStringList TestHost::listing(const QString &folder) const
{
    return QDir(item(folder))
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

QString TestHost::text(const QString &file) const
{
    QFile opened(item(file));
    return opened.open(QIODevice::ReadOnly) ? QString::fromUtf8(opened.readAll()) : QString();
}

QStringList TestHost::log()
{
    QStringList messages;
    for (const LogText::Run &run : document().statusTextView.runs())
        messages.append(run.text.mid(timeStampLength).chopped(1));
    return messages;
}

QStringList TestHost::log(LogStyle style)
{
    QStringList messages;
    for (const LogText::Run &run : document().statusTextView.runs()) {
        if (run.style == style)
            messages.append(run.text.mid(timeStampLength).chopped(1));
    }
    return messages;
}

void onWorker(MainWinController &document, std::function<void()> job)
{
    document.host().workers.post([held = document.shared_from_this(), job = std::move(job)] { job(); });
}
