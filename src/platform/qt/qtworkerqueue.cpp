#include "platform/qt/qtworkerqueue.h"

namespace platform {

QtWorkerQueue::QtWorkerQueue()
{
    m_pool.setMaxThreadCount(10000);
    m_pool.setExpiryTimeout(5000); // milliseconds
}

QtWorkerQueue::~QtWorkerQueue()
{
    m_pool.waitForDone();
}

void QtWorkerQueue::post(std::function<void()> job)
{
    m_pool.start(std::move(job));
}

} // namespace platform
