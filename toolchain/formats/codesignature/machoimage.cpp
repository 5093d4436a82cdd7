#include "formats/codesignature/machoimage.h"

#include "formats/bigendian.h"
#include "formats/codesignature/loadcommands.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Outcome;
using platform::Result;

namespace toolchain::codesignature {

namespace {

constexpr quint32 fatMagic32 = 0xcafebabe;
constexpr quint32 fatMagic64 = 0xcafebabf;
constexpr quint32 thinMagic32 = 0xfeedface;
constexpr quint32 thinMagic64 = 0xfeedfacf;
/// A Java class has its version where a universal file has the number of its slices; the first one was 45.
constexpr quint32 mostSlices = 40;
constexpr quint64 longestHead = 8 << 20;

quint32 swapped(quint32 number)
{
    return qbswap(number);
}

bool isThinMagic(quint32 magic)
{
    return magic == thinMagic32 || magic == thinMagic64;
}

struct FatEntry {
    quint32 cpuType = 0;
    quint32 cpuSubtype = 0;
    ByteRange place;
};

FatEntry fatEntryFrom(QByteArrayView bytes, bool isWide)
{
    FatEntry entry{bigEndianAt<quint32>(bytes, 0), bigEndianAt<quint32>(bytes, 4), {}};
    entry.place = isWide ? ByteRange{bigEndianAt<quint64>(bytes, 8), bigEndianAt<quint64>(bytes, 16)}
                         : ByteRange{bigEndianAt<quint32>(bytes, 8), bigEndianAt<quint32>(bytes, 12)};
    return entry;
}

Result<MachOSlice> readSlice(QIODevice &file, ByteRange place)
{
    const QByteArray header = bytesAt(file, place.offset, std::min<quint64>(32, place.length));
    const auto magic = bigEndianAt<quint32>(header, 0);
    MachOSlice slice;
    slice.place = place;
    slice.isBigEndian = isThinMagic(magic);
    if (!slice.isBigEndian && !isThinMagic(swapped(magic)))
        return Error{u"a slice at offset %1 does not begin as Mach-O does"_s.arg(place.offset)};
    slice.is64Bit = (slice.isBigEndian ? magic : swapped(magic)) == thinMagic64;
    if (quint64(header.size()) < slice.headerSize())
        return Error{u"the Mach-O header is cut off"_s};
    const HeadReader numbers(header, slice.isBigEndian);
    const quint64 headSize = slice.headerSize() + numbers.u32(20);
    if (headSize > place.length)
        return Error{u"the load commands reach beyond the end of the Mach-O file"_s};
    if (headSize > longestHead)
        return Error{u"the load commands take more than 8 MiB"_s};
    slice.head = bytesAt(file, place.offset, headSize);
    if (quint64(slice.head.size()) != headSize)
        return Error{u"the load commands cannot be read"_s};
    return readLoadCommands(std::move(slice));
}

Outcome checkPlace(const MachOImage &image, ByteRange place, quint64 headerEnd)
{
    if (place.offset > image.size || place.length > image.size - place.offset)
        return Error{u"a slice of the universal file reaches beyond its end"_s};
    if (place.offset < headerEnd)
        return Error{u"a slice of the universal file overlaps its header"_s};
    for (const MachOSlice &other : image.slices) {
        if (place.offset < other.place.end() && other.place.offset < place.end())
            return Error{u"slices of the universal file overlap"_s};
    }
    return {};
}

Result<MachOSlice> readFatSlice(QIODevice &file, const FatEntry &entry)
{
    auto slice = readSlice(file, entry.place);
    if (slice && slice->cpuType != entry.cpuType)
        return Error{u"the universal header and a slice tell different architectures"_s};
    return slice;
}

Result<MachOImage> readUniversal(QIODevice &file, quint32 magic)
{
    MachOImage image{.slices = {},
                     .isUniversal = true,
                     .hasWideHeader = magic == fatMagic64,
                     .size = quint64(file.size())};
    const auto count = bigEndianAt<quint32>(bytesAt(file, 4, 4), 0);
    const quint64 entrySize = image.hasWideHeader ? 32 : 20;
    const quint64 headerEnd = 8 + count * entrySize;
    const QByteArray table = bytesAt(file, 8, count * entrySize);
    if (count == 0 || quint64(table.size()) != count * entrySize)
        return Error{u"the universal header is cut off"_s};
    for (quint32 index = 0; index < count; ++index) {
        const FatEntry entry =
            fatEntryFrom(QByteArrayView(table).sliced(qsizetype(index * entrySize)), image.hasWideHeader);
        const Outcome checked = checkPlace(image, entry.place, headerEnd);
        if (!checked)
            return checked.failure();
        auto slice = readFatSlice(file, entry);
        if (!slice)
            return slice.failure();
        image.slices.append(*std::move(slice));
    }
    return image;
}

} // namespace

QByteArray bytesAt(QIODevice &file, quint64 offset, quint64 length)
{
    const auto size = quint64(file.size());
    if (offset > size || !file.seek(qint64(offset)))
        return {};
    return file.read(qint64(std::min(length, size - offset)));
}

QString architectureName(quint32 cpuType, quint32 cpuSubtype)
{
    constexpr quint32 subtypeMask = 0x00ffffff;
    const quint32 subtype = cpuSubtype & subtypeMask;
    switch (cpuType) {
    case cpuX86:
        return u"i386"_s;
    case cpuX86_64:
        return subtype == 8 ? u"x86_64h"_s : u"x86_64"_s;
    case 12:
        return subtype == 9 ? u"armv7"_s : u"arm"_s;
    case cpuArm64:
        return subtype == 2 ? u"arm64e"_s : u"arm64"_s;
    case cpuArm64_32:
        return u"arm64_32"_s;
    case 18:
        return u"ppc"_s;
    case 0x01000012:
        return u"ppc64"_s;
    default:
        return u"cpu %1:%2"_s.arg(cpuType).arg(subtype);
    }
}

QString versionText(quint32 packed)
{
    const quint32 patch = packed & 0xff;
    const QString text = u"%1.%2"_s.arg(packed >> 16).arg(packed >> 8 & 0xff);
    return patch == 0 ? text : text + u".%1"_s.arg(patch);
}

QString MachOSlice::architecture() const
{
    return architectureName(cpuType, cpuSubtype);
}

const MachOSegment *MachOSlice::segment(QByteArrayView name) const
{
    const auto found = std::find_if(segments.begin(), segments.end(),
                                    [name](const MachOSegment &segment) { return segment.name == name; });
    return found == segments.end() ? nullptr : &*found;
}

const MachOVersion *MachOSlice::version() const
{
    return versions.isEmpty() ? nullptr : &versions.first();
}

quint64 MachOSlice::codeLength() const
{
    return signature ? signature->data.offset : place.length;
}

bool MachOImage::hasMoreBehindSlices() const
{
    return std::all_of(slices.begin(), slices.end(),
                       [this](const MachOSlice &slice) { return slice.place.end() < size; });
}

QString MachOImage::description() const
{
    QStringList names;
    for (const MachOSlice &slice : slices)
        names.append(slice.architecture());
    return (isUniversal ? u"Mach-O universal (%1)"_s : u"Mach-O thin (%1)"_s).arg(names.join(u' '));
}

qsizetype MachOImage::nativeIndex() const
{
    for (const quint32 cpu : {cpuArm64, cpuX86_64}) {
        for (qsizetype index = 0; index < slices.size(); ++index) {
            if (slices[index].cpuType == cpu)
                return index;
        }
    }
    return 0;
}

bool canHoldSignature(MachOFileType type)
{
    switch (type) {
    case MachOFileType::executable:
    case MachOFileType::dynamicLibrary:
    case MachOFileType::dynamicLinker:
    case MachOFileType::loadableBundle:
    case MachOFileType::kernelExtension:
        return true;
    default:
        return false;
    }
}

bool isUniversalArchive(QIODevice &file)
{
    constexpr quint64 tableAt = 8;
    constexpr QByteArrayView archiveMagic("!<arch>\n");
    if (bigEndianAt<quint32>(bytesAt(file, 0, 4), 0) != fatMagic32)
        return false;
    const FatEntry first = fatEntryFrom(bytesAt(file, tableAt, 20), false);
    return bytesAt(file, first.place.offset, quint64(archiveMagic.size())) == archiveMagic;
}

bool looksLikeMachO(QByteArrayView beginning)
{
    const auto magic = bigEndianAt<quint32>(beginning, 0);
    if (isThinMagic(magic) || isThinMagic(swapped(magic)))
        return true;
    const auto count = bigEndianAt<quint32>(beginning, 4);
    return (magic == fatMagic32 || magic == fatMagic64) && beginning.size() >= 8 && count > 0
        && count <= mostSlices;
}

bool looksLikeMachOFile(const QString &path)
{
    QFile file(path);
    return QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)
        && looksLikeMachO(file.read(8));
}

Result<MachOImage> readMachOImage(QIODevice &file)
{
    const QByteArray beginning = bytesAt(file, 0, 8);
    if (!looksLikeMachO(beginning))
        return Error{u"is no Mach-O file"_s};
    const auto magic = bigEndianAt<quint32>(beginning, 0);
    if (magic == fatMagic32 || magic == fatMagic64)
        return readUniversal(file, magic);
    const auto size = quint64(file.size());
    auto slice = readSlice(file, {0, size});
    if (!slice)
        return slice.failure();
    return MachOImage{
        .slices = {*std::move(slice)}, .isUniversal = false, .hasWideHeader = false, .size = size};
}

Result<MachOImage> readMachOImage(const QString &path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile())
        return Error{path + u": is no file"_s};
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return Error{path + u": "_s + file.errorString()};
    auto image = readMachOImage(file);
    if (!image)
        return Error{path + u": "_s + image.error()};
    return image;
}

} // namespace toolchain::codesignature
