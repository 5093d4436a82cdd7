#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

#include "formats/keychain/vaultfile.h"
#include "formats/keychain/vaultsecrets.h"
#include "platform/result.h"

namespace toolchain {

/// Where the private keys and passwords of a keychain folder lie, encrypted. A folder without a vault has an
/// empty one, which the first change makes under a random key beside it. Any number of processes may use one
/// at once.
class Vault {
public:
    /// `keychainFolder` need not exist.
    explicit Vault(const QString &keychainFolder);

    struct Status {
        bool exists = false;
        bool isLocked = false;
        VaultProtection protection = VaultProtection::keyFile;
        qsizetype keys = 0;
    };
    [[nodiscard]] platform::Result<Status> status() const;

    /// The private keys in it by `publicKeyId`; needs no unlocking.
    [[nodiscard]] platform::Result<QStringList> keyIds() const;

    /// All secrets. Fails while the vault is locked.
    [[nodiscard]] platform::Result<VaultSecrets> read() const;

    /// Lets a function change the secrets, and writes them. An error of the function leaves all as it was.
    using Change = std::function<platform::Outcome(VaultSecrets &)>;
    [[nodiscard]] platform::Outcome change(const Change &change) const;

    /// Opens a vault under a passphrase until `lock` or the end of the login session. Makes a vault under
    /// this passphrase if there is none.
    [[nodiscard]] platform::Outcome unlock(const QByteArray &passphrase) const;
    /// Fails for a vault that no passphrase protects.
    [[nodiscard]] platform::Outcome lock() const;

    /// Encrypts everything anew under another protection; the vault must be open. `passphrase` is that of
    /// `VaultProtection::passphrase` and not looked at for the others.
    [[nodiscard]] platform::Outcome protect(VaultProtection protection,
                                            const QByteArray &passphrase = {}) const;

private:
    [[nodiscard]] platform::Result<QByteArray> keyOf(const VaultFile &file) const;
    [[nodiscard]] platform::Result<VaultSecrets> secretsOf(const VaultFile &file,
                                                           const QByteArray &key) const;
    [[nodiscard]] platform::Outcome write(VaultFile file, const QByteArray &key,
                                          const VaultSecrets &secrets) const;
    [[nodiscard]] platform::Outcome writeAnew(const VaultSecrets &secrets, VaultProtection protection,
                                              const QByteArray &passphrase) const;

    QString m_folder;
};

} // namespace toolchain
