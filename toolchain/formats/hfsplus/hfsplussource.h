#pragma once

#include "formats/hfsplus/hfsplusnames.h"
#include "platform/result.h"

#include <QByteArray>
#include <QString>

#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

namespace toolchain::hfsplus {

enum class VolumeRoot {
    contents, ///< the volume holds what lies in the source folder
    item ///< the volume holds the source itself
};

/// A run of blocks that holds a file's bytes.
struct Fork {
    quint64 size = 0; ///< in bytes
    quint32 firstBlock = 0;
    quint32 blockCount = 0;
};

/// An extended attribute. A long one lies in blocks of its own, and its value is read again when they are
/// written.
struct SourceAttribute {
    QString name;
    QByteArray value; ///< only of a short one
    Fork fork; ///< only of a long one
};

/// A file that more than one hard link of the tree stands for.
struct HardLink {
    std::size_t file = 0; ///< of a link: the place of the file with the bytes
    std::size_t firstLink = 0; ///< of that file: the place of a link
    std::size_t previous = 0; ///< of a link: the place of another link to the same file, 0 if it is the first
    std::size_t next = 0; ///< of a link, 0 if it is the last
    quint32 count = 0; ///< of that file: how many links there are
};

/// A file, folder or symbolic link that a volume is to hold. Its place in SourceTree::items tells its number.
struct SourceItem {
    std::filesystem::path path; ///< where its bytes come from
    QString storedName; ///< the volume's name for the first item, the root folder
    NameForm nameForm = NameForm::asStored; ///< in which it is called as its source
    std::size_t folder = 0; ///< the place of the folder that it lies in; the root folder's is its own
    quint32 entryCount = 0; ///< of a folder
    struct stat status = {};
    QByteArray linkTarget;
    Fork data; ///< its size is known at once, its place when the volume is laid out
    Fork resource;
    QByteArray finderInfo; ///< 32 bytes, or none
    std::vector<SourceAttribute> attributes; ///< without those of the fork and the Finder
    HardLink link;

    [[nodiscard]] bool isFolder() const { return S_ISDIR(status.st_mode); }
    [[nodiscard]] bool isLink() const { return S_ISLNK(status.st_mode); }
    /// Whether it is one of the names of a file that has more than one in the tree.
    [[nodiscard]] bool isHardLink() const { return link.file != 0; }
};

struct SourceTree {
    std::vector<SourceItem> items; ///< the root folder first, folders before what lies in them
    platform::Outcome outcome; ///< an error says which file cannot be taken, and why
};

/// Looks through what a volume called `volumeName` (UTF-8) is to hold. Never follows links. Takes no more
/// memory than some hundred bytes for each file, and its short attributes. `time` is when the volume is made,
/// in seconds since 1970.
[[nodiscard]] SourceTree readSourceTree(const std::filesystem::path &source, VolumeRoot root,
                                        std::string_view volumeName, qint64 time);

} // namespace toolchain::hfsplus
