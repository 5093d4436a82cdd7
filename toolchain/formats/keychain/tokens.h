#pragma once

#include <QMap>
#include <QString>

#include "formats/cryptography.h"
#include "formats/keychain/vault.h"
#include "platform/result.h"

namespace toolchain {

/// Private keys that stay in a hardware token. `tokens/ID.json` in a keychain folder names each by its PKCS
/// #11 URI (RFC 7512); ID is the `publicKeyId`.

/// The URIs by `publicKeyId`.
[[nodiscard]] QMap<QString, QString> readTokenKeys(const QString &keychainFolder);

/// A handle on a key in a token; what is signed with it is signed there. The PIN comes from the vault, where
/// the import has put it.
[[nodiscard]] platform::Result<SharedKey> openTokenKey(const QString &uri, const Vault &vault);

} // namespace toolchain
