#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

#include "formats/cryptography.h"
#include "platform/result.h"

namespace toolchain {

/// What a keychain folder holds: certificates in PEM files; private keys in the vault, in tokens, or in PEM
/// files as the folder's first form had them.
struct KeychainContents {
    struct Entry {
        Certificate certificate;
        QString path; ///< of the file that it lies in
    };

    QString folder;
    std::vector<Entry> entries; ///< ordered by their files' names
    std::vector<Key> plainKeys;
    QStringList vaultKeys; ///< by `publicKeyId`
    QMap<QString, QString> tokenKeys; ///< PKCS #11 URIs by `publicKeyId`
    QStringList warnings; ///< one line for each file that could not be used

    [[nodiscard]] bool hasKeyOf(X509 *certificate) const;

    /// The private key of a certificate, ready to sign. Fails where it is not there, the vault is locked, or
    /// the token does not answer.
    [[nodiscard]] platform::Result<SharedKey> openKeyOf(X509 *certificate) const;

    /// In DER form.
    [[nodiscard]] QList<QByteArray> certificates() const;
};

/// Reads every .pem, .crt and .key file, and which keys the vault and the tokens have. A folder that does not
/// exist is an empty one.
[[nodiscard]] KeychainContents readKeychain(const QString &folder);

} // namespace toolchain
