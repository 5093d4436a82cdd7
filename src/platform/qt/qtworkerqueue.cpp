#include "platform/qt/qtworkerqueue.h"

namespace platform {

QtWorkerQueue::QtWorkerQueue()
{
    m_threads.setMaxThreadCount(10000);
    m_threads.setExpiryTimeout(5000); // milliseconds
}

QtWorkerQueue::~QtWorkerQueue()
{
    std::unique_lock lock(m_mutex);
    m_ended.wait(lock, [this] { return m_unended == 0; });
}

void QtWorkerQueue::post(std::function<void()> job)
{
    {
        const std::lock_guard lock(m_mutex);
        m_waiting.push_back(std::move(job));
        ++m_unended;
    }
    m_threads.start([this] { runNext(); });
}

void QtWorkerQueue::runNext()
{
    std::unique_lock lock(m_mutex);
    auto job = std::move(m_waiting.front());
    m_waiting.pop_front();
    lock.unlock();
    job();
    job = nullptr; // what it holds goes before it counts as ended
    lock.lock();
    if (--m_unended == 0)
        m_ended.notify_all();
}

} // namespace platform
