#pragma once

#include <functional>

namespace platform {

/// The pool of background threads for workflow jobs, which block in tool runs for minutes. It is as wide as
/// the jobs in it, so that a blocked document never keeps another one waiting.
class WorkerQueue {
public:
    virtual ~WorkerQueue() = default;

    /// Starts the job on a thread of the pool and returns at once. Any thread.
    virtual void post(std::function<void()> job) = 0;
};

} // namespace platform
