// Entitlements in DER form. What could be read is written and read again as the same.

#include "formats/codesignature/entitlementsder.h"
#include "fuzz/fuzzing.h"

using namespace toolchain::codesignature;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto read = entitlementsFromDer(inputBytes(data, size));
    if (!read)
        return 0;
    const auto written = entitlementsAsDer(*read);
    require(bool(written));
    const auto again = entitlementsFromDer(*written);
    require(again && *again == *read);
    return 0;
}
