#pragma once

#include <QByteArray>
#include <QString>

#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

namespace toolchain::hfsplus {

enum class VolumeRoot {
    Contents, ///< the volume holds what lies in the source folder
    Item ///< the volume holds the source itself
};

/// A file, folder or symbolic link that a volume is to hold. Its place in SourceTree::items tells its number.
struct SourceItem {
    std::filesystem::path path; ///< where its bytes come from
    QString storedName; ///< the volume's name for the first item, the root folder
    std::size_t folder = 0; ///< the place of the folder that it lies in; the root folder's is its own
    quint32 entryCount = 0; ///< of a folder
    struct stat status = {};
    QByteArray linkTarget;
    quint32 firstBlock = 0; ///< set when the volume is laid out
    quint32 blockCount = 0;

    [[nodiscard]] bool isFolder() const { return S_ISDIR(status.st_mode); }
    [[nodiscard]] bool isLink() const { return S_ISLNK(status.st_mode); }
    /// The bytes that it takes of the volume; 0 for a folder.
    [[nodiscard]] quint64 size() const;
};

struct SourceTree {
    std::vector<SourceItem> items; ///< the root folder first, folders before what lies in them
    std::string error; ///< which file cannot be taken, and why; empty if all can
};

/// Looks through what a volume called `volumeName` (UTF-8) is to hold. Never follows links. Takes no more
/// memory than some hundred bytes for each file.
[[nodiscard]] SourceTree readSourceTree(const std::filesystem::path &source, VolumeRoot root,
                                        std::string_view volumeName);

} // namespace toolchain::hfsplus
