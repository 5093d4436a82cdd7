#pragma once

#include "formats/udif/udifformat.h"

#include <QByteArray>

#include <filesystem>
#include <string>

namespace toolchain {

/// Writes a disk image of the format UDZO: zlib chunks of 256 KiB of the disk each, or what they hold as it
/// is where that is shorter, then a property list with the tables of chunks, then a trailer. Takes no more
/// memory than some chunks. After an error it does nothing more.
class UdifWriter {
public:
    /// `descriptor` is an empty file open for writing, `path` its name in errors; `level` from 1, fast, to 9,
    /// small.
    UdifWriter(int descriptor, std::filesystem::path path, int level);

    /// Begins the next partition of the disk.
    void beginPartition(const QString &name);

    /// The next bytes of the partition. False after an error.
    bool write(QByteArrayView bytes);

    /// Ends the partition, whose size has to be a multiple of 512 bytes.
    void endPartition();

    /// Writes what belongs behind the last partition.
    void finish();

    [[nodiscard]] const std::string &error() const { return m_error; }

private:
    void writeChunk();
    void store(QByteArrayView bytes);
    [[nodiscard]] QByteArray packed() const;

    const int m_descriptor;
    const std::filesystem::path m_path;
    const int m_level;
    std::string m_error;
    std::vector<udif::Partition> m_partitions;
    QByteArray m_pending; ///< bytes of the chunk that is being filled
    quint64 m_length = 0; ///< of what the file holds
    quint32 m_dataChecksum = 0;
};

} // namespace toolchain
