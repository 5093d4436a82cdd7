#include "formats/passwords.h"

#include <QFile>
#include <QUrl>

#include "formats/keychain/vault.h"
#include "formats/statefolder.h"

using namespace Qt::StringLiterals;
using platform::Outcome;

namespace toolchain {

namespace {

/// Where the first form of the folder kept an item, in the clear. A name may hold any character, so it is in
/// percent form.
QString plainPath(const QString &name)
{
    return keychainFolder() + u"/passwords/"_s + QString::fromLatin1(QUrl::toPercentEncoding(name))
        + u".password"_s;
}

std::optional<QByteArray> readPlainPassword(const QString &name)
{
    QFile file(plainPath(name));
    return file.open(QIODevice::ReadOnly) ? std::optional(file.readAll()) : std::nullopt;
}

} // namespace

std::optional<QByteArray> readPassword(const QString &name)
{
    auto secrets = Vault(keychainFolder()).read();
    const PasswordItem *item = secrets ? secrets->find(name) : nullptr;
    return item ? std::optional(item->password) : readPlainPassword(name);
}

QString storePassword(const QString &name, const QByteArray &password)
{
    const auto changed = Vault(keychainFolder()).change([&](VaultSecrets &secrets) {
        if (PasswordItem *item = secrets.find(name))
            item->password = password;
        else
            secrets.passwords.append({name, {}, password});
        return Outcome::success();
    });
    if (changed)
        QFile::remove(plainPath(name));
    return changed.error();
}

} // namespace toolchain
