#include "spctl/approval.h"

#include "formats/notary/httpclient.h"
#include "formats/notary/localservice.h"
#include "formats/ticket/ticketlookup.h"

#include <chrono>

using namespace std::chrono_literals;

namespace toolchain::spctl {

namespace {

/// An assessment does not wait long for a service: without an answer there is no ticket.
constexpr notary::Milliseconds patience = 10s;

QByteArray delivered(const ticket::TicketEntry &entry)
{
    const auto service = notary::ensureService();
    if (!service || service->tickets.isEmpty())
        return {};
    notary::HttpRequest request;
    request.method = "POST";
    request.url = service->tickets.toUtf8();
    request.headers = {{"Content-Type", "application/json"}};
    request.body = ticket::lookupBody(entry.recordName());
    request.wholeLimit = patience;
    const auto reply = notary::HttpClient(*service).perform(request);
    return reply.isWhole() && reply.status == 200
        ? ticket::readLookupReply(reply.body, entry.recordName()).ticket
        : QByteArray();
}

} // namespace

ticket::TicketJudgement approvalOf(const QList<ticket::TicketEntry> &entries, const QByteArray &attached)
{
    const auto judgement = ticket::judgeTicket(attached, entries);
    if (judgement.isGood() || entries.isEmpty())
        return judgement;
    return ticket::judgeTicket(delivered(entries.first()), entries);
}

} // namespace toolchain::spctl
