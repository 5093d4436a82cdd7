#pragma once

#include "formats/resourceseal.h"

#include <QString>

namespace toolchain {

struct SigningOptions {
    bool replacesSeals = false; ///< of an item that is sealed already
    bool sealsNestedBundles = false;
    SealDigests digests = SealDigests::Sha1AndSha256;
    QString certificateSha1; ///< of the identity; only a disk image is signed with its key
};

struct SigningResult {
    QString error; ///< what is wrong with the item, without its path; empty on success
    QString report; ///< what was done, without the item's path
};

/// Seals a bundle, signs a disk image, or checks that a file is a Mach-O file. Anything else is refused.
[[nodiscard]] SigningResult signItem(const QString &path, const SigningOptions &options);

} // namespace toolchain
