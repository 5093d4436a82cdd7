#pragma once

#include "formats/udif/udiftables.h"
#include "support/openfile.h"

#include <QByteArray>

namespace toolchain {

/// Reads a disk image in one file whose chunks are zlib streams, plain bytes or zeros. Takes no more memory
/// than one chunk and the tables of all.
class UdifReader {
public:
    explicit UdifReader(const std::filesystem::path &path);

    /// Why there is no reading, or no reading on; empty if there is. Says "image not recognized" of a file
    /// that is no disk image, and "corrupt image" of one whose bytes are not those that were written.
    [[nodiscard]] const std::string &error() const { return m_error; }

    [[nodiscard]] const std::vector<udif::Partition> &partitions() const { return m_partitions; }
    [[nodiscard]] quint64 sectorCount() const { return m_trailer.sectorCount; }

    /// Fills `size` bytes with those of a partition from `offset` on, counted in bytes. False after an error.
    [[nodiscard]] bool read(const udif::Partition &partition, quint64 offset, char *target, qsizetype size);

    /// Reads the whole image and compares all its checksums of a known kind. False if one differs or after an
    /// error.
    [[nodiscard]] bool verify();

private:
    bool readTables();
    bool readStored(quint64 offset, char *target, qsizetype size);
    bool readChunk(const udif::Chunk &chunk, quint64 offset, char *target, qsizetype size);
    bool unpack(const udif::Chunk &chunk);
    bool verifyStored();
    bool verifyPartition(const udif::Partition &partition);
    bool fail(const char *reason);

    const OpenFile m_file;
    const std::filesystem::path m_path;
    std::string m_error;
    quint64 m_fileSize = 0;
    udif::Trailer m_trailer;
    std::vector<udif::Partition> m_partitions;
    QByteArray m_unpacked; ///< the bytes of the chunk that was unpacked last
    const udif::Chunk *m_unpackedChunk = nullptr;
};

} // namespace toolchain
