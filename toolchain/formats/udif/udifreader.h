#pragma once

#include "formats/udif/udiftables.h"
#include "platform/result.h"
#include "support/openfile.h"
#include "support/orderedwork.h"

#include <QByteArray>

#include <deque>
#include <memory>
#include <optional>

namespace toolchain {

/// Reads a disk image in one file, unpacking on all cores what is read in order. Takes no more memory than
/// some chunks and the tables of all. One thread.
class UdifReader {
public:
    explicit UdifReader(const std::filesystem::path &path);

    /// Fails where there is no reading, or no reading on. Says "image not recognized" of a file
    /// that is no disk image, "corrupt image" of one whose bytes are not those that were written, and of one
    /// that is encrypted that it is.
    [[nodiscard]] const platform::Outcome &outcome() const { return m_outcome; }

    [[nodiscard]] const std::vector<udif::Partition> &partitions() const { return m_partitions; }
    [[nodiscard]] quint64 sectorCount() const { return m_trailer.sectorCount; }

    /// Fills `size` bytes with those of a partition from `offset` on, counted in bytes. False after an error.
    [[nodiscard]] bool read(const udif::Partition &partition, quint64 offset, char *target, qsizetype size);

    /// Whether some of its chunks are packed in a way that is not known here.
    [[nodiscard]] bool needsOtherReader() const;

    /// Reads the bytes of the disk from an open file from now on, in which another program has put those of
    /// all partitions one after the other.
    void readFrom(int disk);

    /// Reads the whole image and compares all its checksums of a known kind. False if one differs or after an
    /// error.
    [[nodiscard]] bool verify();

private:
    bool readTables();
    bool isEncrypted();
    bool readStored(quint64 offset, char *target, qsizetype size);
    using Unpacked = std::optional<QByteArray>;

    bool readFromDisk(const udif::Partition &partition, quint64 offset, char *target, qsizetype size);
    bool readChunk(const udif::Partition &partition, const udif::Chunk &chunk, quint64 offset, char *target,
                   qsizetype size);
    bool unpack(const udif::Partition &partition, const udif::Chunk &chunk);
    void unpackAhead(const udif::Partition &partition);
    void give(const udif::Chunk &chunk);
    bool takeUpTo(const udif::Chunk &chunk);
    [[nodiscard]] static Unpacked unpackedFrom(int file, quint64 dataOffset, const udif::Chunk &chunk);
    struct Checked;

    bool verifyStored();
    bool verifyPartition(const udif::Partition &partition);
    bool verifyOtherwise(const udif::Partition &partition);
    bool fail(const QString &reason);

    const OpenFile m_file;
    const std::filesystem::path m_path;
    platform::Outcome m_outcome;
    quint64 m_fileSize = 0;
    udif::Trailer m_trailer;
    std::vector<udif::Partition> m_partitions;
    int m_disk = -1; ///< see readFrom()
    QByteArray m_unpacked; ///< the bytes of the chunk that was unpacked last
    const udif::Chunk *m_unpackedChunk = nullptr;
    std::deque<const udif::Chunk *> m_ahead; ///< chunks that are being unpacked, in order
    quint64 m_aheadSize = 0; ///< bytes of them, unpacked
    std::unique_ptr<OrderedWork<Unpacked>> m_work; ///< made when something is unpacked
};

} // namespace toolchain
