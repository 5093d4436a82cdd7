#pragma once

#include <functional>

#include "formats/notary/httpclient.h"

namespace toolchain::notary {

/// What is to be done after a reply.
enum class NextStep {
    take, ///< the reply stands, be it good or bad
    tryLater, ///< what may pass by itself
    tryAtOnce ///< something was put right; once in a call
};

/// One call with its tries: 4 at most, none begun more than 150 seconds after the first. Longer and longer
/// the tries bear silence, so that a service that is merely slow is heard in the end.
class Retries {
public:
    using IsWanted = std::function<bool()>;
    enum class Tries { all, one };

    /// `patience` is added to the call's time, for what is long by itself. A call that is not wanted any more
    /// gets no further try; `isWanted` may be empty.
    explicit Retries(Milliseconds patience = Milliseconds(0), IsWanted isWanted = {},
                     Tries tries = Tries::all)
        : m_patience(patience)
        , m_isWanted(std::move(isWanted))
        , m_tries(tries)
    {
    }

    /// `attempt` is handed a request's limits and performs it; `judge` looks at what came of it.
    [[nodiscard]] HttpReply run(const std::function<HttpReply(const HttpRequest &limits)> &attempt,
                                const std::function<NextStep(const HttpReply &)> &judge) const;

private:
    /// False if the call is not wanted any more.
    [[nodiscard]] bool waitFor(Milliseconds pause) const;

    const Milliseconds m_patience;
    const IsWanted m_isWanted;
    const Tries m_tries;
};

/// Whether a failure may pass by itself: a lost or broken connection, a timeout, 429, 500, 502, 503 and 504.
[[nodiscard]] bool mayPass(const HttpReply &reply);

} // namespace toolchain::notary
