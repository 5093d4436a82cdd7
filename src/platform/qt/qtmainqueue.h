#pragma once

#include "platform/mainqueue.h"

#include <QTimer>

#include <deque>
#include <mutex>

namespace platform {

/// The main thread's Qt event loop as a queue. Made on the main thread.
///
/// Blocks run a short time in a row and then let the event loop see to everything else, so that a worker that
/// posts faster than the main thread follows does not keep the window from being drawn and used.
class QtMainQueue : public MainQueue {
public:
    QtMainQueue();
    void post(std::function<void()> block) override;
    bool isMainThread() const override;

private:
    void serve();
    std::function<void()> takeNext();

    /// Runs while there are blocks, also in the loop of a block that waits for a person. Posted events would
    /// not do: those that are posted while others are delivered come before all else.
    QTimer m_service;
    std::mutex m_mutex;
    std::deque<std::function<void()>> m_blocks;
    bool m_isServed = false; ///< the timer runs or is about to
};

} // namespace platform
