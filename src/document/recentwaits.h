#pragma once

#include <QtGlobal>

#include <optional>

namespace platform {
class Preferences;
}

namespace sealwright {

/// How long the latest waits for the service's verdict took, for people who wait for the next one. Kept for
/// all documents, from launch to launch. Main thread.
namespace recentwaits {

/// Whole seconds, from the shortest to the longest.
struct Range {
    qint64 shortest = 0;
    qint64 longest = 0;
    bool operator==(const Range &) const = default;
};

/// A wait that ended in a verdict took so many seconds. Of more than ten the oldest is forgotten.
void remember(platform::Preferences &preferences, qint64 seconds);
/// Nothing before the first one.
[[nodiscard]] std::optional<Range> range(const platform::Preferences &preferences);

} // namespace recentwaits

} // namespace sealwright
