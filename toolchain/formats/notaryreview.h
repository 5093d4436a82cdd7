#pragma once

#include "formats/notaryrequest.h"

namespace toolchain {

/// What the local notary finds in an upload.
struct Review {
    QList<NotaryIssue> issues; ///< none means that every bundle's seal agrees with its files
    QList<QByteArray>
        sealDigests; ///< one for each bundle that has a seal, and one for a disk image or a package
};

/// Whether a file begins or ends as one that the notary looks into.
[[nodiscard]] bool canBeReviewed(const QString &path);

/// Looks into a zip archive, a disk image or a package. A package must be sound and signed. Every folder at
/// an archive's top must be a bundle with a seal that its files agree with; a disk image may hold other
/// things beside such bundles. A file that cannot be read, and one without a bundle, is an issue too. The
/// locale must be a UTF-8 one. `name` is what the archive is called in the issues.
[[nodiscard]] Review reviewUpload(const QString &path, const QString &name);

} // namespace toolchain
