#pragma once

#include "formats/codesignature/codebundle.h"

#include <QString>

namespace toolchain::codesignature {

/// The sentence of codebundle.h about a bundle in whose own folder lies something that the seal cannot cover:
/// beside Contents, or beside the Versions of a framework and the links into its current one. What the Finder
/// leaves in folders is passed over. Empty if there is nothing. Public document: Apple's Technical Note
/// TN2206, "Nested Code". Any thread.
[[nodiscard]] QString unsealedRootOf(const CodeBundle &bundle);

} // namespace toolchain::codesignature
