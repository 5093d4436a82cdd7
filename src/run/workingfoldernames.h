#pragma once

#include <QString>

namespace sealwright {

/// The names of what a run leaves on disk. `base` is the item's file name without its last extension.
namespace workingfolder {

inline constexpr QStringView working = u"Working";
inline constexpr QStringView failed = u"Failed";
inline constexpr QStringView submitted = u"Submitted";
inline constexpr QStringView notarized = u"Notarized";
inline constexpr QStringView codeSigned = u"Signed";

/// "Foo - Working", "Foo - Notarized" and so on.
[[nodiscard]] QString name(const QString &base, QStringView suffix);
/// "Foo - Unmodified Original"
[[nodiscard]] QString unmodifiedOriginalName(const QString &base);
/// Where a finished run has put the item that lay at `itemPath`, in the folder with that suffix.
[[nodiscard]] QString unmodifiedOriginalPath(const QString &itemPath, QStringView suffix);

inline constexpr QStringView logName = u"Submission Log.txt";
inline constexpr QStringView entitlementsName = u"Entitlements.plist";
inline constexpr QStringView requestUUIDName = u"RequestUUID.txt";

/// The head of the log file of a run on the copy at the path.
[[nodiscard]] QString banner(const QString &copyPath);
/// The head of what a run adds to the log file that only staples the item at the path.
[[nodiscard]] QString stapleOnlyBanner(const QString &itemPath);
/// The head of what a run adds to the log file that goes on with another's wait.
[[nodiscard]] QString resumeBanner(const QString &itemPath);

} // namespace workingfolder

} // namespace sealwright
