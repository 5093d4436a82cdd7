#include "productsign/timestamping.h"

#include "formats/codesignature/timestampclient.h"
#include "formats/notary/localservice.h"

using namespace Qt::StringLiterals;

namespace toolchain {

TimestampChoice timestampChoice(const QString &value)
{
    if (value == u"none")
        return {TimestampChoice::Kind::none, {}};
    return value.isEmpty() ? TimestampChoice{} : TimestampChoice{TimestampChoice::Kind::address, value};
}

platform::Result<Stamper> stamperFor(const TimestampChoice &choice, QCryptographicHash::Algorithm imprint)
{
    if (choice.kind == TimestampChoice::Kind::none)
        return Stamper();
    if (choice.kind == TimestampChoice::Kind::address)
        return timestampClient({choice.address, {}, imprint});
    const auto service = notary::ensureService();
    if (!service)
        return service.failure();
    return timestampClient({service->timestamp, service->ca, imprint});
}

} // namespace toolchain
