#include "formats/udif/udifwriter.h"

#include "formats/crc.h"
#include "formats/failures.h"
#include "formats/udif/udiftables.h"
#include "formats/zeros.h"
#include "support/openfile.h"

#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>

namespace toolchain {

using namespace udif;

UdifWriter::UdifWriter(int descriptor, std::filesystem::path path, const ImageFormat &format, int level)
    : m_descriptor(descriptor)
    , m_path(std::move(path))
    , m_format(format)
    , m_level(level)
    , m_work(std::size_t(format.mostThreads))
{
    m_pending.reserve(format.chunkSize);
}

void UdifWriter::beginPartition(const QString &name)
{
    Partition partition;
    partition.name = name;
    partition.checksum.kind = crc32Kind;
    m_partitions.push_back(partition);
}

bool UdifWriter::write(QByteArrayView bytes)
{
    while (!bytes.isEmpty() && m_outcome) {
        const auto length = std::min(bytes.size(), m_format.chunkSize - m_pending.size());
        m_pending.append(bytes.first(length));
        bytes = bytes.sliced(length);
        if (m_pending.size() == m_format.chunkSize)
            giveChunk();
    }
    return bool(m_outcome);
}

void UdifWriter::endPartition()
{
    if (!m_pending.isEmpty() && m_outcome)
        giveChunk();
}

void UdifWriter::giveChunk()
{
    if (m_work.isFull())
        takeChunk();
    QByteArray bytes;
    bytes.reserve(m_format.chunkSize);
    bytes.swap(m_pending);
    const std::size_t partition = m_partitions.size() - 1;
    m_work.give([partition, bytes = std::move(bytes), kind = m_format.chunkKind, level = m_level] {
        return pack(partition, bytes, kind, level);
    });
}

UdifWriter::PackedChunk UdifWriter::pack(std::size_t partition, const QByteArray &bytes, quint32 kind,
                                         int level)
{
    PackedChunk chunk;
    chunk.partition = partition;
    chunk.size = quint64(bytes.size());
    chunk.checksum = crcOf(bytes);
    if (isZero(bytes))
        return chunk;
    chunk.stored = packedChunk(kind, bytes, level);
    chunk.kind = chunk.stored.isEmpty() ? rawChunk : kind;
    if (chunk.stored.isEmpty())
        chunk.stored = bytes;
    chunk.storedChecksum = crcOf(chunk.stored);
    return chunk;
}

void UdifWriter::takeChunk()
{
    const PackedChunk chunk = m_work.take();
    if (m_outcome)
        storeChunk(chunk);
}

void UdifWriter::storeChunk(const PackedChunk &packed)
{
    Partition &partition = m_partitions[packed.partition];
    Chunk chunk;
    chunk.kind = packed.kind;
    chunk.firstSector = partition.sectorCount;
    chunk.sectorCount = packed.size / sectorSize;
    chunk.offset = m_length;
    chunk.length = quint64(packed.stored.size());
    m_dataChecksum = joinedCrc(m_dataChecksum, packed.storedChecksum, chunk.length);
    partition.checksum.value = joinedCrc(partition.checksum.value, packed.checksum, packed.size);
    partition.sectorCount += chunk.sectorCount;
    partition.chunks.push_back(chunk);
    store(packed.stored);
}

void UdifWriter::store(QByteArrayView bytes)
{
    if (!m_outcome)
        return;
    if (!writeFully(m_descriptor, {bytes.data(), std::size_t(bytes.size())}))
        m_outcome = systemFailure(m_path, errno);
    m_length += quint64(bytes.size());
}

void UdifWriter::finish()
{
    while (!m_work.isEmpty())
        takeChunk();
    Trailer trailer;
    trailer.dataLength = m_length;
    trailer.dataChecksum = {crc32Kind, m_dataChecksum};
    trailer.masterChecksum = {crc32Kind, masterChecksum(m_partitions)};
    for (Partition &partition : m_partitions) {
        partition.firstSector = trailer.sectorCount;
        trailer.sectorCount += partition.sectorCount;
    }
    const QByteArray list = partitionList(m_partitions);
    trailer.listOffset = m_length;
    trailer.listLength = quint64(list.size());
    store(list);
    store(trailerBytes(trailer));
}

} // namespace toolchain
