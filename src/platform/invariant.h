#pragma once

#include "platform/logging.h"

namespace platform {

/// Whether something holds that only a fault of this program's own could break. What is broken goes to the
/// journal by its name and place, whatever the categories say; the caller takes an exit of its own. Any
/// thread.
inline bool holds(bool condition, const char *invariant, const char *file = __builtin_FILE(),
                  int line = __builtin_LINE()) // as std::source_location, which clang has from 15 on
{
    if (!condition)
        qCCritical(platformLog).nospace() << "broken: " << invariant << " (" << file << ':' << line << ')';
    return condition;
}

} // namespace platform
