#pragma once

#include "formats/udif/chunkpacking.h"
#include "platform/result.h"
#include "support/orderedwork.h"

#include <QByteArray>

#include <filesystem>
#include <string>

namespace toolchain {

/// Writes a disk image: packed chunks, or what they hold as it is where that is shorter, then a property list
/// with the tables of chunks, then a trailer. Packs on all cores. Takes no more memory than some chunks for
/// each core. After an error it does nothing more. One thread.
class UdifWriter {
public:
    /// `descriptor` is an empty file open for writing, `path` its name in errors; `level` from 1, fast, to 9,
    /// small.
    UdifWriter(int descriptor, std::filesystem::path path, const udif::ImageFormat &format, int level);

    /// Begins the next partition of the disk.
    void beginPartition(const QString &name);

    /// The next bytes of the partition. False after an error.
    bool write(QByteArrayView bytes);

    /// Ends the partition, whose size has to be a multiple of 512 bytes.
    void endPartition();

    /// Writes what belongs behind the last partition.
    void finish();

    [[nodiscard]] const platform::Outcome &outcome() const { return m_outcome; }

private:
    /// A chunk that is ready to be stored.
    struct PackedChunk {
        std::size_t partition = 0; ///< its place in the list
        quint64 size = 0; ///< bytes on the disk
        quint32 kind = udif::zeroChunk;
        quint32 checksum = 0; ///< of the bytes on the disk
        quint32 storedChecksum = 0;
        QByteArray stored;
    };

    [[nodiscard]] static PackedChunk pack(std::size_t partition, const QByteArray &bytes, quint32 kind,
                                          int level);
    void giveChunk();
    void takeChunk();
    void storeChunk(const PackedChunk &chunk);
    void store(QByteArrayView bytes);

    const int m_descriptor;
    const std::filesystem::path m_path;
    const udif::ImageFormat m_format;
    const int m_level;
    platform::Outcome m_outcome;
    std::vector<udif::Partition> m_partitions;
    QByteArray m_pending; ///< bytes of the chunk that is being filled
    quint64 m_length = 0; ///< of what the file holds
    quint32 m_dataChecksum = 0;
    OrderedWork<PackedChunk> m_work;
};

} // namespace toolchain
