#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include "formats/cryptography.h"
#include "platform/result.h"

namespace toolchain {

/// A key and the certificates that vouch for it.
struct IssuedKey {
    SharedKey key;
    QList<QByteArray> chain; ///< in DER form, from the leaf to the root
};

/// The purposes that the authority of this machine certifies keys for.
enum class LeafPurpose {
    application, ///< "Developer ID Application: ", RSA of 2048 bits
    installer, ///< "Developer ID Installer: ", RSA of 2048 bits
    timestamp, ///< signs time stamps (RFC 3161), RSA of 2048 bits
    ticket, ///< signs tickets of the local notary, elliptic curve P-256
    server ///< TLS on this machine, elliptic curve P-256
};

/// The certification authority of this machine: a root, and an intermediate certificate for each purpose,
/// with the extensions that Apple's have. Whatever rests on it is accepted by this toolchain alone. It is
/// made at the first wish; its private keys lie in the vault of the keychain folder, its certificates in
/// `authority/` beside it. Any process.
class Authority {
public:
    explicit Authority(QString keychainFolder);

    /// The root in DER form; empty if there is none yet.
    [[nodiscard]] QByteArray root() const;
    /// The certificates of the authority itself in DER form.
    [[nodiscard]] QList<QByteArray> certificates() const;

    /// A new key and certificate for a developer. `commonName` is the whole name, `team` the ten letters and
    /// digits, `organisation` the holder.
    [[nodiscard]] platform::Result<IssuedKey> issueDeveloper(LeafPurpose purpose, const QString &commonName,
                                                             const QString &team,
                                                             const QString &organisation) const;

    /// The key and certificate of a service of this machine, the same at each call until it has a month left
    /// only. `hosts` are the names and addresses that a Server answers under, and not looked at for others.
    [[nodiscard]] platform::Result<IssuedKey> serviceKey(LeafPurpose purpose,
                                                         const QStringList &hosts = {}) const;

private:
    QString m_keychain;
};

} // namespace toolchain
