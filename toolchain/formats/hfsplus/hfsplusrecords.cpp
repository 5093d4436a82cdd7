#include "formats/hfsplus/hfsplusrecords.h"

#include "formats/bigendian.h"
#include "formats/failures.h"
#include "formats/hfsplus/hfsplusformat.h"
#include "formats/hfsplus/hfsplusnames.h"

#include <algorithm>
#include <limits>

namespace toolchain::hfsplus {

namespace {

/// The user and the group that macOS takes for whoever looks at the volume.
constexpr quint32 unknownOwner = 99;

quint32 dateOf(qint64 secondsSince1970)
{
    return quint32(
        std::clamp<qint64>(secondsSince1970 + secondsBefore1970, 0, std::numeric_limits<quint32>::max()));
}

QByteArray nameBytes(const QString &name)
{
    BigEndianBytes bytes;
    bytes.u16(quint16(name.size()));
    for (const QChar unit : name)
        bytes.u16(unit.unicode());
    return bytes.bytes();
}

QByteArray keyOf(quint32 folder, const QString &name)
{
    const QByteArray key = BigEndianBytes().u32(folder).raw(nameBytes(name)).bytes();
    return BigEndianBytes().u16(quint16(key.size())).raw(key).bytes();
}

QByteArray forkBytes(const Fork &fork, quint32 clumpSize = 0)
{
    BigEndianBytes bytes;
    bytes.u64(fork.size).u32(clumpSize).u32(fork.blockCount).u32(fork.blockCount > 0 ? fork.firstBlock : 0);
    return bytes.u32(fork.blockCount).zeros(forkSize - 24).bytes();
}

/// What the record of a file or folder says of owner, group and the number that goes with its kind.
struct Permissions {
    quint32 owner = unknownOwner;
    quint32 group = unknownOwner;
    quint32 special = 1;
};

/// What the records of files and folders have in common from the dates to the permissions. `created` is in
/// seconds since 1970.
QByteArray datesAndPermissions(const struct stat &status, qint64 created, const Permissions &permissions)
{
    BigEndianBytes bytes;
    bytes.u32(dateOf(created))
        .u32(dateOf(status.st_mtim.tv_sec))
        .u32(dateOf(status.st_ctim.tv_sec))
        .u32(dateOf(status.st_atim.tv_sec))
        .u32(0);
    bytes.u32(permissions.owner).u32(permissions.group).zeros(2).u16(quint16(status.st_mode));
    return bytes.u32(permissions.special).bytes();
}

quint16 attributesFlag(const SourceItem &item)
{
    return item.attributes.empty() ? 0 : hasAttributes;
}

quint32 encodingOf(const SourceItem &item)
{
    return item.nameForm == NameForm::composed ? composedNameEncoding : 0;
}

QByteArray finderInfoOf(const SourceItem &item, qint64 added)
{
    QByteArray info = item.finderInfo.leftJustified(finderInfoSize, '\0');
    if (item.isLink())
        info.replace(0, 8, "slnkrhap");
    return info.replace(dateAddedOffset, 4, BigEndianBytes().u32(quint32(added)).bytes());
}

QByteArray folderBytes(const SourceItem &item, quint32 number, qint64 added)
{
    return BigEndianBytes()
        .u16(folderRecord)
        .u16(hasDateAdded | attributesFlag(item))
        .u32(item.entryCount)
        .u32(number)
        .raw(datesAndPermissions(item.status, item.status.st_mtim.tv_sec, {}))
        .raw(finderInfoOf(item, added))
        .u32(encodingOf(item))
        .zeros(4)
        .bytes();
}

/// A file that stands for one in the folder of links. macOS knows it by its type, and by its date of
/// creation, which is that folder's.
QByteArray hardLinkBytes(const SourceItem &item, quint32 number, qint64 created)
{
    constexpr quint16 hasBeenInitialized = 0x0100;
    const auto numberAt = [](std::size_t place) { return place == 0 ? 0 : catalogNumber(place); };
    const Permissions chain{numberAt(item.link.previous), numberAt(item.link.next),
                            catalogNumber(item.link.file)};
    BigEndianBytes file;
    file.u16(fileRecord).u16(threadExists | isInLinkChain).zeros(4).u32(number);
    file.raw(datesAndPermissions(item.status, created, chain));
    file.raw("hlnkhfs+").u16(hasBeenInitialized).zeros(finderInfoSize - 10);
    return file.u32(encodingOf(item)).zeros(4).raw(forkBytes({})).raw(forkBytes({})).bytes();
}

QByteArray fileBytes(const SourceItem &item, quint32 number, qint64 added)
{
    const bool isLinkedTo = item.link.count > 0;
    const quint16 flags =
        threadExists | hasDateAdded | attributesFlag(item) | (isLinkedTo ? isInLinkChain : 0);
    Permissions permissions;
    if (isLinkedTo)
        permissions.special = item.link.count;
    return BigEndianBytes()
        .u16(fileRecord)
        .u16(flags)
        .u32(isLinkedTo ? catalogNumber(item.link.firstLink) : 0)
        .u32(number)
        .raw(datesAndPermissions(item.status, item.status.st_mtim.tv_sec, permissions))
        .raw(finderInfoOf(item, added))
        .u32(encodingOf(item))
        .zeros(4)
        .raw(forkBytes(item.data))
        .raw(forkBytes(item.resource))
        .bytes();
}

QByteArray recordBytes(const SourceItem &item, quint32 number, qint64 volumeCreated)
{
    if (item.isFolder())
        return folderBytes(item, number, volumeCreated);
    return item.isHardLink() ? hardLinkBytes(item, number, volumeCreated)
                             : fileBytes(item, number, volumeCreated);
}

QByteArray threadBytes(const SourceItem &item, quint32 folder)
{
    const quint16 kind = item.isFolder() ? folderThread : fileThread;
    return BigEndianBytes().u16(kind).zeros(2).u32(folder).raw(nameBytes(item.storedName)).bytes();
}

/// The value itself, or where it lies.
QByteArray attributeBytes(const SourceAttribute &attribute)
{
    BigEndianBytes bytes;
    if (attribute.fork.size > 0)
        return bytes.u32(forkAttribute).zeros(4).raw(forkBytes(attribute.fork)).bytes();
    bytes.u32(inlineAttribute).zeros(8).u32(quint32(attribute.value.size())).raw(attribute.value);
    return bytes.zeros(attribute.value.size() % 2).bytes();
}

/// A record with what it is ordered by.
struct OrderedRecord {
    quint32 folder = 0;
    std::u16string name;
    std::size_t place = 0;
    TreeRecord record;
};

bool comesBefore(const OrderedRecord &a, const OrderedRecord &b)
{
    return a.folder != b.folder ? a.folder < b.folder : a.name < b.name;
}

std::vector<OrderedRecord> orderedRecords(const std::vector<SourceItem> &items, qint64 created)
{
    std::vector<OrderedRecord> records;
    records.reserve(items.size() * 2);
    for (std::size_t place = 0; place < items.size(); ++place) {
        const SourceItem &item = items[place];
        const quint32 number = catalogNumber(place);
        const quint32 folder = place == 0 ? rootParent : catalogNumber(item.folder);
        const QByteArray data = recordBytes(item, number, created);
        records.push_back(
            {folder, foldedName(item.storedName), place, {keyOf(folder, item.storedName), data}});
        records.push_back({number, {}, place, {keyOf(number, {}), threadBytes(item, folder)}});
    }
    std::sort(records.begin(), records.end(), comesBefore);
    return records;
}

} // namespace

quint32 catalogNumber(std::size_t place)
{
    return place == 0 ? rootFolder : firstUserItem + quint32(place) - 1;
}

platform::Result<std::vector<TreeRecord>> catalogRecords(const std::vector<SourceItem> &items,
                                                         qint64 volumeCreated)
{
    std::vector<TreeRecord> records;
    auto ordered = orderedRecords(items, volumeCreated);
    for (std::size_t index = 0; index < ordered.size(); ++index) {
        if (index > 0 && !comesBefore(ordered[index - 1], ordered[index]))
            return failureOf(items[ordered[index].place].path,
                             "HFS+ takes its name for the same as that of another file in its folder");
        records.push_back(std::move(ordered[index].record));
    }
    return records;
}

std::vector<TreeRecord> attributeRecords(const std::vector<SourceItem> &items)
{
    std::vector<TreeRecord> records;
    for (std::size_t place = 0; place < items.size(); ++place) {
        for (const SourceAttribute &attribute : items[place].attributes) {
            const QByteArray key = BigEndianBytes()
                                       .zeros(2)
                                       .u32(catalogNumber(place))
                                       .u32(0)
                                       .raw(nameBytes(attribute.name))
                                       .bytes();
            records.push_back(
                {BigEndianBytes().u16(quint16(key.size())).raw(key).bytes(), attributeBytes(attribute)});
        }
    }
    return records;
}

QByteArray volumeHeader(const VolumeSummary &summary, qint64 secondsSince1970)
{
    constexpr quint32 clumpSize = 65536;
    const quint32 now = dateOf(secondsSince1970);
    BigEndianBytes header;
    header.u16(signature).u16(version).u32(wasUnmounted).raw("10.0").u32(0);
    header.u32(now).u32(now).u32(0).u32(now);
    header.u32(summary.fileCount).u32(summary.folderCount);
    header.u32(summary.blockSize).u32(summary.blockCount).u32(0).u32(0);
    header.u32(clumpSize).u32(clumpSize).u32(summary.nextItem).u32(1).u64(1);
    header.zeros(24).u64(summary.identifier);
    header.raw(forkBytes(summary.allocation, quint32(summary.allocation.size)));
    header.raw(forkBytes(summary.extents, quint32(summary.extents.size)));
    header.raw(forkBytes(summary.catalog, quint32(summary.catalog.size)));
    header.raw(forkBytes(summary.attributes, quint32(summary.attributes.size)));
    return header.zeros(volumeHeaderSize - header.bytes().size()).bytes();
}

} // namespace toolchain::hfsplus
