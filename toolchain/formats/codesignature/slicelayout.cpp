#include "formats/codesignature/slicelayout.h"

#include "formats/bigendian.h"
#include "formats/codesignature/codebundle.h"
#include "formats/codesignature/loadcommands.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Outcome;
using platform::Result;

namespace toolchain::codesignature {

namespace {

constexpr quint64 signatureAlignment = 16;
constexpr quint64 sliceAlignment = 0x4000;
constexpr quint32 sliceAlignmentShift = 14;
constexpr qsizetype commandSize = 16;
constexpr qsizetype commandCountAt = 16;
constexpr qsizetype commandsSizeAt = 20;
constexpr quint64 mostPaddingBeforeSignature = 12;
constexpr quint64 largestOffset = 0xffffffff;

quint64 aligned(quint64 number, quint64 alignment)
{
    return (number + alignment - 1) & ~(alignment - 1);
}

template <typename Number>
void put(QByteArray &head, quint64 at, Number number)
{
    qToLittleEndian(number, head.data() + at);
}

/// A number of a segment command, which is as wide as the file's addresses.
void putWord(QByteArray &head, const MachOSlice &slice, quint64 wideAt, quint64 narrowAt, quint64 number)
{
    if (slice.is64Bit)
        put(head, wideAt, number);
    else
        put(head, narrowAt, quint32(number));
}

void setLinkeditFileSize(QByteArray &head, const MachOSlice &slice, const MachOSegment &linkedit,
                         quint64 size)
{
    putWord(head, slice, linkedit.commandOffset + 48, linkedit.commandOffset + 36, size);
}

void setLinkeditVirtualSize(QByteArray &head, const MachOSlice &slice, const MachOSegment &linkedit,
                            quint64 size)
{
    putWord(head, slice, linkedit.commandOffset + 32, linkedit.commandOffset + 28, size);
}

/// Counts the commands anew after one has come or gone.
void setCommands(QByteArray &head, const MachOSlice &slice, quint32 count)
{
    put(head, commandCountAt, count);
    put(head, commandsSizeAt, quint32(quint64(head.size()) - slice.headerSize()));
}

Outcome checkFormat(const MachOSlice &slice)
{
    const MachOSegment *linkedit = slice.segment("__LINKEDIT");
    if (slice.isBigEndian || !linkedit)
        return Error{text::badObject};
    const quint64 end = linkedit->file.end();
    for (const MachOSegment &segment : slice.segments) {
        if (segment.file.end() > end)
            return Error{text::strictExecutable};
    }
    const bool endsSlice = end == slice.place.length;
    const bool endsWithSignature = !slice.signature
        || (slice.signature->data.offset >= linkedit->file.offset
            && aligned(slice.signature->data.end(), signatureAlignment) >= end);
    return endsSlice && endsWithSignature ? Outcome::success() : Error{text::strictExecutable};
}

bool hasRoomForCommand(const MachOSlice &slice)
{
    const auto end = quint64(slice.head.size()) + commandSize;
    return end <= slice.firstSection.value_or(slice.codeLength()) && end <= slice.codeLength();
}

void appendCommand(QByteArray &head, const MachOSlice &slice)
{
    QByteArray added(commandSize, '\0');
    put(added, 0, command::codeSignature);
    put(added, 4, quint32(commandSize));
    head += added;
    setCommands(head, slice, slice.commandCount + 1);
}

} // namespace

quint64 codeLengthFor(const MachOSlice &slice)
{
    return slice.signature ? slice.signature->data.offset : aligned(slice.place.length, signatureAlignment);
}

Result<SliceLayout> layoutWithSignature(const MachOSlice &slice, quint64 room, quint64 segmentAlignment)
{
    const Outcome checked = checkFormat(slice);
    if (!checked)
        return checked.failure();
    if (!slice.signature && !hasRoomForCommand(slice))
        return Error{u"there is no room in the Mach-O header for the command of a signature"_s};
    SliceLayout layout{slice.place, slice.head, std::min(codeLengthFor(slice), slice.place.length),
                       codeLengthFor(slice), room};
    if (layout.length() > largestOffset)
        return Error{text::tooLarge};
    if (!slice.signature)
        appendCommand(layout.head, slice);
    const quint64 at =
        slice.signature ? slice.signature->commandOffset : quint64(layout.head.size() - commandSize);
    put(layout.head, at + 8, quint32(layout.codeLength));
    put(layout.head, at + 12, quint32(room));
    const MachOSegment &linkedit = *slice.segment("__LINKEDIT");
    const quint64 size = layout.length() - linkedit.file.offset;
    setLinkeditFileSize(layout.head, slice, linkedit, size);
    setLinkeditVirtualSize(layout.head, slice, linkedit, aligned(size, segmentAlignment));
    return layout;
}

Result<SliceLayout> layoutWithoutSignature(const MachOSlice &slice)
{
    SliceLayout layout{slice.place, slice.head, slice.codeLength(), slice.codeLength(), 0};
    if (!slice.signature)
        return layout;
    const Outcome checked = checkFormat(slice);
    if (!checked)
        return checked.failure();
    const quint64 names = slice.stringTableEnd.value_or(0);
    if (names <= layout.codeLength && layout.codeLength - names <= mostPaddingBeforeSignature)
        layout.codeLength = names;
    layout.copiedLength = layout.codeLength;
    layout.head.remove(qsizetype(slice.signature->commandOffset), commandSize);
    setCommands(layout.head, slice, slice.commandCount - 1);
    const MachOSegment &linkedit = *slice.segment("__LINKEDIT");
    const bool isBefore = linkedit.commandOffset < slice.signature->commandOffset;
    MachOSegment moved = linkedit;
    moved.commandOffset -= isBefore ? 0 : commandSize;
    setLinkeditFileSize(layout.head, slice, moved, layout.codeLength - linkedit.file.offset);
    layout.head.append(commandSize, '\0');
    return layout;
}

QList<quint64> sliceOffsets(const QList<SliceLayout> &layouts)
{
    QList<quint64> offsets;
    quint64 at = sliceAlignment;
    for (const SliceLayout &layout : layouts) {
        offsets.append(at);
        at = aligned(at + layout.length(), sliceAlignment);
    }
    return offsets;
}

QByteArray universalHeader(const MachOImage &image, const QList<SliceLayout> &layouts)
{
    constexpr quint32 fatMagic = 0xcafebabe;
    const QList<quint64> offsets = sliceOffsets(layouts);
    BigEndianBytes header;
    header.u32(fatMagic).u32(quint32(layouts.size()));
    for (qsizetype index = 0; index < layouts.size(); ++index) {
        const MachOSlice &slice = image.slices[index];
        header.u32(slice.cpuType).u32(slice.cpuSubtype).u32(quint32(offsets[index]));
        header.u32(quint32(layouts[index].length())).u32(sliceAlignmentShift);
    }
    return header.bytes();
}

} // namespace toolchain::codesignature
