#include "formats/keychain/keychainchanges.h"

#include <QFile>
#include <QUrl>

#include <openssl/obj_mac.h>

#include <algorithm>

#include "formats/certificatefile.h"
#include "formats/keychain/vault.h"
#include "formats/keychaincontents.h"

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Outcome;
using platform::Result;

namespace toolchain {

namespace {

/// Named for its holder; a namesake gets the beginning of its digest as well.
QString newPathFor(const QString &folder, X509 *certificate)
{
    const QString sha1 = fingerprintOf(certificate);
    const QString name = subjectEntryOf(certificate, NID_commonName);
    constexpr qsizetype longestName = 100;
    const QString base = folder + u'/'
        + QString::fromLatin1(QUrl::toPercentEncoding(name.isEmpty() ? sha1 : name.left(longestName),
                                                      " (),:"));
    return QFile::exists(base + u".pem"_s) ? base + u' ' + sha1.left(8) + u".pem"_s : base + u".pem"_s;
}

/// The keys that were not there before.
Result<QStringList> addKeys(const QString &folder, const QList<QByteArray> &keys)
{
    QStringList added;
    if (keys.isEmpty())
        return added;
    const Outcome changed = Vault(folder).change([&](VaultSecrets &secrets) -> Outcome {
        for (const QByteArray &der : keys) {
            const Key key = keyFrom(der);
            if (!key)
                return Error{u"a private key cannot be read"_s};
            const QString id = publicKeyId(key.get());
            if (!secrets.keys.contains(id))
                added.append(id);
            secrets.keys.insert(id, der);
        }
        return Outcome::success();
    });
    return changed ? Result<QStringList>(added) : changed.failure();
}

/// The certificates that were not there before.
Result<QList<QByteArray>> addCertificates(const QString &folder, const QList<QByteArray> &certificates)
{
    QList<QByteArray> known = readKeychain(folder).certificates();
    QList<QByteArray> added;
    for (const QByteArray &der : certificates) {
        const Certificate certificate = certificateFrom(der);
        if (!certificate || known.contains(der))
            continue;
        const Outcome written = writeCertificateFile(newPathFor(folder, certificate.get()), {der});
        if (!written)
            return written.failure();
        known.append(der);
        added.append(der);
    }
    return added;
}

/// Counts a certificate as an identity where it or its key is new, and the other is there.
ImportCount counted(const KeychainContents &contents, const QList<QByteArray> &newCertificates,
                    QStringList newKeys)
{
    ImportCount count;
    for (const auto &entry : contents.entries) {
        X509 *certificate = entry.certificate.get();
        const bool isNew = newCertificates.contains(derOf(certificate));
        const bool hasNewKey = newKeys.contains(publicKeyId(certificate));
        if ((isNew && contents.hasKeyOf(certificate)) || hasNewKey)
            ++count.identities;
        else if (isNew)
            ++count.certificates;
    }
    newKeys.removeIf([&contents](const QString &id) {
        return std::any_of(contents.entries.begin(), contents.entries.end(),
                           [&id](const auto &entry) { return publicKeyId(entry.certificate.get()) == id; });
    });
    count.keys = newKeys.size();
    return count;
}

Outcome removeKey(const QString &folder, const QString &id)
{
    QFile::remove(folder + u"/tokens/"_s + id + u".json"_s);
    const auto ids = Vault(folder).keyIds();
    if (!ids || !ids->contains(id))
        return ids ? Outcome::success() : ids.failure();
    return Vault(folder).change([&id](VaultSecrets &secrets) {
        secrets.keys.remove(id);
        return Outcome::success();
    });
}

} // namespace

Result<ImportCount> addToKeychain(const QString &folder, const ImportedItems &items)
{
    const auto keys = addKeys(folder, items.keys);
    if (!keys)
        return keys.failure();
    const auto certificates = addCertificates(folder, items.certificates);
    if (!certificates)
        return certificates.failure();
    return counted(readKeychain(folder), *certificates, *keys);
}

Outcome removeIdentity(const QString &folder, const QString &sha1)
{
    const KeychainContents contents = readKeychain(folder);
    const auto found = std::find_if(contents.entries.begin(), contents.entries.end(), [&](const auto &entry) {
        return fingerprintOf(entry.certificate.get()) == sha1;
    });
    if (found == contents.entries.end())
        return Error{u"The specified item could not be found in the keychain."_s};
    const auto sharers = [&](const auto &same) {
        return std::count_if(contents.entries.begin(), contents.entries.end(), same);
    };
    if (sharers([&](const auto &entry) { return entry.path == found->path; }) > 1)
        return Error{found->path + u": holds other certificates too; take this one out by hand"_s};
    const QString id = publicKeyId(found->certificate.get());
    const bool isShared =
        sharers([&](const auto &entry) { return publicKeyId(entry.certificate.get()) == id; }) > 1;
    const Outcome removed = isShared ? Outcome::success() : removeKey(folder, id);
    if (removed && !QFile::remove(found->path))
        return Error{found->path + u": cannot be removed"_s};
    return removed;
}

} // namespace toolchain
