// AppleDouble files, as archives hold them and as they lie beside files.

#include "formats/appledouble.h"
#include "fuzz/fuzzing.h"

using namespace toolchain;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes = inputBytes(data, size);
    const auto attributes = appledouble::attributesIn(bytes);
    if (!attributes)
        return 0;
    qsizetype total = 0;
    bool fits = true; // a name of more than 254 bytes does not come from an entry
    for (auto attribute = attributes->begin(); attribute != attributes->end(); ++attribute) {
        fits = fits && attribute.key().size() < 255;
        total += attribute.value().size();
    }
    require(fits && total <= qsizetype(size) * (attributes->size() + 1));
    require(bool(appledouble::attributesIn(appledouble::fileWith(*attributes))));
    return 0;
}
