#include "formats/keychain/vaultfile.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include "formats/keychain/privatefile.h"
#include "formats/keychain/vaultbytes.h"

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Outcome;
using platform::Result;

namespace toolchain {

namespace {

constexpr int fileVersion = 1;
constexpr qint64 mostBytes = 16 << 20;

struct ProtectionName {
    VaultProtection protection;
    QLatin1StringView name;
};

constexpr ProtectionName protectionNames[] = {
    {VaultProtection::keyFile, "key-file"_L1},
    {VaultProtection::passphrase, "passphrase"_L1},
    {VaultProtection::secretService, "secret-service"_L1},
};

QString pathIn(const QString &folder)
{
    return folder + u"/vault.json"_s;
}

QString nameOf(VaultProtection protection)
{
    for (const ProtectionName &entry : protectionNames) {
        if (entry.protection == protection)
            return entry.name;
    }
    return {};
}

std::optional<VaultProtection> protectionNamed(const QString &name)
{
    for (const ProtectionName &entry : protectionNames) {
        if (entry.name == name)
            return entry.protection;
    }
    return std::nullopt;
}

quint64 numberIn(const QJsonValue &value)
{
    return static_cast<quint64>(value.toInteger(0));
}

QJsonObject objectOf(const VaultLock &lock)
{
    QJsonObject object{{u"kind"_s, nameOf(lock.protection)}};
    if (lock.protection != VaultProtection::passphrase) {
        object.insert(u"keeper"_s, lock.keeper);
        return object;
    }
    object.insert(u"scrypt"_s, QJsonArray{qint64(lock.cost.n), qint64(lock.cost.r), qint64(lock.cost.p)});
    object.insert(u"salt"_s, base64(lock.salt));
    object.insert(u"sealedKey"_s, base64(lock.sealedKey));
    return object;
}

std::optional<VaultLock> lockIn(const QJsonObject &object)
{
    const auto protection = protectionNamed(object.value(u"kind"_s).toString());
    if (!protection)
        return std::nullopt;
    const QJsonArray cost = object.value(u"scrypt"_s).toArray();
    const VaultLock lock{*protection,
                         object.value(u"keeper"_s).toString(),
                         {numberIn(cost.at(0)), numberIn(cost.at(1)), numberIn(cost.at(2))},
                         bytesIn(object.value(u"salt"_s)),
                         bytesIn(object.value(u"sealedKey"_s))};
    const bool isFit =
        *protection == VaultProtection::passphrase ? lock.cost.isBearable() : !lock.keeper.contains(u'/');
    return isFit ? std::optional(lock) : std::nullopt;
}

std::optional<VaultFile> vaultIn(const QByteArray &json)
{
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    const auto lock = lockIn(object.value(u"protection"_s).toObject());
    if (object.value(u"version"_s).toInt() != fileVersion || !lock)
        return std::nullopt;
    VaultFile file{*lock, {}, bytesIn(object.value(u"sealed"_s))};
    for (const QJsonValue &id : object.value(u"keys"_s).toArray())
        file.keyIds.append(id.toString());
    return file;
}

} // namespace

QByteArray VaultFile::context() const
{
    return "sealwright keychain 1 " + keyIds.join(u' ').toUtf8();
}

Result<std::optional<VaultFile>> VaultFile::read(const QString &folder)
{
    QFile file(pathIn(folder));
    if (!file.exists())
        return std::optional<VaultFile>();
    if (!file.open(QIODevice::ReadOnly))
        return Error{file.fileName() + u": "_s + file.errorString()};
    auto vault = vaultIn(file.read(mostBytes));
    if (!vault)
        return Error{file.fileName() + u": is damaged, or of a newer version"_s};
    return vault;
}

Outcome VaultFile::write(const QString &folder) const
{
    const QJsonObject object{{u"version"_s, fileVersion},
                             {u"protection"_s, objectOf(lock)},
                             {u"keys"_s, QJsonArray::fromStringList(keyIds)},
                             {u"sealed"_s, base64(sealed)}};
    return writePrivateFile(pathIn(folder), QJsonDocument(object).toJson());
}

} // namespace toolchain
