#pragma once

#include "document/windowfactory.h"
#include "platform/applescript.h"
#include "platform/applicationhost.h"
#include "platform/clock.h"
#include "platform/mainqueue.h"
#include "platform/notifications.h"
#include "platform/pasteboard.h"
#include "platform/posix/posixfileservice.h"
#include "platform/preferences.h"
#include "platform/timer.h"
#include "platform/updater.h"
#include "platform/urlreader.h"
#include "platform/workerqueue.h"
#include "platform/workspace.h"
#include "support/core.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QThread>

#include <atomic>
#include <deque>
#include <functional>
#include <list>
#include <mutex>
#include <thread>

/// The services of a host, faked: each does the least that the contract asks, records what it was asked and
/// lets a test say what it answers.

/// One event a block. The blocks themselves pass under a lock that a thread sanitizer can see.
class TestMainQueue : public QObject, public platform::MainQueue {
    Q_OBJECT

public:
    void post(std::function<void()> block) override;
    bool isMainThread() const override { return QThread::currentThread() == thread(); }
    bool isEmpty() const { return m_pending == 0; }

private:
    Q_SLOT void runNext();

    std::atomic<int> m_pending = 0;
    std::mutex m_mutex;
    std::deque<std::function<void()>> m_blocks;
};

class TestWorkerQueue : public platform::WorkerQueue {
public:
    ~TestWorkerQueue() override;
    void post(std::function<void()> job) override;
    bool isIdle() const { return m_running == 0; }
    int running() const { return m_running; }

private:
    struct Worker {
        std::thread thread;
        std::atomic<bool> hasEnded = false;
    };
    void joinEnded();

    std::atomic<int> m_running = 0;
    std::mutex m_mutex;
    std::list<Worker> m_workers;
};

/// Timers that fire when the test says so.
class ManualTimers : public platform::TimerService {
public:
    struct Armed {
        double interval;
        double tolerance;
        std::function<void()> fire;
    };

    [[nodiscard]] std::shared_ptr<platform::Timer> schedule(double interval, double tolerance,
                                                            std::function<void()> fire) override;
    /// The timers that are armed now, in the order of arming.
    QList<Armed> armed() const;
    /// Fires the timer that was armed first. Answers with its interval, or a negative number if none is
    /// armed.
    double fireNext();
    /// Lets go of all timers and of what they hold.
    void forgetAll();

private:
    class ManualTimer;
    mutable std::mutex m_mutex;
    QList<std::shared_ptr<ManualTimer>> m_timers;
};

class ManualClock : public platform::Clock {
public:
    QDateTime now() const override { return time; }
    QDateTime time{QDate(2026, 11, 20), QTime(14, 3, 22, 123)};
};

class MemoryPreferences : public platform::Preferences {
public:
    QVariantMap stored() const;
    /// The keys that were stored or removed since the last call, in order.
    QStringList takeChanges();

    void save() override { isSaved = true; }
    std::atomic<bool> isSaved = true; ///< whether all that was stored has been saved since

protected:
    QVariant storedValue(const QString &key) const override;
    void store(const QString &key, const QVariant &value) override;
    void discard(const QString &key) override;

private:
    mutable std::mutex m_mutex;
    QVariantMap m_values;
    QStringList m_changes;
};

/// The real file service, with a trash of its own and operations that fail where a test wants it.
class TestFiles : public platform::PosixFileService {
public:
    explicit TestFiles(QString trash)
        : m_trash(std::move(trash))
    {
    }

    /// Asked before each changing operation ("copyItem" and so on, with its target path); a text that is not
    /// null is the error with which the operation fails.
    std::function<QString(const QString &operation, const QString &path)> failure;
    QStringList trashed;
    /// Entries that can be neither listed nor told the kind of.
    QSet<QString> unreadable;
    /// Lists by name, so that a walk meets everything in one order on all file systems.
    bool sortsListings = false;

    platform::FileKind kind(const QString &path) const override;
    QStringList contentsOfDirectory(const QString &path, platform::FolderLink link) const override;
    QList<platform::FolderEntry> entriesOfDirectory(const QString &path,
                                                    platform::FolderLink link) const override;
    platform::Outcome createDirectory(const QString &path) override;
    platform::Outcome createFile(const QString &path) override;
    platform::Outcome removeItem(const QString &path) override;
    platform::Outcome moveItem(const QString &from, const QString &to) override;
    platform::Outcome copyItem(const QString &from, const QString &to) override;
    platform::Outcome copyResolvedItem(const QString &from, const QString &to) override;
    platform::Outcome trashItem(const QString &path) override;
    platform::Outcome setPermissions(const QString &path, unsigned mode) override;
    platform::Outcome setPermissionsInside(const QString &item, const QString &inside,
                                           unsigned mode) override;
    platform::Result<QByteArray> readFile(const QString &path) const override;
    bool isReadable(const QString &path) const override;
    platform::Outcome writeFile(const QString &path, const QByteArray &bytes) override;
    platform::Outcome writeFileAtomically(const QString &path, const QByteArray &bytes) override;
    platform::Result<QString> replacementDirectory(const QString &forItem) override;
    platform::Outcome replaceItem(const QString &path, const QString &replacement) override;

private:
    QString failureOf(const char *operation, const QString &path) const;

