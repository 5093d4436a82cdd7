#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>

#include <optional>

namespace toolchain {

/// A password item: found by its name, and by its account where several have the same name.
struct PasswordItem {
    QString item;
    QString account;
    QByteArray password;
};

/// What a vault keeps secret.
struct VaultSecrets {
    QMap<QString, QByteArray> keys; ///< private keys in PKCS #8, by `publicKeyId`
    QList<PasswordItem> passwords;

    /// The first item of a name, and of an account if one is given (not null); null if there is none.
    [[nodiscard]] PasswordItem *find(const QString &item, const QString &account = {});

    [[nodiscard]] QByteArray toBytes() const;
    /// Nothing if the bytes are not those of `toBytes`.
    static std::optional<VaultSecrets> fromBytes(const QByteArray &bytes);
};

} // namespace toolchain
