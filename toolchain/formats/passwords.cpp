#include "formats/passwords.h"

#include <QFile>
#include <QUrl>

#include "formats/keychain/vault.h"
#include "formats/statefolder.h"

using namespace Qt::StringLiterals;
using platform::Outcome;
using platform::Result;

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

Outcome storePassword(const QString &name, const QByteArray &password)
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
    return changed;
}

Result<std::optional<PasswordItem>> findPassword(const QString &item, const QString &account)
{
    auto secrets = Vault(keychainFolder()).read();
    if (!secrets)
        return secrets.failure();
    if (const PasswordItem *found = secrets->find(item, account))
        return std::optional(*found);
    const auto plain = account.isNull() ? readPlainPassword(item) : std::nullopt;
    return plain ? std::optional(PasswordItem{item, {}, *plain}) : std::optional<PasswordItem>();
}

Result<PasswordAddition> addPassword(const PasswordItem &item, ExistingPassword existing)
{
    PasswordAddition addition = PasswordAddition::added;
    const Outcome changed = Vault(keychainFolder()).change([&](VaultSecrets &secrets) {
        PasswordItem *same = secrets.find(item.item, item.account.isNull() ? u""_s : item.account);
        if (!same)
            secrets.passwords.append(item);
        else if (existing == ExistingPassword::updated)
            same->password = item.password;
        if (same)
            addition =
                existing == ExistingPassword::updated ? PasswordAddition::updated : PasswordAddition::refused;
        return Outcome::success();
    });
    if (changed && addition != PasswordAddition::refused)
        QFile::remove(plainPath(item.item));
    return changed ? Result<PasswordAddition>(addition) : changed.failure();
}

Result<bool> removePassword(const QString &item, const QString &account)
{
    bool wasThere = account.isNull() && QFile::remove(plainPath(item));
    const Outcome changed = Vault(keychainFolder()).change([&](VaultSecrets &secrets) {
        if (const PasswordItem *found = secrets.find(item, account)) {
            secrets.passwords.removeAt(found - secrets.passwords.constData());
            wasThere = true;
        }
        return Outcome::success();
    });
    return changed ? Result<bool>(wasThere) : changed.failure();
}

} // namespace toolchain
