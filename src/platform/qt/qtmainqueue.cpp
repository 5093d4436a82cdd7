#include "platform/qt/qtmainqueue.h"

#include <QDeadlineTimer>
#include <QThread>

namespace platform {

namespace {

using namespace std::chrono_literals;

constexpr auto longestInARow = 10ms;

} // namespace

QtMainQueue::QtMainQueue()
{
    QObject::connect(&m_service, &QTimer::timeout, [this] { serve(); });
}

void QtMainQueue::post(std::function<void()> block)
{
    const std::scoped_lock lock(m_mutex);
    m_blocks.push_back(std::move(block));
    if (!std::exchange(m_isServed, true))
        QMetaObject::invokeMethod(&m_service, "start", Qt::QueuedConnection);
}

bool QtMainQueue::isMainThread() const
{
    return QThread::currentThread() == m_service.thread();
}

void QtMainQueue::serve()
{
    m_service.start(); // anew, since a timer does not fire in the loop of its own block
    const QDeadlineTimer deadline(longestInARow);
    while (!deadline.hasExpired()) {
        const auto block = takeNext();
        if (!block)
            return;
        block();
    }
}

/// Empty, with the service ended, when there is none.
std::function<void()> QtMainQueue::takeNext()
{
    const std::scoped_lock lock(m_mutex);
    if (m_blocks.empty()) {
        m_service.stop();
        m_isServed = false;
        return {};
    }
    auto block = std::move(m_blocks.front());
    m_blocks.pop_front();
    return block;
}

} // namespace platform
