#include "formats/udif/udifreader.h"

#include "formats/udif/chunkpacking.h"
#include "support/wholefile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

using namespace Qt::StringLiterals;

namespace toolchain {

using namespace udif;

namespace {

constexpr quint64 longestList = 64 << 20; ///< bytes; the tables of a disk of some terabytes
constexpr std::size_t mostReaders = 6; ///< threads; an lzma decoder takes some megabytes

const QString notRecognized = u"image not recognized"_s;
const QString corrupt = u"corrupt image"_s;

} // namespace

UdifReader::UdifReader(const std::filesystem::path &path)
    : m_file(path, LastLink::followed)
    , m_path(path)
{
    struct stat status = {};
    if (m_file.descriptor() < 0 || fstat(m_file.descriptor(), &status) != 0)
        m_outcome = platform::Error{QString::fromLocal8Bit(std::strerror(errno))};
    m_fileSize = quint64(status.st_size);
    if (m_outcome && (!S_ISREG(status.st_mode) || !readTables()))
        m_outcome = platform::Error{isEncrypted() ? u"the image is encrypted, which cannot be read here"_s
                                                  : notRecognized};
}

/// Encrypted images begin or, older ones, end with a word of their own.
bool UdifReader::isEncrypted()
{
    constexpr qsizetype wordSize = 8;
    QByteArray word(wordSize, '\0');
    m_outcome = {};
    if (m_fileSize < quint64(wordSize) || !readStored(0, word.data(), wordSize))
        return false;
    return word == "encrcdsa"
        || (readStored(m_fileSize - wordSize, word.data(), wordSize) && word == "cdsaencr");
}

bool UdifReader::needsOtherReader() const
{
    const auto isUnknown = [](const Chunk &chunk) {
        return chunk.kind != zeroChunk && chunk.kind != rawChunk && chunk.kind != ignoredChunk
            && !canUnpack(chunk.kind);
    };
    return m_disk < 0
        && std::any_of(m_partitions.begin(), m_partitions.end(), [&](const Partition &partition) {
               return std::any_of(partition.chunks.begin(), partition.chunks.end(), isUnknown);
           });
}

void UdifReader::readFrom(int disk)
{
    m_disk = disk;
}

bool UdifReader::readTables()
{
    QByteArray bytes(trailerSize, Qt::Uninitialized);
    if (m_fileSize < quint64(trailerSize) || !readStored(m_fileSize - trailerSize, bytes.data(), trailerSize))
        return false;
    const auto trailer = readTrailer(bytes);
    if (!trailer || trailer->listLength > std::min(longestList, m_fileSize))
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

bool UdifReader::fail(const QString &reason)
{
    if (m_outcome)
        m_outcome = platform::Error{reason};
    return false;
}

bool UdifReader::readStored(quint64 offset, char *target, qsizetype size)
{
    if (offset > m_fileSize || quint64(size) > m_fileSize - offset)
        return fail(corrupt);
    return readFully(m_file.descriptor(), offset, target, size)
        || fail(errno != 0 ? QString::fromLocal8Bit(std::strerror(errno)) : corrupt);
}

bool UdifReader::readFromDisk(const Partition &partition, quint64 offset, char *target, qsizetype size)
{
    for (const Partition &before : m_partitions) {
        if (&before == &partition)
            break;
        offset += before.sectorCount * sectorSize;
    }
    return readFully(m_disk, offset, target, size) || fail(corrupt);
}

bool UdifReader::read(const Partition &partition, quint64 offset, char *target, qsizetype size)
{
    const quint64 partitionSize = partition.sectorCount * sectorSize;
    if (offset > partitionSize || quint64(size) > partitionSize - offset)
        return fail(corrupt);
    if (m_disk >= 0)
        return readFromDisk(partition, offset, target, size);
    const quint64 sector = offset / sectorSize;
    auto chunk =
        std::upper_bound(partition.chunks.begin(), partition.chunks.end(), sector,
                         [](quint64 value, const Chunk &other) { return value < other.firstSector; });
    if (chunk != partition.chunks.begin())
        --chunk;
    for (; size > 0 && chunk != partition.chunks.end(); ++chunk) {
        const quint64 inside = offset - chunk->firstSector * sectorSize;
        const auto length = qsizetype(std::min(quint64(size), chunk->sectorCount * sectorSize - inside));
        if (length > 0 && !readChunk(partition, *chunk, inside, target, length))
            return false;
        target += length;
        size -= length;
        offset += quint64(length);
    }
    return size == 0 || fail(corrupt);
}

bool UdifReader::readChunk(const Partition &partition, const Chunk &chunk, quint64 offset, char *target,
                           qsizetype size)
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
        if (!unpack(partition, chunk))
            return false;
        std::memcpy(target, m_unpacked.constData() + offset, std::size_t(size));
        return true;
    default:
        return fail(u"this kind of compression is not known here"_s);
    }
}

