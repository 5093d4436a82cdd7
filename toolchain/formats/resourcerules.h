#pragma once

#include <QString>
#include <QVariantMap>

namespace toolchain {

enum class SealVersion {
    First, ///< "files" and "rules": what lies under Resources
    Second ///< "files2" and "rules2": the whole bundle
};

enum class Coverage {
    Omitted, ///< the seal says nothing about the file
    Sealed,
    Optional ///< sealed, but may be missing afterwards
};

/// What the resource rules say about a file. `path` is relative to the folder that the seal starts from.
/// The rule with the greatest weight of those that match decides.
/// Public document: Apple's Technical Note TN2206, macOS Code Signing In Depth.
[[nodiscard]] Coverage coverageOf(const QString &path, SealVersion version);

/// True for what no seal ever covers, by any rule: the seal's own folder, a stapled ticket and a store
/// receipt.
[[nodiscard]] bool isOutsideOfSeals(const QString &path);

/// The rules as a seal's property list carries them.
[[nodiscard]] QVariantMap resourceRules(SealVersion version);

} // namespace toolchain
