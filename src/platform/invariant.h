#pragma once

#include "platform/logging.h"

#include <source_location>

namespace platform {

/// Whether something holds that only a fault of this program's own could break. What is broken goes to the
/// journal by its name and place, whatever the categories say; the caller takes an exit of its own. Any
/// thread.
inline bool holds(bool condition, const char *invariant,
                  const std::source_location &place = std::source_location::current())
{
    if (!condition)
        qCCritical(platformLog).nospace()
            << "broken: " << invariant << " (" << place.file_name() << ':' << place.line() << ')';
    return condition;
}

} // namespace platform
