// What the service of this machine is asked, and what it keeps of it.

#include "formats/notaryrequest.h"
#include "fuzz/fuzzing.h"
#include "notaryd/faults.h"
#include "notaryd/partlist.h"
#include "notaryd/query.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes = inputBytes(data, size);
    (void)notaryd::faultsFromJson(bytes);
    const auto parts = notaryd::partsIn(bytes);
    require(!parts || !parts->isEmpty());
    require(notaryd::queryIn(bytes).size() <= bytes.size());
    const auto request = toolchain::requestFromJson(bytes);
    if (request) {
        const auto again = toolchain::requestFromJson(toolchain::jsonOf(*request));
        require(again && again->uuid == request->uuid && again->polls == request->polls);
        (void)toolchain::logOf(*request);
    }
    return 0;
}
