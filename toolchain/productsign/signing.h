#pragma once

#include "formats/codesignature/cms.h"
#include "formats/xar/archive.h"

namespace toolchain {

/// Fails with what keeps a file from being signed as a package. Reads the whole package.
[[nodiscard]] platform::Outcome checkPackage(const QString &path,
                                             const platform::Result<xar::Archive> &package);

/// Writes a copy of a package with both signatures of the identity, which must have an RSA key, and its whole
/// chain of certificates.
[[nodiscard]] platform::Outcome writeSignedPackage(const xar::Archive &package,
                                                   const SigningIdentity &identity, const Stamper &stamper,
                                                   const QString &output);

} // namespace toolchain
