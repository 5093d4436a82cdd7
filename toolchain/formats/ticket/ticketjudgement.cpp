#include "formats/ticket/ticketjudgement.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace toolchain::ticket {

namespace {

TicketJudgement bad(const QString &problem, Anchor anchor = Anchor::other)
{
    return {TicketJudgement::Verdict::bad, anchor, problem};
}

} // namespace

TicketJudgement judgeTicket(const QByteArray &bytes, const QList<TicketEntry> &entries)
{
    if (bytes.isEmpty())
        return {};
    const auto ticket = readTicket(bytes);
    if (!ticket)
        return bad(ticket.error());
    if (!ticket->isSignatureGood())
        return bad(u"the ticket's signature is invalid"_s);
    const Trust trust = trustOf(ticket->certificates.first(), ticket->certificates, TrustPurpose::tickets,
                                ticket->issued, TrustStore::forTickets());
    if (!trust.isGood())
        return bad(u"the ticket's signer is not trusted: "_s + trust.text(), trust.anchor);
    const bool isNamed = std::any_of(entries.begin(), entries.end(),
                                     [&](const TicketEntry &entry) { return ticket->vouchesFor(entry); });
    if (!isNamed)
        return bad(u"the ticket is about another item"_s, trust.anchor);
    return {TicketJudgement::Verdict::good, trust.anchor, {}};
}

} // namespace toolchain::ticket
