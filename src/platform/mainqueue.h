#pragma once

#include <functional>

namespace platform {

/// The queue that the main thread serves from its event loop: the only way from a worker to what a person
/// sees.
class MainQueue {
public:
    virtual ~MainQueue() = default;

    /// Queues the block and returns at once, on the main thread too. Any thread. Blocks run in the order of
    /// posting. A block posted while the application ends may never run.
    virtual void post(std::function<void()> block) = 0;

    /// Whether the calling thread is the main thread.
    virtual bool isMainThread() const = 0;
};

} // namespace platform