/// What is asked for in order is unpacked ahead on all cores; what is not is unpacked alone.
bool UdifReader::unpack(const Partition &partition, const Chunk &chunk)
{
    if (m_unpackedChunk == &chunk)
        return true;
    if (chunk.sectorCount > longestChunk / sectorSize || chunk.length > 2 * longestChunk)
        return fail(corrupt);
    const bool isInOrder =
        m_unpackedChunk != nullptr && m_unpackedChunk < &chunk && &chunk <= m_unpackedChunk + 2;
    const bool isUnderWay = std::find(m_ahead.begin(), m_ahead.end(), &chunk) != m_ahead.end();
    if (!m_work)
        m_work = std::make_unique<OrderedWork<Unpacked>>(mostReaders);
    if (!isUnderWay) {
        while (!m_ahead.empty())
            (void)takeUpTo(*m_ahead.back());
        give(chunk);
    }
    if (isInOrder || isUnderWay)
        unpackAhead(partition);
    return takeUpTo(chunk);
}

void UdifReader::unpackAhead(const Partition &partition)
{
    constexpr quint64 mostBytes = 24 << 20;
    const Chunk *const end = partition.chunks.data() + partition.chunks.size();
    for (const Chunk *next = m_ahead.back() + 1; next < end && !m_work->isFull(); ++next) {
        if (!canUnpack(next->kind))
            continue;
        if (next->sectorCount > longestChunk / sectorSize || next->length > 2 * longestChunk
            || m_aheadSize + next->sectorCount * sectorSize > mostBytes)
            return;
        give(*next);
    }
}

void UdifReader::give(const Chunk &chunk)
{
    m_ahead.push_back(&chunk);
    m_aheadSize += chunk.sectorCount * sectorSize;
    m_work->give([file = m_file.descriptor(), dataOffset = m_trailer.dataOffset, chunk] {
        return unpackedFrom(file, dataOffset, chunk);
    });
}

/// Takes the results up to that of a chunk, which becomes the one that is at hand.
bool UdifReader::takeUpTo(const Chunk &chunk)
{
    m_unpackedChunk = nullptr;
    for (bool isTaken = false; !isTaken;) {
        isTaken = m_ahead.front() == &chunk;
        m_aheadSize -= m_ahead.front()->sectorCount * sectorSize;
        m_ahead.pop_front();
        Unpacked unpacked = m_work->take();
        if (!isTaken)
            continue;
        if (!unpacked)
            return fail(corrupt);
        m_unpacked = std::move(*unpacked);
    }
    m_unpackedChunk = &chunk;
    return true;
}

/// A chunk whose bytes are not all in the file is as damaged as one that cannot be unpacked.
UdifReader::Unpacked UdifReader::unpackedFrom(int file, quint64 dataOffset, const Chunk &chunk)
{
    const auto size = qsizetype(chunk.sectorCount * sectorSize);
    QByteArray stored(chunk.kind == rawChunk ? size : qsizetype(chunk.length), Qt::Uninitialized);
    if (!readFully(file, dataOffset + chunk.offset, stored.data(), stored.size()))
        return {};
    return chunk.kind == rawChunk ? stored : unpackedChunk(chunk.kind, stored, size);
}

} // namespace toolchain
