#pragma once

#include "formats/package/packagejudgement.h"

namespace toolchain {

/// The lines of `pkgutil --check-signature` for a package of this name.
[[nodiscard]] QString signatureReport(const QString &name, const package::PackageJudgement &judgement);

/// Judges a package and prints the report. 0 for a good signature by a trusted signer, 1 for anything else.
[[nodiscard]] int reportSignature(const xar::Archive &archive);

} // namespace toolchain
