#pragma once

#include <QString>

namespace platform {

/// What a person has copied, in whatever application. Main thread.
class Pasteboard {
public:
    virtual ~Pasteboard() = default;

    /// The first text on the general pasteboard, as it stands; null if there is none.
    virtual QString firstString() const = 0;
};

} // namespace platform
