#include "stapler/lookup.h"

#include "formats/notary/httpclient.h"
#include "formats/notary/retries.h"
#include "formats/ticket/ticketlookup.h"

#include <array>
#include <chrono>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace toolchain {

namespace {

constexpr std::array<notary::Milliseconds, 5> waits{5s, 10s, 20s, 40s, 60s};
constexpr notary::Milliseconds longestQuestion = 150s;

/// One question, with the tries that a call has.
class Lookup {
public:
    Lookup(const notary::ServiceConfig &service, QString recordName)
        : m_client(service)
        , m_url(service.tickets.toUtf8())
        , m_recordName(std::move(recordName))
    {
    }

    TicketQuestion ask()
    {
        const auto reply =
            notary::Retries().run([this](const notary::HttpRequest &limits) { return attempt(limits); },
                                  [this](const notary::HttpReply &tried) { return judge(tried); });
        if (!reply.isWhole())
            return {TicketQuestion::Outcome::noService, {}, reply.problem};
        if (reply.status != 200)
            return {TicketQuestion::Outcome::noService,
                    {},
                    u"the service answered with status %1"_s.arg(reply.status)};
        return answerIn(reply.body);
    }

private:
    notary::HttpReply attempt(notary::HttpRequest request)
    {
        request.method = "POST";
        request.url = m_url;
        request.headers = {{"Content-Type", "application/json"}};
        request.body = ticket::lookupBody(m_recordName);
        return m_client.perform(request);
    }

    [[nodiscard]] notary::NextStep judge(const notary::HttpReply &reply) const
    {
        const bool isUnclear = reply.isWhole() && reply.status == 200
            && ticket::readLookupReply(reply.body, m_recordName).kind == ticket::LookupAnswer::Kind::unclear;
        return isUnclear || notary::mayPass(reply) ? notary::NextStep::tryLater : notary::NextStep::take;
    }

    [[nodiscard]] TicketQuestion answerIn(const QByteArray &body) const
    {
        const auto answer = ticket::readLookupReply(body, m_recordName);
        switch (answer.kind) {
        case ticket::LookupAnswer::Kind::found:
            return {TicketQuestion::Outcome::found, answer.ticket, {}};
        case ticket::LookupAnswer::Kind::notFound:
            return {TicketQuestion::Outcome::notFound, {}, answer.reason};
        case ticket::LookupAnswer::Kind::unclear:
            break;
        }
        return {TicketQuestion::Outcome::noService, {}, u"the service's answer cannot be understood"_s};
    }

    notary::HttpClient m_client;
    const QByteArray m_url;
    const QString m_recordName;
};

} // namespace

TicketQuestion askForTicket(const notary::ServiceConfig &service, const ticket::TicketEntry &entry)
{
    const auto begin = std::chrono::steady_clock::now();
    Lookup lookup(service, entry.recordName());
    TicketQuestion question = lookup.ask();
    for (const notary::Milliseconds wait : waits) {
        const auto spent = std::chrono::steady_clock::now() - begin;
        if (question.outcome != TicketQuestion::Outcome::notFound
            || spent + notary::scaled(wait) > notary::scaled(longestQuestion))
            break;
        notary::sleepFor(notary::scaled(wait));
        question = lookup.ask();
    }
    return question;
}

} // namespace toolchain
