#include "toolchain/coveredbytes.h"

#include "formats/codesignature/signaturereader.h"

#include <QDirIterator>

#include <algorithm>

using namespace toolchain::codesignature;

namespace {

void addHolesOfSlice(QList<ByteRange> &ranges, const MachOSlice &slice, const SignedPart &part)
{
    const ByteRange room = slice.signature->data;
    const auto used = quint64(part.blobs.size());
    constexpr ByteRange lengthOfAll{4, 4}; // the blobs within tell their own, and have to fit into it
    ranges.append({slice.place.offset + room.offset + lengthOfAll.offset, lengthOfAll.length});
    ranges.append({slice.place.offset + room.offset + used, room.length - used});
}

} // namespace

QList<ByteRange> coveredbytes::uncovered(const QString &path)
{
    QList<ByteRange> ranges;
    const auto code = readSignedCode(path);
    if (!code || !code->image)
        return ranges;
    quint64 end = 0;
    for (qsizetype index = 0; index < code->parts.size(); ++index) {
        const MachOSlice &slice = code->image->slices[index];
        ranges.append({end, slice.place.offset - end});
        addHolesOfSlice(ranges, slice, code->parts[index]);
        end = slice.place.end();
    }
    return ranges;
}

bool coveredbytes::isCovered(const QList<ByteRange> &ranges, quint64 offset)
{
    return std::none_of(ranges.begin(), ranges.end(),
                        [offset](ByteRange range) { return offset >= range.offset && offset < range.end(); });
}

QStringList coveredbytes::filesBelow(const QString &folder)
{
    QStringList files;
    QDirIterator entries(folder, QDir::Files | QDir::NoSymLinks | QDir::Hidden, QDirIterator::Subdirectories);
    while (entries.hasNext())
        files.append(entries.next());
    files.sort();
    return files;
}
