#pragma once

#include "platform/workerqueue.h"

#include <QThreadPool>

#include <condition_variable>
#include <deque>
#include <mutex>

namespace platform {

/// A Qt thread pool without a practical limit. Threads that have had nothing to do for some seconds end.
class QtWorkerQueue : public WorkerQueue {
public:
    QtWorkerQueue();

    /// Blocks until all jobs have ended.
    ~QtWorkerQueue() override;

    void post(std::function<void()> job) override;

private:
    void runNext();

    // Jobs pass from thread to thread under a lock of our own: thread checkers cannot see those inside Qt.
    std::mutex m_mutex;
    std::condition_variable m_ended;
    std::deque<std::function<void()>> m_waiting;
    int m_unended = 0;
    QThreadPool m_threads;
};

} // namespace platform
