#pragma once

#include "formats/codesignature/codebundle.h"
#include "formats/resourceseal/bundlescan.h"

#include <QStringList>

#include <map>
#include <vector>

namespace sealwright::examine {

/// A bundle as codesign reads it.
struct ReadBundle {
    platform::Result<toolchain::codesignature::CodeBundle> bundle;
    std::vector<toolchain::seal::ScannedItem> items; ///< nested code and links only
    QString scanError; ///< why the folder cannot be walked; empty if it can
};

/// Reads those of the paths that are folders. Absolute paths. Any thread.
[[nodiscard]] std::map<QString, ReadBundle> readBundles(const QStringList &paths);

/// The nested code that the bundle's seal tells of. Absolute paths.
[[nodiscard]] QStringList nestedCodeOf(const ReadBundle &read);

/// The folder that the seal of the bundle is about.
[[nodiscard]] toolchain::seal::SealedFolder sealedFolder(const toolchain::codesignature::CodeBundle &bundle);

} // namespace sealwright::examine
