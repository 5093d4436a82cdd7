#pragma once

#include "platform/clock.h"

namespace platform {

/// The system's clock.
class SystemClock : public Clock {
public:
    QDateTime now() const override { return QDateTime::currentDateTime(); }
};

} // namespace platform
