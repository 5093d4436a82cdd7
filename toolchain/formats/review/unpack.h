#pragma once

#include "platform/result.h"

#include <QByteArrayView>
#include <QString>

namespace toolchain::review {

/// What a file is by its bytes, as far as something may be packed in it.
enum class ArchiveKind {
    none,
    zip, ///< also jar, whl and the like
    tar,
    compressed, ///< gzip, bzip2 or xz, around a tar archive or around one file
    package, ///< xar, which is what a flat installer package is
    image ///< a disk image
};

/// How many bytes of a file's beginning tell what it is.
inline constexpr qint64 tellingBytes = 4096;

/// Judges by the beginning, and for a disk image by the end of the file at the path, which is looked at only
/// if its name is that of an image.
[[nodiscard]] ArchiveKind archiveKind(QByteArrayView beginning, const QString &path);

/// What may still be unpacked before it counts as a bomb.
struct UnpackBudget {
    qint64 bytes = 16LL << 30;
    qint64 entries = 1'000'000;
};

/// Whether the archive holds something that begins as code or as an archive does. Writes nothing. An error
/// for what cannot be read to its end.
[[nodiscard]] platform::Result<bool> mayHoldCode(const QString &archive, ArchiveKind kind,
                                                 UnpackBudget &budget);

/// Unpacks an archive into an empty folder: files, folders and links, all readable for this user, nothing
/// outside of the folder. What the budget does not allow is an error. The locale must be a UTF-8 one. Any
/// thread.
[[nodiscard]] platform::Result<void> unpack(const QString &archive, ArchiveKind kind, const QString &folder,
                                            UnpackBudget &budget);

} // namespace toolchain::review
