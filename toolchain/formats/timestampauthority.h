#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>

#include "formats/authority.h"
#include "platform/result.h"

namespace toolchain {

/// The time-stamp authority of this machine (RFC 3161): its key and certificate come from the machine's
/// authority. Once opened it needs no keychain any more. Any thread.
class TimestampAuthority {
public:
    [[nodiscard]] static platform::Result<TimestampAuthority> open(const QString &keychainFolder);

    /// The reply (application/timestamp-reply) to a query (application/timestamp-query); to bytes that are no
    /// query, a reply that refuses them. The clock can be put forward for tests. Empty if libcrypto fails.
    [[nodiscard]] QByteArray answer(const QByteArray &query,
                                    std::chrono::seconds ahead = std::chrono::seconds(0)) const;

private:
    explicit TimestampAuthority(IssuedKey key)
        : m_key(std::move(key))
    {
    }

    IssuedKey m_key;
};

} // namespace toolchain
