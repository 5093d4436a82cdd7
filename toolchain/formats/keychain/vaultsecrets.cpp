#include "formats/keychain/vaultsecrets.h"

#include "formats/keychain/vaultbytes.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

QJsonArray listOf(const QList<PasswordItem> &passwords)
{
    QJsonArray list;
    for (const PasswordItem &password : passwords) {
        list.append(QJsonObject{{u"item"_s, password.item},
                                {u"account"_s, password.account},
                                {u"password"_s, base64(password.password)}});
    }
    return list;
}

PasswordItem itemIn(const QJsonObject &object)
{
    return {object.value(u"item"_s).toString(), object.value(u"account"_s).toString(),
            bytesIn(object.value(u"password"_s))};
}

} // namespace

PasswordItem *VaultSecrets::find(const QString &item, const QString &account)
{
    for (PasswordItem &password : passwords) {
        if (password.item == item && (account.isNull() || password.account == account))
            return &password;
    }
    return nullptr;
}

QByteArray VaultSecrets::toBytes() const
{
    QJsonObject keyObject;
    for (auto key = keys.begin(); key != keys.end(); ++key)
        keyObject.insert(key.key(), base64(key.value()));
    const QJsonObject object{{u"keys"_s, keyObject}, {u"passwords"_s, listOf(passwords)}};
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

std::optional<VaultSecrets> VaultSecrets::fromBytes(const QByteArray &bytes)
{
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    if (!document.isObject())
        return std::nullopt;
    VaultSecrets secrets;
    const QJsonObject keyObject = document.object().value(u"keys"_s).toObject();
    for (auto key = keyObject.begin(); key != keyObject.end(); ++key)
        secrets.keys.insert(key.key(), bytesIn(key.value()));
    for (const QJsonValue &password : document.object().value(u"passwords"_s).toArray())
        secrets.passwords.append(itemIn(password.toObject()));
    return secrets;
}

} // namespace toolchain
