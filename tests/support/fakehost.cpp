#include "support/fakehost.h"

using namespace Qt::StringLiterals;
using platform::Outcome;

void TestMainQueue::post(std::function<void()> block)
{
    ++m_pending;
    const std::scoped_lock lock(m_mutex);
    m_blocks.push_back(std::move(block));
    QMetaObject::invokeMethod(this, "runNext", Qt::QueuedConnection);
}

void TestMainQueue::runNext()
{
    std::unique_lock lock(m_mutex);
    auto block = std::move(m_blocks.front());
    m_blocks.pop_front();
    lock.unlock();
    block();
    block = nullptr; // lets go of its document before it counts as done
    --m_pending;
}

TestWorkerQueue::~TestWorkerQueue()
{
    for (Worker &worker : m_workers)
        worker.thread.join();
}

void TestWorkerQueue::post(std::function<void()> job)
{
    ++m_running;
    const std::scoped_lock lock(m_mutex);
    joinEnded();
    Worker &worker = m_workers.emplace_back();
    worker.thread = std::thread([this, &worker, job = std::move(job)]() mutable {
        job();
        job = nullptr; // lets go of its document before it counts as done
        worker.hasEnded = true;
        --m_running;
    });
}

/// Each keeps its stack until then, and a long walk starts very many.
void TestWorkerQueue::joinEnded()
{
    m_workers.remove_if([](Worker &worker) {
        const bool hasEnded = worker.hasEnded;
        if (hasEnded)
            worker.thread.join();
        return hasEnded;
    });
}

class ManualTimers::ManualTimer : public platform::Timer {
public:
    explicit ManualTimer(Armed armed)
        : what(std::move(armed))
    {
    }
    /// Lets go of what it holds, as a timer must that its own block refers back to.
    void invalidate() override
    {
        isArmed = false;
        what.fire = nullptr;
    }

    Armed what;
    std::atomic<bool> isArmed = true;
};

std::shared_ptr<platform::Timer> ManualTimers::schedule(double interval, double tolerance,
                                                        std::function<void()> fire)
{
    auto timer = std::make_shared<ManualTimer>(Armed{interval, tolerance, std::move(fire)});
    const std::scoped_lock lock(m_mutex);
    m_timers.append(timer);
    return timer;
}

QList<ManualTimers::Armed> ManualTimers::armed() const
{
    const std::scoped_lock lock(m_mutex);
    QList<Armed> armed;
    for (const auto &timer : m_timers) {
        if (timer->isArmed)
            armed.append(timer->what);
    }
    return armed;
}

double ManualTimers::fireNext()
{
    std::shared_ptr<ManualTimer> next;
    {
        const std::scoped_lock lock(m_mutex);
        m_timers.removeIf([](const auto &timer) { return !timer->isArmed; });
        if (m_timers.isEmpty())
            return -1;
        next = m_timers.takeFirst();
    }
    next->isArmed = false;
    std::exchange(next->what.fire, nullptr)();
    return next->what.interval;
}

void ManualTimers::forgetAll()
{
    QList<std::shared_ptr<ManualTimer>> timers;
    {
        const std::scoped_lock lock(m_mutex);
        timers.swap(m_timers);
    }
    for (const auto &timer : timers) // not under the lock: what a timer holds may ask for it
        timer->invalidate();
}

void MemoryPreferences::store(const QString &key, const QVariant &value)
{
    const std::scoped_lock lock(m_mutex);
    m_values.insert(key, value);
    m_changes.append(key);
    isSaved = false;
}

void MemoryPreferences::discard(const QString &key)
{
    const std::scoped_lock lock(m_mutex);
    m_values.remove(key);
    m_changes.append(key);
    isSaved = false;
}

QVariantMap MemoryPreferences::stored() const
{
    const std::scoped_lock lock(m_mutex);
    return m_values;
}

QStringList MemoryPreferences::takeChanges()
{
    const std::scoped_lock lock(m_mutex);
    return std::exchange(m_changes, {});
}

bool MemoryPreferences::wasRead(const QString &key) const
{
    const std::scoped_lock lock(m_mutex);
    return m_read.contains(key);
}

QVariant MemoryPreferences::storedValue(const QString &key) const
{
    const std::scoped_lock lock(m_mutex);
    m_read.insert(key);
    return m_values.value(key);
}

std::optional<QByteArray> FakeUrlReader::contentsOf(const QUrl &url)
{
    asked.append(url);
    if (contents.contains(url))
        return contents.value(url);
    return otherwise ? otherwise->contentsOf(url) : std::nullopt;
}

Outcome FakeWorkspace::launchInBackground(const QString &bundleIdentifier)
{
    launched.append(bundleIdentifier);
    return installed.contains(bundleIdentifier) ? Outcome::success()
                                                : Outcome::failure(bundleIdentifier + u" is not installed"_s);
}

platform::AppleScriptResult FakeAppleScript::execute(const QString &source,
                                                     std::optional<std::chrono::milliseconds> limit)
{
    sources.append(source);
    limits.append(limit);
    if (whileRunning)
        whileRunning();
    return result;
}

void FakeDistributedNotifications::addObserver(const QObject &observer, const QString &name,
                                               std::function<void()> handler, platform::Repeats repeats)
{
    handlers[name] = std::move(handler);
    if (repeats == platform::Repeats::areMerged)
        merged.insert(name);
    m_namesOfObservers.insert(&observer, name);
}

void FakeDistributedNotifications::removeObserver(const QObject &observer)
{
    for (const QString &name : m_namesOfObservers.values(&observer))
        handlers.remove(name);
    m_namesOfObservers.remove(&observer);
}

void FakeDistributedNotifications::post(const QString &name)
{
    posted.append(name);
    if (const auto handler = handlers.value(name))
        handler();
}

void FakeUserNotificationCenter::deliver(const platform::UserNotification &notification)
{
    delivered.append(notification);
}

void FakeUpdater::setSendsSystemProfile(bool sends)
{
    sendsSystemProfile = sends;
    if (onCall)
        onCall();
}
