#pragma once

#include "codesign/signingorder.h"
#include "formats/codesignature/signaturereader.h"

namespace toolchain::codesign {

/// The name that codesign makes of a path: the last component without its extension and its version.
[[nodiscard]] QString canonicalName(const QString &path);

/// The Info.plist that the signature binds: the bundle's file, or what a Mach-O file has in its own section.
[[nodiscard]] QByteArray boundInfoPropertyList(const codesignature::SignedCode &code, qsizetype slice);

/// The identifier for an item of which neither the command line nor an old signature tells one.
[[nodiscard]] QString identifierFor(const codesignature::SignedCode &code, const SigningOrder &order);

} // namespace toolchain::codesign
