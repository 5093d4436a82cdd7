#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <memory>

#include "platform/result.h"

struct evp_pkey_st;

namespace toolchain::notary {

using PrivateKey = std::shared_ptr<evp_pkey_st>;

/// A key of the App Store Connect API, as a password item holds it.
struct ApiKey {
    QString keyId;
    QString issuerId; ///< empty: an individual key
    QByteArray privateKey; ///< PKCS#8 in PEM form, elliptic curve P-256
    QString team; ///< optional
    QString appleId; ///< optional
};

/// Reads the one line of JSON that an item holds. Fails for a plain password and for a key that is not on
/// P-256; no part of the item stands in the error.
[[nodiscard]] platform::Result<ApiKey> apiKeyFromItem(const QByteArray &item);

/// The form in which an item holds a key, one line.
[[nodiscard]] QByteArray itemOf(const ApiKey &key);

/// The key's own object for signing; null if it is no P-256 key.
[[nodiscard]] PrivateKey privateKeyOf(const ApiKey &key);

/// The public half, as PEM; empty if there is none.
[[nodiscard]] QByteArray publicKeyOf(const ApiKey &key);

/// A token of 19 minutes for one request (RFC 7519, ES256). `now` is the service's time.
[[nodiscard]] QByteArray makeToken(const ApiKey &key, const QDateTime &now);

/// Makes a team key and enrols it with the service of this machine.
[[nodiscard]] platform::Result<ApiKey> makeLocalApiKey();

/// Makes the key known to the service of this machine.
[[nodiscard]] platform::Outcome enrol(const ApiKey &key);

} // namespace toolchain::notary
