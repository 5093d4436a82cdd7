#pragma once

#include "formats/review/codefacts.h"

namespace toolchain::review {

/// Verifies the signatures of the code at a path, which is a Mach-O file, or the bundle whose main executable
/// the facts are of, and marks those that are not true: strictly where they would do otherwise. A linker's
/// count as none.
void verifySignatures(const QString &path, CodeFacts &facts, const TrustStore &store);

/// The bundle whose main executable a folder holds; both paths are absolute. Empty if the folder is no
/// bundle, or has no executable.
struct FoundBundle {
    QString folder;
    QString executable;
};
[[nodiscard]] FoundBundle bundleAt(const QString &folder, const QStringList &names);

} // namespace toolchain::review
