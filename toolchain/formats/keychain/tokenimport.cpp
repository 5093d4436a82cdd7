#include "formats/keychain/tokenimport.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <openssl/obj_mac.h>

#include "formats/cryptography.h"
#include "formats/keychain/keychainchanges.h"
#include "formats/keychain/privatefile.h"
#include "formats/keychain/tokens.h"
#include "formats/keychaincontents.h"
#include "formats/statefolder.h"

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Outcome;
using platform::Result;

namespace toolchain {

namespace {

/// Of a certificate in the folder whose public key is that of the token's.
Certificate certificateInFolder(const QString &folder, const QString &id)
{
    KeychainContents contents = readKeychain(folder);
    for (auto &entry : contents.entries) {
        if (publicKeyId(entry.certificate.get()) == id)
            return std::move(entry.certificate);
    }
    return nullptr;
}

Outcome keepPin(const QString &folder, const QString &uri, const QByteArray &pin)
{
    return Vault(folder).change([&](VaultSecrets &secrets) {
        const QString item = tokenPinItem(uri);
        if (PasswordItem *kept = secrets.find(item))
            kept->password = pin;
        else
            secrets.passwords.append({item, u"PIN"_s, pin});
        return Outcome::success();
    });
}

Outcome keepEntry(const QString &folder, const QString &uri, const QString &id)
{
    const QByteArray json = QJsonDocument(QJsonObject{{u"uri"_s, uri}}).toJson();
    const Outcome made = makePrivateFolder(folder + u"/tokens"_s);
    return made ? writePrivateFile(folder + u"/tokens/"_s + id + u".json"_s, json) : made;
}

} // namespace

Result<QString> importTokenKey(const QString &keychainFolder, const QString &uri,
                               const std::function<Result<QByteArray>()> &pin)
{
    if (!uri.startsWith(u"pkcs11:"_s))
        return Error{uri + u": is no PKCS #11 URI (pkcs11:...)"_s};
    if (uri.contains(u"pin-value"_s))
        return Error{u"a PIN does not belong on the command line; --passphrase-file names a file with it"_s};
    const auto secret = pin();
    if (!secret)
        return secret.failure();
    const auto key = loadTokenKey(uri, *secret);
    if (!key)
        return key.failure();
    const QString id = publicKeyId(key->get());
    Certificate certificate = loadTokenCertificate(uri, *secret);
    if (!certificate || publicKeyId(certificate.get()) != id)
        certificate = certificateInFolder(keychainFolder, id);
    if (!certificate)
        return Error{
            uri + u": the token has no certificate of this key, nor has the keychain; import it first"_s};
    const QByteArray der = derOf(certificate.get());
    const auto added = addToKeychain(keychainFolder, {{der}, {}});
    const Outcome kept = added ? keepPin(keychainFolder, uri, *secret) : Outcome(added.failure());
    const Outcome entered = kept ? keepEntry(keychainFolder, uri, id) : kept;
    return entered ? Result<QString>(subjectEntryOf(certificate.get(), NID_commonName)) : entered.failure();
}

} // namespace toolchain
