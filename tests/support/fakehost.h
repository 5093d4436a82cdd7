#pragma once

#include "platform/applescript.h"
#include "platform/clock.h"
#include "platform/mainqueue.h"
#include "platform/notifications.h"
#include "platform/pasteboard.h"
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
    /// Whether anybody has asked for it.
    bool wasRead(const QString &key) const;

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
    mutable QSet<QString> m_read;
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
