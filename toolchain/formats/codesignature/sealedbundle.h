#pragma once

#include "formats/codesignature/codebundle.h"
#include "formats/resourceseal/bundlescan.h"

namespace toolchain::codesignature {

/// A bundle as its seal sees it. The main file is covered by the signature itself.
[[nodiscard]] inline seal::SealedFolder sealedFolder(const CodeBundle &bundle)
{
    const auto layout =
        bundle.layout == BundleLayout::flat ? seal::Layout::flat : seal::Layout::withResources;
    return {bundle.base, layout, bundle.mainFile().sliced(bundle.base.size() + 1).toUtf8()};
}

} // namespace toolchain::codesignature
