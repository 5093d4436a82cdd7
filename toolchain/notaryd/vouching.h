#pragma once

#include "formats/notaryrequest.h"

#include <QHash>

#include <chrono>
#include <mutex>
#include <optional>

#include "formats/timestampauthority.h"

namespace notaryd {

/// What the service signs as part of the authority of this machine: tickets and time stamps. Their keys are
/// taken from the keychain at the first wish, since it may be locked when the service starts. Any thread.
class Vouching {
public:
    /// The ticket of an approval, made once and kept beside the requests; empty if it cannot be made.
    [[nodiscard]] QByteArray ticketOf(const toolchain::NotaryRequest &request);

    /// The reply to a time-stamp query; empty if the keychain does not give the key.
    [[nodiscard]] QByteArray timestamp(const QByteArray &query, std::chrono::seconds ahead);

private:
    std::mutex m_mutex;
    std::optional<toolchain::TimestampAuthority> m_timestamps;
};

} // namespace notaryd
