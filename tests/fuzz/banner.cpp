// The notary tool's version in its help.

#include "app/discovery.h"
#include "fuzz/fuzzing.h"
#include "support/core.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    require(discovery::altoolMajorVersion(toolOutput(data, size)) > 0);
    return 0;
}
