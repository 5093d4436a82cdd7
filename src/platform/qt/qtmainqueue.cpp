#include "platform/qt/qtmainqueue.h"

#include <QThread>

namespace platform {

void QtMainQueue::post(std::function<void()> block)
{
    QMetaObject::invokeMethod(&m_receiver, std::move(block), Qt::QueuedConnection);
}

bool QtMainQueue::isMainThread() const
{
    return QThread::currentThread() == m_receiver.thread();
}

} // namespace platform
