#pragma once

#include "formats/bytestreams.h"
#include "platform/result.h"

#include <QString>

#include <memory>

/// Formats that this toolchain does not read itself, by the program 7z where it is installed.
namespace toolchain {

/// A file without a name that goes when this does, in the folder for large temporary files (TMPDIR, else
/// /var/tmp). What is zero takes no room in it.
class ScratchFile {
public:
    ScratchFile();
    ~ScratchFile();
    ScratchFile(const ScratchFile &) = delete;
    ScratchFile &operator=(const ScratchFile &) = delete;

    /// Open for reading and writing; below 0 if there is none.
    [[nodiscard]] int descriptor() const { return m_descriptor; }

    /// Adds bytes at the end. False, with errno telling why, if that fails.
    [[nodiscard]] bool append(QByteArrayView bytes);

    /// A path under which other programs can read the file as long as this lives.
    [[nodiscard]] QString path() const;

private:
    const int m_descriptor;
    quint64 m_size = 0;
};

namespace sevenzip {

/// The bytes of all partitions of a disk image, one after the other, of which there are `size`.
[[nodiscard]] platform::Result<std::shared_ptr<ScratchFile>> unpackDisk(const QString &image, quint64 size);

/// An APFS volume that can be copied.
struct ApfsVolume {
    QString name;
    qint64 items = 0;
    qint64 size = 0; ///< of all files together, in bytes
    QStringList attributes; ///< the paths FILE:NAME of extended attributes, relative to the volume
};

/// The one APFS volume in a file. The error names an encrypted one, and what 7z would not copy as it is:
/// files that the file system has compressed, devices and pipes.
[[nodiscard]] platform::Result<ApfsVolume> apfsVolume(const QString &file);

/// Copies what lies on that volume of the file into an empty folder, with the extended attributes of files.
[[nodiscard]] platform::Outcome extractApfs(const QString &file, const ApfsVolume &volume,
                                            const QString &folder);

} // namespace sevenzip

} // namespace toolchain
