#include "formats/udif/guidtable.h"

#include "formats/crc.h"
#include "formats/littleendian.h"

#include <QUuid>
#include <QtEndian>

#include <algorithm>
#include <limits>

namespace toolchain {

namespace {

constexpr qsizetype sectorSize = 512;
constexpr quint32 entrySize = 128;
constexpr quint32 entryCount = 128;
constexpr quint64 entriesSectors = entrySize * entryCount / sectorSize;
constexpr quint64 firstUsableSector = 2 + entriesSectors;
constexpr quint64 volumeSector = 40;

/// An identifier as the format keeps it: its first three parts with the least significant byte first.
LittleEndianBytes &addIdentifier(LittleEndianBytes &bytes, const QUuid &identifier)
{
    bytes.u32(identifier.data1).u16(identifier.data2).u16(identifier.data3);
    return bytes.raw({reinterpret_cast<const char *>(identifier.data4), sizeof identifier.data4});
}

/// A master boot record whose one partition keeps old programs off the whole disk.
QByteArray protectiveRecord(quint64 diskSectors)
{
    constexpr qsizetype partitionOffset = 446;
    constexpr quint32 firstAddress =
        0xfffffe00; // boot flag, then an address in heads and cylinders: beyond them
    constexpr quint32 kindAndLastAddress = 0xfffffeee;
    LittleEndianBytes partition;
    partition.add(firstAddress).add(kindAndLastAddress).add(quint32(1));
    partition.add(quint32(std::min<quint64>(diskSectors - 1, std::numeric_limits<quint32>::max())));
    const QByteArray record = QByteArray(partitionOffset, '\0') + partition.bytes();
    return record.leftJustified(sectorSize - 2, '\0') + "\x55\xaa";
}

QByteArray entries(quint64 volumeSectors)
{
    const QUuid appleHfs(0x48465300, 0x0000, 0x11aa, 0xaa, 0x11, 0x00, 0x30, 0x65, 0x43, 0xec, 0xac);
    LittleEndianBytes entry;
    addIdentifier(addIdentifier(entry, appleHfs), QUuid::createUuid());
    entry.add(volumeSector).add(volumeSector + volumeSectors - 1).add(quint64(0));
    for (const char16_t unit : std::u16string_view(u"disk image"))
        entry.add(quint16(unit));
    return entry.bytes().leftJustified(entrySize * entryCount, '\0');
}

struct HeaderPlaces {
    quint64 own = 0;
    quint64 other = 0;
    quint64 entries = 0;
};

QByteArray headerFor(const HeaderPlaces &places, quint64 lastUsable, const QUuid &disk,
                     quint32 entriesChecksum)
{
    constexpr quint32 revision = 0x00010000;
    constexpr quint32 headerSize = 92;
    const auto withChecksum = [&](quint32 checksum) {
        LittleEndianBytes header;
        header.add(qFromLittleEndian<quint64>("EFI PART"))
            .add(revision)
            .add(headerSize)
            .add(checksum)
            .add(quint32(0));
        header.add(places.own).add(places.other).add(firstUsableSector).add(lastUsable);
        addIdentifier(header, disk);
        header.add(places.entries).add(entryCount).add(entrySize).add(entriesChecksum);
        return header.bytes();
    };
    return withChecksum(crcOf(withChecksum(0))).leftJustified(sectorSize, '\0');
}

} // namespace

GuidTable guidTableFor(quint64 volumeSectors)
{
    const quint64 behindVolume = volumeSector + volumeSectors;
    const quint64 lastSector = behindVolume + entriesSectors;
    const QUuid disk = QUuid::createUuid();
    GuidTable table;
    table.entries = entries(volumeSectors);
    const quint32 checksum = crcOf(table.entries);
    table.protectiveRecord = protectiveRecord(lastSector + 1);
    table.header = headerFor({1, lastSector, 2}, behindVolume - 1, disk, checksum);
    table.gap = QByteArray(qsizetype(volumeSector - firstUsableSector) * sectorSize, '\0');
    table.backupHeader = headerFor({lastSector, 1, behindVolume}, behindVolume - 1, disk, checksum);
    return table;
}

} // namespace toolchain
