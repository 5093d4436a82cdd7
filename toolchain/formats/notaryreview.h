#pragma once

#include "formats/notaryrequest.h"

namespace toolchain {

/// What the local notary finds in an archive.
struct Review {
    QList<NotaryIssue> issues; ///< none means that every bundle's seal agrees with its files
    QList<QByteArray> sealDigests; ///< one for each bundle that has a seal
};

/// Looks into a zip archive: every folder at its top must be a bundle with a seal that its files agree
/// with. An archive that cannot be read, and one without a bundle, is an issue too. The locale must be a
/// UTF-8 one.
[[nodiscard]] Review reviewArchive(const QString &path);

} // namespace toolchain
