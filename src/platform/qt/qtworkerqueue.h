#pragma once

#include "platform/workerqueue.h"

#include <QThreadPool>

namespace platform {

/// A Qt thread pool without a practical limit. Threads that have had nothing to do for some seconds end.
class QtWorkerQueue : public WorkerQueue {
public:
    QtWorkerQueue();

    /// Blocks until all jobs have ended.
    ~QtWorkerQueue() override;

    void post(std::function<void()> job) override;

private:
    QThreadPool m_pool;
};

} // namespace platform