    const QString m_trash;
};

class FakeUrlReader : public platform::UrlReader {
public:
    std::optional<QByteArray> contentsOf(const QUrl &url) override;
    QHash<QUrl, QByteArray> contents; ///< what is not here fails to load
    platform::UrlReader *otherwise = nullptr; ///< reads what is not there, if a test wants it to
    QList<QUrl> asked;
};

class FakeWorkspace : public platform::Workspace {
public:
    bool isRunning(const QString &bundleIdentifier) const override
    {
        return running.contains(bundleIdentifier);
    }
    platform::Outcome launchInBackground(const QString &bundleIdentifier) override;
    QString pathForApplication(const QString &bundleIdentifier) const override
    {
        return installed.value(bundleIdentifier);
    }
    void revealItem(const QString &path) override { revealed.append(path); }
    void openUrl(const QUrl &url) override { opened.append(url); }

    QSet<QString> running;
    QHash<QString, QString> installed; ///< identifier to path
    QStringList launched;
    QStringList revealed;
    QList<QUrl> opened;
};

class FakeAppleScript : public platform::AppleScript {
public:
    platform::AppleScriptResult execute(const QString &source,
                                        std::optional<std::chrono::milliseconds> limit = {}) override;
    QList<std::optional<std::chrono::milliseconds>> limits; ///< one for each source
    QStringList sources;
    std::function<void()> whileRunning; ///< called on the thread of whoever runs a script
    platform::AppleScriptResult result{{}, {}, QStringLiteral("no such application")};
};

class FakeDistributedNotifications : public platform::DistributedNotifications {
public:
    void addObserver(const QObject &observer, const QString &name, std::function<void()> handler,
                     platform::Repeats repeats = platform::Repeats::areHandled) override;
    void removeObserver(const QObject &observer) override;
    void post(const QString &name) override;
    QHash<QString, std::function<void()>> handlers; ///< each name has one observer here
    QSet<QString> merged; ///< names whose repeats call the handler once
    QStringList posted;

private:
    QMultiHash<const QObject *, QString> m_namesOfObservers;
};

class FakeUserNotificationCenter : public platform::UserNotificationCenter {
public:
    void setShouldPresent(Presenter presenter) override { shouldPresent = std::move(presenter); }
    void deliver(const platform::UserNotification &notification) override;
    Presenter shouldPresent;
    QList<platform::UserNotification> delivered;
};

class FakeUpdater : public platform::Updater {
public:
    void setSendsSystemProfile(bool sends) override;
    std::function<void()> onCall;
    std::optional<bool> sendsSystemProfile;
};

class FakePasteboard : public platform::Pasteboard {
public:
    QString firstString() const override { return text; }
    QString text; ///< null: no text has been copied
};

class FakeWindow;

class FakeApplication : public platform::ApplicationHost {
public:
    void setActivationToken(const QString &token) override { activationToken = token; }
    void activate() override { ++activations; }
    void terminate() override { isTerminated = true; }
    void relaunch() override { isRelaunched = isTerminated = true; }
    void runToolSettings(platform::Preferences &preferences) override
    {
        ++toolSettings;
        if (whileInToolSettings)
            whileInToolSettings(preferences);
    }
    bool isOptionKeyDown() const override { return optionKey; }
    void beep() override { ++beeps; }
    int runModal(const platform::Alert &alert) override;
    void runPageLayout() override { ++pageLayouts; }
    QList<platform::Window *> windowsFrontToBack() const override;

    QString activationToken; ///< the latest
    QString tokenWhenShown; ///< what it was when a window was last shown
    int activationsWhenShown = 0; ///< how many there had been then
    int activations = 0;
    bool isTerminated = false;
    bool isRelaunched = false;
    int toolSettings = 0; ///< how often they were opened
    std::function<void(platform::Preferences &)> whileInToolSettings;
    bool optionKey = false;
    int beeps = 0;
    QList<platform::Alert> modalAlerts;
    std::function<int()>
        answerModal; ///< called while the alert is up; without it the first button is pressed
    int pageLayouts = 0;
    QList<FakeWindow *> onScreen; ///< front to back; of a tab group the one that shows
    std::function<QList<platform::Window *>()> otherWindows; ///< in their place, where they are no fakes
    QStringList arrangements; ///< what was done to the order and the tabs of windows
};

