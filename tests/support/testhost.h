#pragma once

#include "app/appdelegate.h"
#include "support/fakehost.h"
#include "support/faketools.h"
#include "support/fakewindow.h"
#include "support/testfiles.h"
#include "support/watchedlauncher.h"
#include "tools/toolroot.h"

#include <QTemporaryDir>

/// A whole application on a faked host, with fake tools in a tool root of its own and a folder for items. The
/// services are public: a test sets them up before `launch` and asks them afterwards.
class TestHost {
public:
    /// With another factory the documents get real windows.
    explicit TestHost(WindowFactory *windowFactory = nullptr);
    ~TestHost();

    /// Makes the application anew, with a configuration that a test has changed. Before the launch.
    void takeConfiguration();
    /// Runs both steps of launch. Credentials that pass the checks are in the preferences, unless a test
    /// changed them.
    void launch();
    AppDelegate &application() { return *m_application; }
    /// Services that stand in for those of this host; null for its own.
    struct Instead {
        platform::MainQueue *mainQueue = nullptr;
        platform::ProcessLauncher *launcher = nullptr;
        platform::FileService *files = nullptr;
        platform::TimerService *timers = nullptr;
    };
    platform::Host host(const Instead &instead);
    platform::Host host() { return host(Instead()); }

    /// The document that was added last, and its window.
    MainWinController &document();
    FakeWindow &window() { return window(document()); }
    static FakeWindow &window(MainWinController &document);
    /// What has been asked of the about panel.
    const FakePanel::Uses &aboutPanel() const { return m_fakeWindows.aboutPanel; }
    /// Path of the credits, a file that a test may write.
    QString creditsFile() const { return m_folder.filePath(QStringLiteral("Credits.rtf")); }

    /// Lets the main queue run until the workers are idle and nothing is queued any more.
    void settle();
    TestWorkerQueue &workers() { return *m_workers; }
    /// Lets the main queue run until the condition holds. A condition that never does is a failed test.
    void runUntil(const std::function<bool()> &condition);

    /// Opens the log file of a run of the document, if it wants one, and closes the one that is open.
    static void openLog(MainWinController &document, const QString &path, const QString &banner);

    /// Submits the item as a script without dialogs or a person would, up to the first poll or the end.
    void submit(const QString &path);
    /// Submits, and fires polls until none is armed.
    void submitToTheEnd(const QString &path);
    void firePolls();

    /// Path of something in the items' folder.
    QString item(const QString &name) const { return m_folder.filePath(QStringLiteral("items/") + name); }
    /// The names in that folder or in a folder in it, sorted.
    QStringList listing(const QString &folder = {}) const;
    /// The text of a file in that folder; null if there is none.
    QString text(const QString &file) const;
    /// The messages of the window log, without time stamps.
    QStringList log();
    /// The runs of the window log in one style, without time stamps.
    QStringList log(LogStyle style);

private:
    QTemporaryDir m_folder;

public:
    FakeTools tools;
    TestMainQueue mainQueue;
    ManualTimers timers;
    ManualClock clock;
    MemoryPreferences preferences;
    TestFiles files;
    FakeUrlReader urls;
    FakeWorkspace workspace;
    FakeAppleScript appleScript;
    FakeDistributedNotifications distributedNotifications;
    FakeUserNotificationCenter userNotifications;
    FakeApplication applicationHost;
    FakePasteboard pasteboard;
    FakeUpdater updater;
    WatchedLauncher launcher;
    AppDelegate::Configuration configuration;
    QString stateFolder; ///< what lasts from one launch to the next; empty, unless a test names a folder

private:
    FakeWindowFactory m_fakeWindows;
    WindowFactory &m_windowFactory;
    std::unique_ptr<TestWorkerQueue> m_workers;
    std::unique_ptr<AppDelegate> m_application;
};

/// Has a worker do the job with a hold on the document, as it would a run's.
void onWorker(MainWinController &document, std::function<void()> job);
