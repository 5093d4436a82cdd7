// The item that holds an API key, and the file that names the service.

#include "formats/notary/apikey.h"
#include "formats/notary/serviceconfig.h"
#include "fuzz/fuzzing.h"

using namespace toolchain::notary;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes = inputBytes(data, size);
    const auto key = apiKeyFromItem(bytes);
    if (key) {
        require(!key->keyId.isEmpty() && privateKeyOf(*key));
        const auto again = apiKeyFromItem(itemOf(*key));
        require(again && again->keyId == key->keyId && again->issuerId == key->issuerId);
    }
    const auto config = serviceConfigFrom(bytes);
    require(!config || config->isLocal || isAcceptable(QUrl(config->api)));
    return 0;
}
