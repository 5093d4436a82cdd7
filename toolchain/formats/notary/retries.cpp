#include "formats/notary/retries.h"

#include <curl/curl.h>

#include <algorithm>
#include <array>
#include <utility>

namespace toolchain::notary {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int tries = 4;
constexpr Milliseconds wholeCall{150'000};
constexpr Milliseconds leastCall{15'000};
constexpr Milliseconds leastIdle{3'000};
constexpr std::array<Milliseconds, tries> idleLimits{Milliseconds(20'000), Milliseconds(30'000),
                                                     Milliseconds(40'000), Milliseconds(50'000)};
constexpr Milliseconds firstPause{1'000};
constexpr Milliseconds slice{50}; // of a pause, between looks whether it is still meant
constexpr qint64 longestRetryAfter = 30; // seconds

/// For how many seconds the service asks, or until which time by its own clock (RFC 9110, section 10.2.3);
/// less than 0 if it asks for nothing.
qint64 askedFor(const HttpReply &reply)
{
    const QByteArray text = reply.headers.value("retry-after");
    bool isNumber = false;
    const qint64 seconds = text.toLongLong(&isNumber);
    const time_t time = isNumber || text.isEmpty() ? -1 : curl_getdate(text.constData(), nullptr);
    if (time >= 0 && reply.date().isValid())
        return qint64(time) - reply.date().toSecsSinceEpoch();
    return isNumber ? seconds : -1;
}

/// What the service asks for, or twice the pause before.
Milliseconds pauseAfter(const HttpReply &reply, int attempt)
{
    const qint64 seconds = askedFor(reply);
    if (seconds >= 0)
        return scaled(std::chrono::seconds(std::min(seconds, longestRetryAfter)));
    return scaled(spread(firstPause * (1 << attempt)));
}

} // namespace

bool mayPass(const HttpReply &reply)
{
    if (reply.isWhole())
        return reply.status == 429 || reply.status == 500 || (reply.status >= 502 && reply.status <= 504);
    constexpr std::array passing{
        CURLE_COULDNT_RESOLVE_PROXY, CURLE_COULDNT_RESOLVE_HOST, CURLE_COULDNT_CONNECT,
        CURLE_WEIRD_SERVER_REPLY,    CURLE_PARTIAL_FILE,         CURLE_OPERATION_TIMEDOUT,
        CURLE_SSL_CONNECT_ERROR,     CURLE_ABORTED_BY_CALLBACK,  CURLE_GOT_NOTHING,
        CURLE_WRITE_ERROR,           CURLE_SEND_ERROR,           CURLE_RECV_ERROR};
    return std::find(passing.begin(), passing.end(), reply.transportError) != passing.end();
}

bool Retries::waitFor(Milliseconds pause) const
{
    const auto end = Clock::now() + pause;
    while (m_isWanted && m_isWanted() && Clock::now() < end)
        sleepFor(std::min(slice, std::chrono::ceil<Milliseconds>(end - Clock::now())));
    if (!m_isWanted)
        sleepFor(pause);
    return !m_isWanted || m_isWanted();
}

HttpReply Retries::run(const std::function<HttpReply(const HttpRequest &limits)> &attempt,
                       const std::function<NextStep(const HttpReply &)> &judge) const
{
    const auto deadline = Clock::now() + scaledLimit(wholeCall, leastCall) + m_patience;
    bool wasPutRight = false;
    for (int number = 0;;) {
        HttpRequest limits;
        limits.wholeLimit = std::chrono::duration_cast<Milliseconds>(deadline - Clock::now());
        limits.idleLimit =
            std::min(scaledLimit(idleLimits.at(std::size_t(number)), leastIdle), limits.wholeLimit);
        const HttpReply reply = attempt(limits);
        NextStep step = judge(reply);
        if (step == NextStep::tryAtOnce && std::exchange(wasPutRight, true))
            step = NextStep::take;
        if (step == NextStep::take || m_tries == Tries::one)
            return reply;
        if (step == NextStep::tryAtOnce)
            continue;
        const Milliseconds pause = pauseAfter(reply, number);
        if (++number == tries || Clock::now() + pause >= deadline || !waitFor(pause))
            return reply;
    }
}

} // namespace toolchain::notary
