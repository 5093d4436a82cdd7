// A package's bill of materials.

#include "formats/package/bom.h"
#include "fuzz/fuzzing.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto entries = toolchain::package::readBom(inputBytes(data, size));
    if (!entries)
        return 0;
    for (const auto &entry : *entries)
        require(!entry.path.isEmpty() && !entry.path.startsWith('/')
                && !("/" + entry.path + "/").contains("/../"));
    return 0;
}
