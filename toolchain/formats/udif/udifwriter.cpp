#include "formats/udif/udifwriter.h"

#include "formats/udif/udiftables.h"
#include "support/wholefile.h"

#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>

namespace toolchain {

using namespace udif;

namespace {

constexpr qsizetype chunkSize = 512 * sectorSize;

quint32 crc(quint32 before, QByteArrayView bytes)
{
    return quint32(crc32(before, reinterpret_cast<const Bytef *>(bytes.data()), uInt(bytes.size())));
}

bool isZero(QByteArrayView bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte == '\0'; });
}

} // namespace

UdifWriter::UdifWriter(int descriptor, std::filesystem::path path, int level)
    : m_descriptor(descriptor)
    , m_path(std::move(path))
    , m_level(level)
{
    m_pending.reserve(chunkSize);
}

void UdifWriter::beginPartition(const QString &name)
{
    Partition partition;
    partition.name = name;
    partition.checksum.kind = crc32Kind;
    if (!m_partitions.empty())
        partition.firstSector = m_partitions.back().firstSector + m_partitions.back().sectorCount;
    m_partitions.push_back(partition);
}

bool UdifWriter::write(QByteArrayView bytes)
{
    while (!bytes.isEmpty() && m_error.empty()) {
        const auto length = std::min(bytes.size(), chunkSize - m_pending.size());
        m_pending.append(bytes.first(length));
        bytes = bytes.sliced(length);
        if (m_pending.size() == chunkSize)
            writeChunk();
    }
    return m_error.empty();
}

void UdifWriter::endPartition()
{
    if (!m_pending.isEmpty() && m_error.empty())
        writeChunk();
}

void UdifWriter::writeChunk()
{
    Partition &partition = m_partitions.back();
    Chunk chunk;
    chunk.firstSector = partition.sectorCount;
    chunk.sectorCount = quint64(m_pending.size()) / sectorSize;
    chunk.offset = m_length;
    if (!isZero(m_pending)) {
        const QByteArray bytes = packed();
        chunk.kind = bytes.isEmpty() ? rawChunk : zlibChunk;
        store(bytes.isEmpty() ? m_pending : bytes);
    }
    chunk.length = m_length - chunk.offset;
    partition.checksum.value = crc(partition.checksum.value, m_pending);
    partition.sectorCount += chunk.sectorCount;
    partition.chunks.push_back(chunk);
    m_pending.truncate(0);
}

/// The pending bytes as a zlib stream; empty if it would not be shorter.
QByteArray UdifWriter::packed() const
{
    QByteArray bytes(m_pending.size() - 1, Qt::Uninitialized);
    auto length = uLongf(bytes.size());
    const int result =
        compress2(reinterpret_cast<Bytef *>(bytes.data()), &length,
                  reinterpret_cast<const Bytef *>(m_pending.constData()), uLong(m_pending.size()), m_level);
    bytes.truncate(result == Z_OK ? qsizetype(length) : 0);
    return bytes;
}

void UdifWriter::store(QByteArrayView bytes)
{
    m_dataChecksum = crc(m_dataChecksum, bytes);
    while (!bytes.isEmpty() && m_error.empty()) {
        const ssize_t length = ::write(m_descriptor, bytes.data(), std::size_t(bytes.size()));
        if (length < 0 && errno == EINTR)
            continue;
        if (length < 0) {
            m_error = systemError(m_path, errno);
            return;
        }
        bytes = bytes.sliced(length);
        m_length += quint64(length);
    }
}

void UdifWriter::finish()
{
    Trailer trailer;
    trailer.dataLength = m_length;
    trailer.dataChecksum = {crc32Kind, m_dataChecksum};
    trailer.masterChecksum = {crc32Kind, masterChecksum(m_partitions)};
    for (const Partition &partition : m_partitions)
        trailer.sectorCount += partition.sectorCount;
    const QByteArray list = partitionList(m_partitions);
    trailer.listOffset = m_length;
    trailer.listLength = quint64(list.size());
    store(list);
    store(trailerBytes(trailer));
}

} // namespace toolchain
