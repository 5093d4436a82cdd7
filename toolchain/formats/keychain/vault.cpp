#include "formats/keychain/vault.h"

#include "formats/keychain/sessionkey.h"
#include "formats/keychain/vaultkeys.h"
#include "formats/statefolder.h"

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Outcome;
using platform::Result;

namespace toolchain {

namespace {

/// Makes the vault's folder and keeps other processes from changing the vault meanwhile.
class VaultTurn {
public:
    explicit VaultTurn(const QString &folder)
        : m_taken(makePrivateFolder(folder))
        , m_lock(folder)
    {
        if (m_taken && !m_lock.isHeld())
            m_taken = Error{folder + u": cannot be locked against other processes"_s};
    }

    /// Fails where it is not this process's turn.
    [[nodiscard]] const Outcome &taken() const { return m_taken; }

private:
    Outcome m_taken;
    FolderLock m_lock;
};

} // namespace

Vault::Vault(const QString &keychainFolder)
    : m_folder(keychainFolder + u"/vault"_s)
{
}

Result<Vault::Status> Vault::status() const
{
    const auto file = VaultFile::read(m_folder);
    if (!file)
        return file.failure();
    if (!*file)
        return Status{};
    const VaultFile &vault = **file;
    const bool isLocked =
        vault.lock.protection == VaultProtection::passphrase && !SessionKey(m_folder).read().has_value();
    return Status{.exists = true,
                  .isLocked = isLocked,
                  .protection = vault.lock.protection,
                  .keys = vault.keyIds.size()};
}

Result<QStringList> Vault::keyIds() const
{
    const auto file = VaultFile::read(m_folder);
    if (!file)
        return file.failure();
    return *file ? (**file).keyIds : QStringList();
}

Result<VaultSecrets> Vault::read() const
{
    const auto file = VaultFile::read(m_folder);
    if (!file)
        return file.failure();
    if (!*file)
        return VaultSecrets{};
    const auto key = keyOf(**file);
    return key ? secretsOf(**file, *key) : key.failure();
}

Outcome Vault::change(const Change &change) const
{
    const VaultTurn turn(m_folder);
    if (!turn.taken())
        return turn.taken();
    const auto file = VaultFile::read(m_folder);
    if (!file)
        return file.failure();
    const auto key = *file ? keyOf(**file) : QByteArray();
    auto secrets = !key ? Result<VaultSecrets>(key.failure())
        : *file         ? secretsOf(**file, *key)
                        : VaultSecrets{};
    if (!secrets)
        return secrets.failure();
    const QByteArray before = secrets->toBytes();
    const auto changed = change(*secrets);
    const bool isSame = *file && secrets->toBytes() == before;
    if (!changed || isSame)
        return changed;
    return *file ? write(**file, *key, *secrets) : writeAnew(*secrets, VaultProtection::keyFile, {});
}

Outcome Vault::unlock(const QByteArray &passphrase) const
{
    const VaultTurn turn(m_folder);
    if (!turn.taken())
        return turn.taken();
    const auto file = VaultFile::read(m_folder);
    if (!file)
        return file.failure();
    if (!*file)
        return writeAnew({}, VaultProtection::passphrase, passphrase);
    if ((**file).lock.protection != VaultProtection::passphrase)
        return Error{u"the keychain is under no passphrase"_s};
    const auto key = vaultKeyFrom((**file).lock, passphrase);
    const auto secrets = key ? secretsOf(**file, *key) : key.failure();
    if (!secrets)
        return secrets.failure();
    return SessionKey(m_folder).keep(*key);
}

Outcome Vault::lock() const
{
    const auto now = status();
    if (!now)
        return now.failure();
    if (now->protection != VaultProtection::passphrase)
        return Error{u"the keychain is under no passphrase, so it cannot be locked"_s};
    SessionKey(m_folder).forget();
    return Outcome::success();
}

Outcome Vault::protect(VaultProtection protection, const QByteArray &passphrase) const
{
    const VaultTurn turn(m_folder);
    if (!turn.taken())
        return turn.taken();
    const auto file = VaultFile::read(m_folder);
    const auto secrets = read();
    if (!file || !secrets)
        return file ? secrets.failure() : file.failure();
    const auto written = writeAnew(*secrets, protection, passphrase);
    if (written && *file)
        dropVaultKey(m_folder, (**file).lock);
    return written;
}

Result<QByteArray> Vault::keyOf(const VaultFile &file) const
{
    if (file.lock.protection != VaultProtection::passphrase)
        return keptVaultKey(m_folder, file.lock);
    const auto key = SessionKey(m_folder).read();
    return key ? Result<QByteArray>(*key)
               : Error{u"the keychain is locked; \"sealwright-keychain unlock\" opens it"_s};
}

Result<VaultSecrets> Vault::secretsOf(const VaultFile &file, const QByteArray &key) const
{
    const auto bytes = unsealBytes(key, file.sealed, file.context());
    const auto secrets = bytes ? VaultSecrets::fromBytes(*bytes) : std::nullopt;
    if (!secrets)
        return Error{m_folder
                     + u": cannot be opened with the key that is there; it has been changed or damaged"_s};
    return *secrets;
}

Outcome Vault::write(VaultFile file, const QByteArray &key, const VaultSecrets &secrets) const
{
    file.keyIds = secrets.keys.keys();
    file.sealed = sealBytes(key, secrets.toBytes(), file.context());
    return file.write(m_folder);
}

Outcome Vault::writeAnew(const VaultSecrets &secrets, VaultProtection protection,
                         const QByteArray &passphrase) const
{
    const auto made = makeVaultKey(m_folder, protection, passphrase);
    if (!made)
        return made.failure();
    const auto written = write({made->lock, {}, {}}, made->key, secrets);
    if (!written)
        return written;
    SessionKey session(m_folder);
    session.forget();
    return protection == VaultProtection::passphrase ? session.keep(made->key) : Outcome::success();
}

} // namespace toolchain
