#pragma once

#include "formats/resourceseal/sealrules.h"

#include <vector>

namespace toolchain::seal {

/// A bundle as its seal sees it.
struct SealedFolder {
    QString base; ///< the folder that the seal's paths start from: Contents, a framework's version, or a flat
                  ///< bundle
    Layout layout = Layout::withResources;
    QByteArray executable; ///< what the signature itself covers, relative to base; empty if there is nothing
};

enum class ItemKind { file, link, nestedCode };

struct ScannedItem {
    QByteArray path; ///< bytes as the file system has them, valid UTF-8, relative to the base
    ItemKind kind = ItemKind::file;
    Coverage first = Coverage::omitted; ///< by "rules"; always Omitted for links and nested code
    Coverage second = Coverage::omitted; ///< by "rules2"
    QByteArray linkTarget; ///< of a link
};

/// What of a scan is to be kept. A bundle may have a hundred thousand files.
enum class Keep { everything, nestedCodeAndLinks };

/// Walks a bundle's folder and answers what its seal has to tell of, folder by folder, each in the order of
/// names. A folder that the second rules call nested and whose name has a dot is one item and not entered; so
/// is a file there. No link is followed. What is neither file, folder nor link, what cannot be read, and a
/// name that is not UTF-8 is an error that names it. An AppleDouble file "._NAME" beside NAME counts as
/// attributes of NAME and is passed over, as macOS does where it meets one.
[[nodiscard]] platform::Result<std::vector<ScannedItem>> scanFolder(const SealedFolder &folder,
                                                                    const RuleSet &rules,
                                                                    const RuleSet &rules2,
                                                                    Keep keep = Keep::everything);

/// Whether a link at `path` below the base leads out of the bundle: by a relative target, or by an absolute
/// one that is not below /System or /Library. `path` and `base` decide; nothing on disk is asked.
[[nodiscard]] bool leadsOut(const SealedFolder &folder, const QByteArray &path, const QByteArray &linkTarget);

} // namespace toolchain::seal
