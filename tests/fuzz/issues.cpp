// The issues in the service's log.

#include "fuzz/fuzzing.h"
#include "notarization/pollinginfo.h"
#include "support/core.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto summary = issuesSummary(inputBytes(data, size));
    require(!summary || !summary->endsWith(u'\n'));
    return 0;
}
