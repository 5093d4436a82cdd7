#include "formats/udif/udiftables.h"

#include "formats/bigendian.h"
#include "formats/crc.h"

#include "platform/propertylist/propertylist.h"

#include <QUuid>
#include <QVariantMap>

using namespace Qt::StringLiterals;

namespace toolchain::udif {

namespace {

constexpr quint32 version = 4;
constexpr quint32 tableVersion = 1;
constexpr quint64 mostSectors = quint64(1) << 52; // with room to count their bytes

QByteArray checksumBytes(const Checksum &checksum)
{
    constexpr quint32 bits = 32;
    return BigEndianBytes().u32(checksum.kind).u32(bits).u32(checksum.value).zeros(checksumSize - 4).bytes();
}

Checksum checksumAt(QByteArrayView bytes, qsizetype offset)
{
    return {bigEndianAt<quint32>(bytes, offset), bigEndianAt<quint32>(bytes, offset + 8)};
}

QByteArray entryBytes(const Chunk &chunk)
{
    BigEndianBytes entry;
    entry.u32(chunk.kind).zeros(4).u64(chunk.firstSector).u64(chunk.sectorCount);
    return entry.u64(chunk.offset).u64(chunk.length).bytes();
}

QByteArray tableBytes(const Partition &partition, quint32 number)
{
    constexpr quint32 sectorsToReadAhead = 520; // those of a chunk and eight more
    BigEndianBytes table;
    table.raw("mish").u32(tableVersion).u64(partition.firstSector).u64(partition.sectorCount).u64(0);
    table.u32(sectorsToReadAhead).u32(number).zeros(24).raw(checksumBytes(partition.checksum));
    table.u32(quint32(partition.chunks.size()) + 1);
    for (const Chunk &chunk : partition.chunks)
        table.raw(entryBytes(chunk));
    Chunk end{lastChunk, partition.sectorCount, 0, 0, 0};
    if (!partition.chunks.empty())
        end.offset = partition.chunks.back().offset + partition.chunks.back().length;
    return table.raw(entryBytes(end)).bytes();
}

Chunk chunkAt(QByteArrayView table, qsizetype offset)
{
    Chunk chunk;
    chunk.kind = bigEndianAt<quint32>(table, offset);
    chunk.firstSector = bigEndianAt<quint64>(table, offset + 8);
    chunk.sectorCount = bigEndianAt<quint64>(table, offset + 16);
    chunk.offset = bigEndianAt<quint64>(table, offset + 24);
    chunk.length = bigEndianAt<quint64>(table, offset + 32);
    return chunk;
}

std::optional<Partition> readTable(const QString &name, QByteArrayView table)
{
    constexpr qsizetype firstSectorOffset = 8;
    constexpr qsizetype sectorCountOffset = 16;
    constexpr qsizetype dataOffset = 24;
    if (!table.startsWith("mish") || bigEndianAt<quint32>(table, 4) != tableVersion)
        return {};
    Partition partition;
    partition.name = name;
    partition.firstSector = bigEndianAt<quint64>(table, firstSectorOffset);
    partition.sectorCount = bigEndianAt<quint64>(table, sectorCountOffset);
    partition.checksum = checksumAt(table, tableHasChecksum);
    if (partition.sectorCount > mostSectors)
        return {};
    quint64 sector = 0;
    for (qsizetype at = tableHeaderSize; at + tableEntrySize <= table.size(); at += tableEntrySize) {
        Chunk chunk = chunkAt(table, at);
        if (chunk.kind == lastChunk)
            break;
        if (chunk.kind == commentChunk)
            continue;
        if (chunk.firstSector != sector || chunk.sectorCount > partition.sectorCount - sector)
            return {};
        sector += chunk.sectorCount;
        chunk.offset += bigEndianAt<quint64>(table, dataOffset);
        partition.chunks.push_back(chunk);
    }
    return sector == partition.sectorCount ? std::optional(partition) : std::nullopt;
}

} // namespace

QByteArray trailerBytes(const Trailer &trailer)
{
    constexpr quint32 isFlattened = 1;
    constexpr quint32 isDevice = 1;
    BigEndianBytes bytes;
    bytes.raw("koly").u32(version).u32(trailerSize).u32(isFlattened).u64(0);
    bytes.u64(trailer.dataOffset).u64(trailer.dataLength).u64(0).u64(0).u32(1).u32(1);
    bytes.raw(QUuid::createUuid().toRfc4122()).raw(checksumBytes(trailer.dataChecksum));
    bytes.u64(trailer.listOffset).u64(trailer.listLength).zeros(120);
    bytes.raw(checksumBytes(trailer.masterChecksum)).u32(isDevice).u64(trailer.sectorCount).zeros(12);
    return bytes.bytes();
}

std::optional<Trailer> readTrailer(QByteArrayView bytes)
{
    if (bytes.size() != trailerSize || !bytes.startsWith("koly") || bigEndianAt<quint32>(bytes, 4) != version)
        return {};
    Trailer trailer;
    trailer.dataOffset = bigEndianAt<quint64>(bytes, trailerHasDataFork);
    trailer.dataLength = bigEndianAt<quint64>(bytes, trailerHasDataFork + 8);
    trailer.dataChecksum = checksumAt(bytes, trailerHasDataChecksum);
    trailer.listOffset = bigEndianAt<quint64>(bytes, trailerHasList);
    trailer.listLength = bigEndianAt<quint64>(bytes, trailerHasList + 8);
    trailer.masterChecksum = checksumAt(bytes, trailerHasMasterChecksum);
    trailer.sectorCount = bigEndianAt<quint64>(bytes, trailerHasSectorCount);
    return trailer;
}

QByteArray partitionList(const std::vector<Partition> &partitions)
{
    QVariantList tables;
    for (std::size_t place = 0; place < partitions.size(); ++place) {
        const QString identifier = QString::number(qint64(place) - 1); // the first one is not a partition
        tables.append(QVariantMap{{u"Attributes"_s, u"0x0050"_s},
                                  {u"CFName"_s, partitions[place].name},
                                  {u"Data"_s, tableBytes(partitions[place], quint32(place) - 1)},
                                  {u"ID"_s, identifier},
                                  {u"Name"_s, partitions[place].name}});
    }
    return platform::xmlPropertyListData(QVariantMap{{u"resource-fork"_s, QVariantMap{{u"blkx"_s, tables}}}})
        .valueOr({});
}

std::optional<std::vector<Partition>> readPartitionList(const QByteArray &bytes)
{
    const QVariantMap list = platform::propertyListFromData(bytes).valueOr({}).toMap();
    std::vector<Partition> partitions;
    for (const QVariant &entry : list.value(u"resource-fork"_s).toMap().value(u"blkx"_s).toList()) {
        const QVariantMap table = entry.toMap();
        const auto partition =
            readTable(table.value(u"Name"_s).toString(), table.value(u"Data"_s).toByteArray());
        if (!partition)
            return {};
        partitions.push_back(*partition);
    }
    return partitions.empty() ? std::nullopt : std::optional(partitions);
}

quint32 masterChecksum(const std::vector<Partition> &partitions)
{
    BigEndianBytes checksums;
    for (const Partition &partition : partitions)
        checksums.u32(partition.checksum.value);
    const QByteArray bytes = checksums.bytes();
    return crcOf(bytes);
}

} // namespace toolchain::udif
