#include "formats/appledouble.h"

#include "formats/bigendian.h"
#include "formats/zeros.h"

#include <optional>

using namespace Qt::StringLiterals;

namespace toolchain::appledouble {

namespace {

using Attributes = QMap<QByteArray, QByteArray>;

constexpr quint32 magic = 0x00051607;
constexpr quint32 version = 0x00020000;
constexpr quint32 attributesMagic = 0x41545452; // "ATTR"
constexpr quint32 resourceForkEntry = 2;
constexpr quint32 finderInfoEntry = 9;
constexpr qsizetype entryCountOffset = 24;
constexpr qsizetype entriesOffset = 26;
constexpr qsizetype entrySize = 12;
constexpr qsizetype finderInfoSize = 32;
constexpr qsizetype finderInfoOffset = entriesOffset + 2 * entrySize;
constexpr qsizetype attributesHeaderOffset = finderInfoOffset + finderInfoSize + 2;
constexpr qsizetype attributesHeaderSize = 36;
constexpr qsizetype attributeFixedSize = 11; ///< of an attribute's entry, before its name

qsizetype attributeEntrySize(const QByteArray &name)
{
    constexpr qsizetype alignment = 4;
    const qsizetype size = attributeFixedSize + name.size() + 1;
    return (size + alignment - 1) / alignment * alignment;
}

/// What stands behind the Finder's information: the names with the places of the values, then the values.
QByteArray attributesPart(const Attributes &attributes)
{
    qsizetype entriesSize = 0;
    qsizetype valuesSize = 0;
    for (auto attribute = attributes.begin(); attribute != attributes.end(); ++attribute) {
        entriesSize += attributeEntrySize(attribute.key());
        valuesSize += attribute.value().size();
    }
    const qsizetype valuesOffset = attributesHeaderOffset + attributesHeaderSize + entriesSize;
    BigEndianBytes header;
    header.zeros(2).u32(attributesMagic).u32(0).u32(quint32(valuesOffset + valuesSize));
    header.u32(quint32(valuesOffset))
        .u32(quint32(valuesSize))
        .zeros(12)
        .u16(0)
        .u16(quint16(attributes.size()));
    QByteArray values;
    for (auto attribute = attributes.begin(); attribute != attributes.end(); ++attribute) {
        const qsizetype nameSize = attribute.key().size() + 1;
        header.u32(quint32(valuesOffset + values.size())).u32(quint32(attribute.value().size())).u16(0);
        header.u8(quint8(nameSize)).raw(attribute.key());
        header.zeros(attributeEntrySize(attribute.key()) - attributeFixedSize - attribute.key().size());
        values += attribute.value();
    }
    return header.bytes() + values;
}

/// A part of the bytes; nothing if it does not lie within them.
std::optional<QByteArrayView> partOf(QByteArrayView bytes, quint32 offset, quint32 length)
{
    if (quint64(offset) + length > quint64(bytes.size()))
        return {};
    return bytes.sliced(offset, length);
}

bool readAttributes(QByteArrayView bytes, Attributes &attributes)
{
    const qsizetype count = bigEndianAt<quint16>(bytes, attributesHeaderOffset + 34);
    qsizetype at = attributesHeaderOffset + attributesHeaderSize;
    for (qsizetype number = 0; number < count; ++number) {
        const qsizetype nameSize = bigEndianAt<quint8>(bytes, at + 10);
        const auto value =
            partOf(bytes, bigEndianAt<quint32>(bytes, at), bigEndianAt<quint32>(bytes, at + 4));
        if (!value || nameSize < 2 || at + attributeFixedSize + nameSize > bytes.size())
            return false;
        const QByteArray name = bytes.sliced(at + attributeFixedSize, nameSize - 1).toByteArray();
        if (name.contains('\0') || attributes.contains(name))
            return false;
        attributes.insert(name, value->toByteArray());
        at += attributeEntrySize(name);
    }
    return true;
}

bool readEntry(QByteArrayView bytes, qsizetype at, Attributes &attributes)
{
    const auto kind = bigEndianAt<quint32>(bytes, at);
    const auto offset = bigEndianAt<quint32>(bytes, at + 4);
    const auto part = partOf(bytes, offset, bigEndianAt<quint32>(bytes, at + 8));
    if (!part)
        return false;
    if (kind == resourceForkEntry && !part->isEmpty())
        attributes.insert(resourceFork, part->toByteArray());
    if (kind != finderInfoEntry || part->size() < finderInfoSize)
        return true;
    if (!isZero(part->first(finderInfoSize)))
        attributes.insert(finderInfo, part->first(finderInfoSize).toByteArray());
    const bool hasAttributes = offset == finderInfoOffset
        && bigEndianAt<quint32>(bytes, attributesHeaderOffset) == attributesMagic
        && part->size() >= attributesHeaderOffset + attributesHeaderSize - finderInfoOffset;
    return !hasAttributes || readAttributes(bytes, attributes);
}

} // namespace

bool isAppleDouble(QByteArrayView bytes)
{
    return bigEndianAt<quint32>(bytes, 0) == magic && bigEndianAt<quint32>(bytes, 4) == version;
}

QByteArray fileWith(const QMap<QByteArray, QByteArray> &attributes)
{
    Attributes others = attributes;
    const QByteArray fork = others.take(resourceFork);
    const QByteArray info = others.take(finderInfo).leftJustified(finderInfoSize, '\0', true);
    const QByteArray infoPart = info + (others.isEmpty() ? QByteArray() : attributesPart(others));
    BigEndianBytes file;
    file.u32(magic).u32(version).raw("Mac OS X        ").u16(2);
    file.u32(finderInfoEntry).u32(quint32(finderInfoOffset)).u32(quint32(infoPart.size()));
    file.u32(resourceForkEntry).u32(quint32(finderInfoOffset + infoPart.size())).u32(quint32(fork.size()));
    return file.raw(infoPart).raw(fork).bytes();
}

platform::Result<QMap<QByteArray, QByteArray>> attributesIn(QByteArrayView bytes)
{
    if (!isAppleDouble(bytes))
        return platform::Error{u"no AppleDouble file"_s};
    Attributes attributes;
    const qsizetype count = bigEndianAt<quint16>(bytes, entryCountOffset);
    if (entriesOffset + count * entrySize > bytes.size())
        return platform::Error{u"a damaged AppleDouble file"_s};
    for (qsizetype number = 0; number < count; ++number) {
        if (!readEntry(bytes, entriesOffset + number * entrySize, attributes))
            return platform::Error{u"a damaged AppleDouble file"_s};
    }
    return attributes;
}

} // namespace toolchain::appledouble
