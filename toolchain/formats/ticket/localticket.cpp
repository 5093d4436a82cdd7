#include "formats/ticket/localticket.h"

#include "formats/authority.h"
#include "formats/statefolder.h"

namespace toolchain::ticket {

platform::Result<QByteArray> mintTicketOfThisMachine(const QList<TicketEntry> &entries,
                                                     const QDateTime &issued)
{
    const auto key = Authority(keychainFolder()).serviceKey(LeafPurpose::ticket);
    if (!key)
        return key.failure();
    return mintTicket(entries, issued, key->chain.first(2), key->key.get());
}

} // namespace toolchain::ticket
