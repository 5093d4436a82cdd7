#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

#include "platform/result.h"

namespace toolchain {

/// Makes a key of a token (PKCS #11) usable by its URI (RFC 7512). Its certificate comes out of the token, or
/// is in the keychain folder already. The PIN is proven at once and kept in the vault. Answers the
/// certificate's common name.
[[nodiscard]] platform::Result<QString>
importTokenKey(const QString &keychainFolder, const QString &uri,
               const std::function<platform::Result<QByteArray>()> &pin);

} // namespace toolchain
