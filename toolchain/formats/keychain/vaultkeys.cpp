#include "formats/keychain/vaultkeys.h"

#include <QFile>

#include "formats/cryptography.h"
#include "formats/keychain/privatefile.h"
#include "formats/keychain/secretservice.h"

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Outcome;
using platform::Result;

namespace toolchain {

namespace {

const QByteArray keyContext = "sealwright keychain key 1";
constexpr qsizetype saltSize = 16;
constexpr qsizetype nameSize = 8;

QString newName()
{
    return QString::fromLatin1(randomBytes(nameSize).toHex());
}

Result<LockedKey> keyUnder(const QByteArray &passphrase, const QByteArray &key)
{
    if (passphrase.isEmpty())
        return Error{u"an empty passphrase protects nothing"_s};
    VaultLock lock{VaultProtection::passphrase, {}, {}, randomBytes(saltSize), {}};
    const QByteArray outer = keyFromPassphrase(passphrase, lock.salt, lock.cost);
    if (outer.isEmpty())
        return Error{u"no key could be made of the passphrase"_s};
    lock.sealedKey = sealBytes(outer, key, keyContext);
    return LockedKey{lock, key};
}

Result<LockedKey> keyInFile(const QString &folder, const QByteArray &key)
{
    const VaultLock lock{VaultProtection::keyFile, newName() + u".key"_s, {}, {}, {}};
    const Outcome written = writePrivateFile(folder + u'/' + lock.keeper, key);
    return written ? Result<LockedKey>(LockedKey{lock, key}) : written.failure();
}

Result<LockedKey> keyInSecretService(const QByteArray &key)
{
    const VaultLock lock{VaultProtection::secretService, u"keychain "_s + newName(), {}, {}, {}};
    const auto kept = secretservice::store(lock.keeper, key);
    return kept ? Result<LockedKey>(LockedKey{lock, key}) : kept.failure();
}

} // namespace

Result<LockedKey> makeVaultKey(const QString &folder, VaultProtection protection,
                               const QByteArray &passphrase)
{
    const QByteArray key = randomBytes(sealingKeySize);
    switch (protection) {
    case VaultProtection::keyFile:
        return keyInFile(folder, key);
    case VaultProtection::passphrase:
        return keyUnder(passphrase, key);
    case VaultProtection::secretService:
        return keyInSecretService(key);
    }
    return Error{u"no such protection"_s};
}

Result<QByteArray> keptVaultKey(const QString &folder, const VaultLock &lock)
{
    if (lock.protection == VaultProtection::secretService)
        return secretservice::read(lock.keeper);
    QFile file(folder + u'/' + lock.keeper);
    if (!file.open(QIODevice::ReadOnly))
        return Error{file.fileName() + u": "_s + file.errorString()};
    return file.read(sealingKeySize + 1);
}

Result<QByteArray> vaultKeyFrom(const VaultLock &lock, const QByteArray &passphrase)
{
    const auto key =
        unsealBytes(keyFromPassphrase(passphrase, lock.salt, lock.cost), lock.sealedKey, keyContext);
    return key ? Result<QByteArray>(*key) : Error{u"the passphrase is wrong"_s};
}

void dropVaultKey(const QString &folder, const VaultLock &lock)
{
    if (lock.protection == VaultProtection::keyFile)
        QFile::remove(folder + u'/' + lock.keeper);
    if (lock.protection == VaultProtection::secretService)
        secretservice::remove(lock.keeper).ignore();
}

} // namespace toolchain
