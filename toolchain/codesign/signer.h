#pragma once

#include "codesign/signingorder.h"

namespace toolchain::codesign {

/// Finds the identity that is meant by a name, a part of one or a fingerprint, "-" for none, and what makes
/// its signatures. `timestamp` is the address of a time-stamp authority, "none", or nothing said; empty means
/// the authority of the service that is set up. The error is codesign's, without the name.
[[nodiscard]] platform::Result<Signer> signerFor(const QString &identity,
                                                 const std::optional<QString> &timestamp);

} // namespace toolchain::codesign