class FakeTabGroup : public platform::TabGroup, public std::enable_shared_from_this<FakeTabGroup> {
public:
    explicit FakeTabGroup(FakeApplication &application)
        : m_application(application)
    {
    }

    QList<platform::Window *> windows() const override { return {m_windows.cbegin(), m_windows.cend()}; }
    platform::Window *selectedWindow() const override;
    void setSelectedWindow(platform::Window &window) override;
    void removeWindow(platform::Window &window) override;
    void insertWindow(platform::Window &window, qsizetype atIndex) override;

    /// Lets go of a window that is about to be elsewhere, or nowhere.
    void release(FakeWindow &window);

private:
    void show(FakeWindow *window);

    FakeApplication &m_application;
    QList<FakeWindow *> m_windows;
    FakeWindow *m_selected = nullptr;
};

class FakeWindow : public platform::Window {
public:
    explicit FakeWindow(FakeApplication &application);
    ~FakeWindow() override;

    struct Sheet {
        platform::Alert alert;
        std::function<void(int)> completion;
    };
    struct NamedSheet {
        QString interfaceName;
        std::function<void(int)> completion;
    };
    struct Panel {
        platform::OpenPanel panel;
        std::function<void(const QUrl &)> completion;
    };

    QString title() const override { return m_title; }
    void setTitle(const QString &title) override { m_title = title; }
    void setSubtitle(const QString &subtitle) override { subtitles.append(subtitle); }
    void setTabbingMode(platform::TabbingMode mode) override { tabbingModes.append(mode); }
    void show() override;
    void endEditing() override { ++editsEnded; }
    [[nodiscard]] bool makeNothingFirstResponder() override;
    void performClose() override;
    void close() override;
    void beginSheet(const platform::Alert &alert, std::function<void(int)> completion) override;
    void beginOpenPanel(const platform::OpenPanel &panel,
                        std::function<void(const QUrl &)> completion) override;
    void printLog() override { ++prints; }
    void beginSheetNamed(const QString &interfaceName, std::function<void(int)> completion) override;
    void endSheet(int returnCode) override;
    void setDelegate(Delegate delegate) override { m_delegate = std::move(delegate); }
    platform::TabGroup &tabGroup() const override { return *group; }
    QList<platform::Window *> tabbedWindows() const override;
    QRect frame() const override { return place; }
    void setFrame(const QRect &frame) override;
    platform::QDRect boundsAsQDRect() const override { return bounds; }
    void setBoundsAsQDRect(const platform::QDRect &newBounds) override { bounds = newBounds; }
    void orderAbove(qint64 windowNumber) override;

    /// Answers the sheet that is up (1000 is the first button) or chooses in the panel that is up.
    void answerSheet(int answer = platform::alertFirstButton);
    void choose(const QUrl &url);

    QStringList subtitles;
    QList<platform::TabbingMode> tabbingModes;
    QList<platform::TabbingMode> modesWhenShown;
    int editsEnded = 0;
    int focusesTaken = 0;
    int prints = 0;
    bool refusesToGiveUpFocus = false;
    bool isClosed = false;
    std::optional<Sheet> sheet; ///< that is up now
    std::optional<NamedSheet> namedSheet;
    std::optional<Panel> panel;
    QList<platform::Alert> sheets; ///< all that have been up
    std::shared_ptr<FakeTabGroup> group;
    QRect place{100, 200, 920, 700};
    platform::QDRect bounds;
    bool showsTabWhenAlone = false;

private:
    FakeApplication &m_application;
    Delegate m_delegate;
    QString m_title;
};

class FakePanel : public platform::Panel {
public:
    /// What has been asked of all panels made with it.
    struct Uses {
        int made = 0;
        int centered = 0;
        int shown = 0;
    };

    explicit FakePanel(Uses &uses)
        : m_uses(uses)
    {
        ++m_uses.made;
    }
    void center() override { ++m_uses.centered; }
    void show() override { ++m_uses.shown; }

private:
    Uses &m_uses;
};

class FakeWindowFactory : public WindowFactory {
public:
    explicit FakeWindowFactory(FakeApplication &application)
        : m_application(application)
    {
    }
    [[nodiscard]] std::unique_ptr<platform::Window> makeWindow(MainWinController &document) override;
    [[nodiscard]] std::unique_ptr<platform::Panel> makeAboutPanel(AboutController &controller) override;

    FakePanel::Uses aboutPanel;

private:
    FakeApplication &m_application;
};
