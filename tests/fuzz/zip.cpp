// Zip archives, from the directory to the bytes of the entries.

#include "formats/zip/packedattributes.h"
#include "fuzz/fuzzing.h"
#include "fuzz/memoryfile.h"

using namespace toolchain;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const MemoryFile file;
    zip::ZipDirectory archive(file.with(data, size));
    if (!archive.outcome())
        return 0;
    constexpr quint64 mostGrowth = 1040;
    require(archive.plainSize() <= quint64(size) * mostGrowth + 1024 * archive.entries().size());
    const zip::PackedAttributes attributes(archive);
    for (const zip::PackedEntry &entry : archive.entries()) {
        quint64 length = 0;
        const auto given = archive.read(entry, [&length](QByteArrayView bytes) {
            length += quint64(bytes.size());
            return true;
        });
        require(!given || length == entry.plainSize);
        (void)attributes.attributesOf(entry);
    }
    return 0;
}
