#include "formats/keychaincontents.h"

#include <QDir>
#include <QFile>

#include <openssl/err.h>
#include <openssl/pem.h>

#include <algorithm>

#include "formats/certificatefile.h"
#include "formats/keychain/tokens.h"
#include "formats/keychain/vault.h"

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain {

namespace {

void freeInfoStack(STACK_OF(X509_INFO) * stack)
{
    sk_X509_INFO_pop_free(stack, X509_INFO_free);
}

/// No file of the keychain folder is locked by a passphrase that somebody could be asked for.
int refusePassphrase(char *, int, int, void *)
{
    return -1;
}

void addKeys(const QByteArray &bytes, KeychainContents &contents)
{
    const MemoryFile memory = memoryOver(bytes);
    const std::unique_ptr<STACK_OF(X509_INFO), Freed<freeInfoStack>> stack(
        PEM_X509_INFO_read_bio(memory.get(), nullptr, refusePassphrase, nullptr));
    for (int index = 0; stack && index < sk_X509_INFO_num(stack.get()); ++index) {
        X509_INFO *piece = sk_X509_INFO_value(stack.get(), index);
        if (piece->x_pkey && piece->x_pkey->dec_pkey)
            contents.plainKeys.emplace_back(std::exchange(piece->x_pkey->dec_pkey, nullptr));
    }
    ERR_clear_error();
}

/// Adds what a PEM file holds; false if that is nothing that can be used.
bool addFile(const QByteArray &bytes, const QString &path, KeychainContents &contents)
{
    const std::size_t before = contents.entries.size() + contents.plainKeys.size();
    for (const QByteArray &der : certificatesInPem(bytes)) {
        if (Certificate certificate = certificateFrom(der))
            contents.entries.push_back({std::move(certificate), path});
    }
    if (bytes.contains("PRIVATE KEY-----"))
        addKeys(bytes, contents);
    return contents.entries.size() + contents.plainKeys.size() > before;
}

void addFiles(KeychainContents &contents)
{
    const QStringList filters{u"*.pem"_s, u"*.crt"_s, u"*.key"_s};
    const auto files = QDir(contents.folder).entryList(filters, QDir::Files, QDir::Name);
    for (const QString &name : files) {
        QFile file(contents.folder + u'/' + name);
        if (!file.open(QIODevice::ReadOnly))
            contents.warnings.append(file.fileName() + u": "_s + file.errorString());
        else if (!addFile(file.readAll(), file.fileName(), contents))
            contents.warnings.append(file.fileName() + u": no certificate and no key that can be read"_s);
    }
}

EVP_PKEY *plainKeyOf(const KeychainContents &contents, X509 *certificate)
{
    EVP_PKEY *found = nullptr;
    for (const Key &key : contents.plainKeys) {
        if (X509_check_private_key(certificate, key.get()) == 1)
            found = key.get();
    }
    ERR_clear_error();
    return found;
}

Result<SharedKey> vaultKey(const QString &folder, const QString &id)
{
    const auto secrets = Vault(folder).read();
    if (!secrets)
        return secrets.failure();
    SharedKey key(keyFrom(secrets->keys.value(id)));
    return key ? Result<SharedKey>(key) : Error{u"the private key cannot be read"_s};
}

} // namespace

bool KeychainContents::hasKeyOf(X509 *certificate) const
{
    const QString id = publicKeyId(certificate);
    return vaultKeys.contains(id) || tokenKeys.contains(id) || plainKeyOf(*this, certificate);
}

Result<SharedKey> KeychainContents::openKeyOf(X509 *certificate) const
{
    const QString id = publicKeyId(certificate);
    if (vaultKeys.contains(id))
        return vaultKey(folder, id);
    if (tokenKeys.contains(id))
        return openTokenKey(tokenKeys.value(id), Vault(folder));
    EVP_PKEY *plain = plainKeyOf(*this, certificate);
    if (!plain)
        return Error{u"the private key is not in the keychain"_s};
    EVP_PKEY_up_ref(plain);
    return SharedKey(Key(plain));
}

QList<QByteArray> KeychainContents::certificates() const
{
    QList<QByteArray> list;
    for (const Entry &entry : entries)
        list.append(derOf(entry.certificate.get()));
    return list;
}

KeychainContents readKeychain(const QString &folder)
{
    KeychainContents contents;
    contents.folder = folder;
    addFiles(contents);
    const auto ids = Vault(folder).keyIds();
    if (ids)
        contents.vaultKeys = *ids;
    else
        contents.warnings.append(ids.error());
    contents.tokenKeys = readTokenKeys(folder);
    return contents;
}

} // namespace toolchain
