#include "formats/udif/udifreader.h"

#include "formats/udif/chunkpacking.h"
#include "support/wholefile.h"

#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace toolchain {

using namespace udif;

namespace {

constexpr quint64 longestList = 64 << 20; ///< bytes; the tables of a disk of some terabytes
constexpr quint64 longestChunk = 16 << 20; ///< bytes, unpacked; usual are up to one MiB
constexpr qsizetype pieceSize = 256 << 10;

constexpr const char *notRecognized = "image not recognized";
constexpr const char *corrupt = "corrupt image";

quint32 crc(quint32 before, const QByteArray &bytes, qsizetype size)
{
    return quint32(crc32(before, reinterpret_cast<const Bytef *>(bytes.constData()), uInt(size)));
}

} // namespace

UdifReader::UdifReader(const std::filesystem::path &path)
    : m_file(path, LastLink::Followed)
    , m_path(path)
{
    struct stat status = {};
    if (m_file.descriptor() < 0 || fstat(m_file.descriptor(), &status) != 0)
        m_error = std::strerror(errno);
    m_fileSize = quint64(status.st_size);
    if (m_error.empty() && (!S_ISREG(status.st_mode) || !readTables()))
        m_error = notRecognized;
}

bool UdifReader::readTables()
{
    QByteArray bytes(trailerSize, Qt::Uninitialized);
    if (m_fileSize < quint64(trailerSize) || !readStored(m_fileSize - trailerSize, bytes.data(), trailerSize))
        return false;
    const auto trailer = readTrailer(bytes);
    if (!trailer || trailer->listLength > longestList)
        return false;
    m_trailer = *trailer;
    bytes = QByteArray(qsizetype(trailer->listLength), Qt::Uninitialized);
    if (!readStored(trailer->listOffset, bytes.data(), bytes.size()))
        return false;
    auto partitions = readPartitionList(bytes);
    if (partitions)
        m_partitions = std::move(*partitions);
    return partitions.has_value();
}

bool UdifReader::fail(const char *reason)
{
    if (m_error.empty())
        m_error = reason;
    return false;
}

bool UdifReader::readStored(quint64 offset, char *target, qsizetype size)
{
    if (offset > m_fileSize || quint64(size) > m_fileSize - offset)
        return fail(corrupt);
    while (size > 0) {
        const ssize_t length = pread(m_file.descriptor(), target, std::size_t(size), off_t(offset));
        if (length < 0 && errno == EINTR)
            continue;
        if (length <= 0)
            return fail(length < 0 ? std::strerror(errno) : corrupt);
        target += length;
        size -= length;
        offset += quint64(length);
    }
    return true;
}

bool UdifReader::read(const Partition &partition, quint64 offset, char *target, qsizetype size)
{
    const quint64 partitionSize = partition.sectorCount * sectorSize;
    if (offset > partitionSize || quint64(size) > partitionSize - offset)
        return fail(corrupt);
    const quint64 sector = offset / sectorSize;
    auto chunk =
        std::upper_bound(partition.chunks.begin(), partition.chunks.end(), sector,
                         [](quint64 value, const Chunk &other) { return value < other.firstSector; });
    if (chunk != partition.chunks.begin())
        --chunk;
    for (; size > 0 && chunk != partition.chunks.end(); ++chunk) {
        const quint64 inside = offset - chunk->firstSector * sectorSize;
        const auto length = qsizetype(std::min(quint64(size), chunk->sectorCount * sectorSize - inside));
        if (length > 0 && !readChunk(*chunk, inside, target, length))
            return false;
        target += length;
        size -= length;
        offset += quint64(length);
    }
    return size == 0 || fail(corrupt);
}

bool UdifReader::readChunk(const Chunk &chunk, quint64 offset, char *target, qsizetype size)
{
    switch (chunk.kind) {
    case zeroChunk:
    case ignoredChunk:
        std::memset(target, 0, std::size_t(size));
        return true;
    case rawChunk:
        return readStored(m_trailer.dataOffset + chunk.offset + offset, target, size);
    case adcChunk:
    case zlibChunk:
    case bzip2Chunk:
    case xzChunk:
        if (!unpack(chunk))
            return false;
        std::memcpy(target, m_unpacked.constData() + offset, std::size_t(size));
        return true;
    default:
        return fail("this kind of compression is not known here");
    }
}

bool UdifReader::unpack(const Chunk &chunk)
{
    if (m_unpackedChunk == &chunk)
        return true;
    if (chunk.sectorCount > longestChunk / sectorSize || chunk.length > 2 * longestChunk)
        return fail(corrupt);
    m_unpackedChunk = nullptr;
    QByteArray stored(qsizetype(chunk.length), Qt::Uninitialized);
    if (!readStored(m_trailer.dataOffset + chunk.offset, stored.data(), stored.size()))
        return false;
    auto unpacked = unpackedChunk(chunk.kind, stored, qsizetype(chunk.sectorCount * sectorSize));
    if (!unpacked)
        return fail(corrupt);
    m_unpacked = std::move(*unpacked);
    m_unpackedChunk = &chunk;
    return true;
}

bool UdifReader::verify()
{
    if (!m_error.empty())
        return false;
    if (m_trailer.masterChecksum.kind == crc32Kind
        && m_trailer.masterChecksum.value != masterChecksum(m_partitions))
        return fail(corrupt);
    return verifyStored()
        && std::all_of(m_partitions.begin(), m_partitions.end(),
                       [this](const Partition &partition) { return verifyPartition(partition); });
}

bool UdifReader::verifyStored()
{
    if (m_trailer.dataChecksum.kind != crc32Kind)
        return true;
    QByteArray piece(pieceSize, Qt::Uninitialized);
    quint32 value = 0;
    for (quint64 done = 0; done < m_trailer.dataLength;) {
        const auto length = qsizetype(std::min(m_trailer.dataLength - done, quint64(pieceSize)));
        if (!readStored(m_trailer.dataOffset + done, piece.data(), length))
            return false;
        value = crc(value, piece, length);
        done += quint64(length);
    }
    return value == m_trailer.dataChecksum.value || fail(corrupt);
}

bool UdifReader::verifyPartition(const Partition &partition)
{
    if (partition.checksum.kind != crc32Kind)
        return true;
    QByteArray piece(pieceSize, Qt::Uninitialized);
    const quint64 size = partition.sectorCount * sectorSize;
    quint32 value = 0;
    for (quint64 done = 0; done < size;) {
        const auto length = qsizetype(std::min(size - done, quint64(pieceSize)));
        if (!read(partition, done, piece.data(), length))
            return false;
        value = crc(value, piece, length);
        done += quint64(length);
    }
    return value == partition.checksum.value || fail(corrupt);
}

} // namespace toolchain
