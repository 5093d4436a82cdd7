#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

#include "formats/cryptography.h"
#include "formats/keychain/vault.h"
#include "platform/result.h"

namespace toolchain {

/// Private keys that stay in a hardware token. `tokens/ID.json` in a keychain folder names each by its PKCS
/// #11 URI (RFC 7512); ID is the `publicKeyId`. The token is reached by libcrypto's engine of libp11, which
/// finds the modules that p11-kit knows, or the one that the URI's module-path names.

/// The URIs by `publicKeyId`.
[[nodiscard]] QMap<QString, QString> readTokenKeys(const QString &keychainFolder);

/// A handle on a key in a token; what is signed with it is signed there. The PIN comes from the vault, where
/// the import has put it.
[[nodiscard]] platform::Result<SharedKey> openTokenKey(const QString &uri, const Vault &vault);

/// The same with a PIN.
[[nodiscard]] platform::Result<SharedKey> loadTokenKey(const QString &uri, const QByteArray &pin);

/// The certificate that lies beside a key in its token; null if there is none.
[[nodiscard]] Certificate loadTokenCertificate(const QString &uri, const QByteArray &pin);

/// The name of the vault's item that holds a token's PIN.
[[nodiscard]] QString tokenPinItem(const QString &uri);

} // namespace toolchain
