#pragma once

#include <QDateTime>

namespace platform {

/// The time of day.
class Clock {
public:
    virtual ~Clock() = default;

    /// The present time in the system's time zone. Any thread.
    virtual QDateTime now() const = 0;
};

} // namespace platform
