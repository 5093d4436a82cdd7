#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <optional>

#include "formats/keychain/vaultcipher.h"
#include "platform/result.h"

namespace toolchain {

/// What keeps a vault's own key.
enum class VaultProtection {
    keyFile, ///< a file beside the vault: no more than the folder's own protection
    passphrase, ///< the key is sealed under a passphrase
    secretService ///< the desktop's Secret Service keeps it
};

/// How a vault's key is come by. What belongs to other protections is empty.
struct VaultLock {
    VaultProtection protection = VaultProtection::keyFile;
    QString keeper; ///< the key file's name, or the entry in the Secret Service
    ScryptCost cost;
    QByteArray salt;
    QByteArray sealedKey; ///< of Passphrase
};

/// The file `vault.json` of a vault's folder. What may be known of a locked vault stands there in the clear:
/// which private keys are in it, by the SHA-1 of their public keys.
struct VaultFile {
    VaultLock lock;
    QStringList keyIds;
    QByteArray sealed; ///< the secrets

    /// What the seal vouches for beside the secrets.
    [[nodiscard]] QByteArray context() const;

    /// Nothing if the folder has no vault; an error that names the file if it cannot be read or is none.
    static platform::Result<std::optional<VaultFile>> read(const QString &folder);
    [[nodiscard]] platform::Outcome write(const QString &folder) const;
};

} // namespace toolchain
