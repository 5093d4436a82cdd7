#include "formats/review/unpack.h"

#include "formats/hfsplus/volumecopy.h"
#include "formats/imagevolume.h"
#include "formats/review/packageunpacker.h"
#include "formats/review/streamunpacker.h"
#include "formats/sevenzip.h"
#include "formats/udif/imagesignature.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain::review {

namespace {

bool isNamedAsImage(QStringView path)
{
    static const std::array extensions{u".dmg"_s, u".img"_s, u".cdr"_s, u".smi"_s};
    return std::any_of(extensions.begin(), extensions.end(), [path](const QString &extension) {
        return path.endsWith(extension, Qt::CaseInsensitive);
    });
}

bool isTar(QByteArrayView beginning)
{
    constexpr qsizetype magicOffset = 257;
    return beginning.size() >= 512 && beginning.sliced(magicOffset).startsWith("ustar");
}

bool isCompressed(QByteArrayView beginning)
{
    return beginning.startsWith("\x1f\x8b") || beginning.startsWith("BZh")
        || beginning.startsWith("\xfd"
                                "7zXZ");
}

/// What an APFS container holds, as far as the budget goes.
Result<void> unpackApfs(const ScratchFile &container, const QString &folder, UnpackBudget &budget)
{
    const auto volume = sevenzip::apfsVolume(container.path());
    if (!volume)
        return volume.failure();
    budget.entries -= volume->items;
    budget.bytes = volume->size > budget.bytes ? -1 : budget.bytes - volume->size;
    if (budget.entries < 0 || budget.bytes < 0)
        return Error{u"unpacks to more than can be looked at"_s};
    return sevenzip::extractApfs(container.path(), *volume, folder);
}

Result<void> unpackImage(const QString &path, const QString &folder, UnpackBudget &budget)
{
    ImageVolume image(path.toStdString());
    const Result<void> readable = image.outcome();
    if (image.countVolumes() > 1)
        return Error{u"it has several volumes, of which only one can be read"_s};
    if (readable)
        return copyVolume(image.volume(), folder.toStdString());
    const auto container = image.image().outcome() ? image.apfsContainer() : nullptr;
    return container ? unpackApfs(*container, folder, budget) : readable;
}

} // namespace

ArchiveKind archiveKind(QByteArrayView beginning, const QString &path)
{
    if (beginning.startsWith("PK\x03\x04") || beginning.startsWith("PK\x05\x06")) // an empty one
        return ArchiveKind::zip;
    if (beginning.startsWith("xar!"))
        return ArchiveKind::package;
    if (isTar(beginning))
        return ArchiveKind::tar;
    if (isNamedAsImage(path) && udif::endsAsDiskImage(path))
        return ArchiveKind::image;
    return isCompressed(beginning) ? ArchiveKind::compressed : ArchiveKind::none;
}

Result<bool> mayHoldCode(const QString &archive, ArchiveKind kind, UnpackBudget &budget)
{
    if (kind == ArchiveKind::image || kind == ArchiveKind::package)
        return true;
    return streamMayHoldCode(archive, kind, budget);
}

Result<void> unpack(const QString &archive, ArchiveKind kind, const QString &folder, UnpackBudget &budget)
{
    if (kind == ArchiveKind::image)
        return unpackImage(archive, folder, budget);
    if (kind == ArchiveKind::package)
        return unpackPackage(archive, folder, budget);
    return unpackStream(archive, kind, folder, budget);
}

} // namespace toolchain::review
