#pragma once

#include "formats/statefolder.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace toolchain {

/// What tells whether a file is still the one it was.
struct FileIdentity {
    qint64 device = 0;
    qint64 number = 0;
    qint64 size = 0; ///< bytes
    qint64 changed = 0; ///< nanoseconds since 1970

    bool operator==(const FileIdentity &) const = default;
};

/// An image whose volume has been copied into a folder.
struct AttachedImage {
    int number = 0; ///< of the disk; 4 or more
    std::string image; ///< full path
    FileIdentity identity;
    std::string mountPoint; ///< full path
    bool wasThere = false; ///< the mount point was an empty folder before, and stays one afterwards
    bool isWhole = false; ///< false until everything is copied
    std::string content = "Apple_HFS"; ///< of the volume's partition
    std::string scheme; ///< see ImageVolume::scheme()

    [[nodiscard]] std::string device() const { return "disk" + std::to_string(number); }
};

/// The attached images of this user, one file each in the state folder. While this lives no other process
/// changes them. What a process that came to an early end has left of a copy is cleared away first, unless it
/// lies in a folder that was there before. So is a copy that nothing can reach any more: its image is gone,
/// nobody has chosen its place, and no process of this user works in it.
class AttachedImages {
public:
    AttachedImages();

    /// Fails where the state folder cannot be used.
    [[nodiscard]] const platform::Outcome &outcome() const { return m_outcome; }

    /// By number. A damaged file is passed over.
    [[nodiscard]] std::vector<AttachedImage> all() const;

    /// The folder for volumes whose place nobody has chosen; it need not exist.
    [[nodiscard]] std::filesystem::path volumesFolder() const;

    /// A disk number that is free.
    [[nodiscard]] int freeNumber() const;

    /// An error names the file.
    [[nodiscard]] platform::Outcome store(const AttachedImage &image) const;

    /// Removes the copy, then what is known of it. An error names the file.
    [[nodiscard]] platform::Outcome remove(const AttachedImage &image) const;

private:
    void clearUnfinished();
    void clearUnreachable();
    [[nodiscard]] bool isUnreachable(const AttachedImage &image) const;
    void forget(const AttachedImage &image) const;
    [[nodiscard]] QString recordPath(int number) const;

    const QString m_folder;
    platform::Outcome m_outcome;
    std::optional<FolderLock> m_lock;
};

} // namespace toolchain
