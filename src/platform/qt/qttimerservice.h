#pragma once

#include "platform/timer.h"

#include <QObject>

namespace platform {

/// Timers of the main thread's Qt event loop. Made on the main thread, and ended there after all that uses
/// its timers.
class QtTimerService : public TimerService {
public:
    /// A tolerance lets the timer fire together with others, which spares the processor; it never fires
    /// early.
    [[nodiscard]] std::shared_ptr<Timer> schedule(double interval, double tolerance,
                                                  std::function<void()> fire) override;

private:
    QObject m_context; // lives on the main thread; owns the timers that are armed
};

} // namespace platform
