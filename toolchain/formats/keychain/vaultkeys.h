#pragma once

#include <QByteArray>
#include <QString>

#include "formats/keychain/vaultfile.h"
#include "platform/result.h"

namespace toolchain {

/// A new vault key, and the lock that leads to it.
struct LockedKey {
    VaultLock lock;
    QByteArray key;
};

/// Makes a key and puts it where the protection keeps it. `passphrase` is looked at for that protection
/// alone.
[[nodiscard]] platform::Result<LockedKey> makeVaultKey(const QString &folder, VaultProtection protection,
                                                       const QByteArray &passphrase);

/// The key of a vault that no passphrase protects.
[[nodiscard]] platform::Result<QByteArray> keptVaultKey(const QString &folder, const VaultLock &lock);

/// The key of a vault under a passphrase.
[[nodiscard]] platform::Result<QByteArray> vaultKeyFrom(const VaultLock &lock, const QByteArray &passphrase);

/// Removes the key that a lock leads to, once no vault needs it.
void dropVaultKey(const QString &folder, const VaultLock &lock);

} // namespace toolchain
