#pragma once

#include <QString>

namespace sealwright {

/// What the version line of the about panel is made of.
struct VersionDetails {
    QString shortVersion;
    QString bundleVersion;
    QString buildDate; ///< as a person reads it
    QString processor; ///< empty in the arm64 build
    QString daysToGo; ///< how long this build stays usable
};

[[nodiscard]] QString versionLine(const VersionDetails &details);

/// The date, given as "MMM d yyyy" in English, in the long form of the user's own locale, without the
/// weekday. Empty if it is no such date.
[[nodiscard]] QString localizedBuildDate(const QString &buildDate);

/// The processor that this program was built for, in words.
[[nodiscard]] QString processorText();

} // namespace sealwright
