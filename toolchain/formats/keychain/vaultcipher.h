#pragma once

#include <QByteArray>

#include <optional>

namespace toolchain {

/// The bytes of a key for `sealBytes`.
inline constexpr qsizetype sealingKeySize = 32;

/// AES-256 in Galois/Counter Mode (NIST SP 800-38D): nonce of 12 bytes, ciphertext, tag of 16 bytes.
/// `context` is authenticated with them and not kept.
[[nodiscard]] QByteArray sealBytes(const QByteArray &key, const QByteArray &bytes, const QByteArray &context);

/// What `sealBytes` was given; nothing if the key or the context is another or a byte has changed.
[[nodiscard]] std::optional<QByteArray> unsealBytes(const QByteArray &key, const QByteArray &sealed,
                                                    const QByteArray &context);

/// How much work scrypt (RFC 7914) makes of guessing a passphrase.
struct ScryptCost {
    quint64 n = 32'768;
    quint64 r = 8;
    quint64 p = 1;

    /// False for numbers that would take more than half a gigabyte or some seconds.
    [[nodiscard]] bool isBearable() const;
};

/// A key for `sealBytes` from a passphrase; empty if libcrypto refuses the cost.
[[nodiscard]] QByteArray keyFromPassphrase(const QByteArray &passphrase, const QByteArray &salt,
                                           const ScryptCost &cost);

} // namespace toolchain
