// The service's receipt for an upload.

#include "fuzz/fuzzing.h"
#include "notarization/pollinginfo.h"
#include "support/core.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto receipt = uploadReceipt(inputBytes(data, size));
    require(!receipt || !receipt->requestUUID.isNull());
    return 0;
}
