#include "notaryd/vouching.h"

#include <QFile>

#include "formats/authority.h"
#include "formats/keychain/privatefile.h"
#include "formats/notary/serviceconfig.h"
#include "formats/statefolder.h"
#include "formats/ticket/signedticket.h"

using namespace Qt::StringLiterals;
using namespace toolchain;

namespace notaryd {

namespace {

QString ticketPath(const NotaryRequest &request)
{
    return notaryFolder() + u"/tickets/"_s + request.uuid;
}

QByteArray mint(const NotaryRequest &request)
{
    QList<ticket::TicketEntry> entries;
    for (const TicketEntry &content : request.ticketContents) {
        const ticket::TicketEntry entry{quint8(content.hashType), QByteArray::fromHex(content.hash)};
        if (!entries.contains(entry))
            entries.append(entry);
    }
    const auto key = Authority(keychainFolder()).serviceKey(LeafPurpose::ticket);
    if (entries.isEmpty() || !key)
        return {};
    return ticket::mintTicket(entries, request.decided, key->chain.mid(0, 2), key->key.get()).valueOr({});
}

} // namespace

QByteArray Vouching::ticketOf(const NotaryRequest &request)
{
    const std::scoped_lock lock(m_mutex);
    QFile kept(ticketPath(request));
    if (kept.open(QIODevice::ReadOnly))
        return kept.readAll();
    const QByteArray ticket = mint(request);
    if (!ticket.isEmpty() && makePrivateFolder(notaryFolder() + u"/tickets"_s))
        toolchain::writePrivateFile(ticketPath(request), ticket).ignore();
    return ticket;
}

QByteArray Vouching::timestamp(const QByteArray &query, std::chrono::seconds ahead)
{
    const std::scoped_lock lock(m_mutex);
    if (!m_timestamps) {
        auto opened = TimestampAuthority::open(keychainFolder());
        if (!opened)
            return {};
        m_timestamps = std::move(*opened);
    }
    return m_timestamps->answer(query, ahead);
}

} // namespace notaryd
