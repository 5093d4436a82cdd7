// HFS+ volumes: catalog, attributes, hard links, and files that the file system has compressed.

#include "formats/hfsplus/hfsplusreader.h"
#include "fuzz/fuzzing.h"

#include <cstring>
#include <set>

using namespace toolchain;

namespace {

/// Reads no more of a file than shows that it can be read.
void readStart(const HfsPlusReader &volume, const hfsplus::VolumeEntry &entry)
{
    qsizetype left = 1 << 20;
    (void)volume.readFile(entry, [&left](QByteArrayView bytes) {
        left -= bytes.size();
        return left > 0;
    });
    for (const hfsplus::StoredAttribute &attribute : volume.attributesOf(entry)) {
        if (attribute.fork.size < 1 << 20)
            (void)volume.valueOf(attribute);
    }
    (void)hfsplus::fileName(entry.storedName, entry.nameForm);
}

void walk(const HfsPlusReader &volume, quint32 folder, std::set<quint32> &seen)
{
    if (!seen.insert(folder).second || seen.size() > 100)
        return;
    for (const hfsplus::VolumeEntry &entry : volume.entriesOf(folder)) {
        readStart(volume, entry);
        walk(volume, entry.number, seen);
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const HfsPlusReader volume([data, size](quint64 offset, char *target, qsizetype length) {
        if (offset > size || quint64(length) > size - offset)
            return false;
        std::memcpy(target, data + offset, std::size_t(length));
        return true;
    });
    std::set<quint32> seen;
    if (volume.outcome())
        walk(volume, volume.rootFolder().number, seen);
    return 0;
}
