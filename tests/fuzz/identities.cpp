// The signing identities in the listing of the keychain.

#include "app/discovery.h"
#include "fuzz/fuzzing.h"
#include "support/core.h"

#include <QSet>

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto identities = discovery::identitiesInListing(toolOutput(data, size));
    require(!identities.applications.isEmpty());
    for (const QStringList &names : {identities.applications, identities.installers})
        require(QSet<QString>(names.begin(), names.end()).size() == names.size());
    return 0;
}
