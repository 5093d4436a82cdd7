#pragma once

#include <functional>
#include <memory>

namespace platform {

/// A timer that fires once at most.
class Timer {
public:
    virtual ~Timer() = default;

    /// Keeps the timer from firing: for certain if it is called on the main thread. A second call, or one
    /// after the timer has fired, does nothing.
    virtual void invalidate() = 0;
};

/// Makes one-shot timers that fire on the main thread, while a sheet or a menu is open too.
class TimerService {
public:
    virtual ~TimerService() = default;

    /// Arms a timer. Any thread. `interval` and `tolerance` are seconds; the timer may fire as late as their
    /// sum. The block runs on the main thread. The timer stays armed when the caller drops what it got.
    [[nodiscard]] virtual std::shared_ptr<Timer> schedule(double interval, double tolerance,
                                                          std::function<void()> fire) = 0;
};

} // namespace platform
