#pragma once

#include "formats/notaryrequest.h"

#include <condition_variable>
#include <mutex>
#include <queue>
#include <thread>

namespace notaryd {

/// Tells the addresses that submissions named when their reviews are over, as
/// https://developer.apple.com/documentation/notaryapi describes it: a POST of a signed payload, which
/// carries no verdict. Each is tried three times, on a thread of its own. Any thread may call.
class Webhook {
public:
    Webhook();
    ~Webhook(); ///< what has not been told by then is not told
    Webhook(const Webhook &) = delete;
    Webhook &operator=(const Webhook &) = delete;

    /// Tells each address that the request names; does nothing where it names none.
    void tell(const toolchain::NotaryRequest &request);

private:
    void work();
    [[nodiscard]] bool waitUnlessEnding(std::chrono::milliseconds pause);
    void post(const toolchain::NotaryRequest &request);
    void post(const QString &target, const QByteArray &body);

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::queue<toolchain::NotaryRequest> m_waiting;
    bool m_isEnding = false;
    std::thread m_worker;
};

} // namespace notaryd
