#include "formats/keychaincontents.h"

#include <QDir>
#include <QFile>

#include <openssl/err.h>
#include <openssl/pem.h>

using namespace Qt::StringLiterals;

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

/// A certificate and the key that follows it in a file come as one piece.
bool takePiece(X509_INFO *piece, KeychainContents &contents)
{
    const bool hasCertificate = piece->x509 != nullptr;
    const bool hasKey = piece->x_pkey && piece->x_pkey->dec_pkey;
    if (hasCertificate)
        contents.certificates.emplace_back(std::exchange(piece->x509, nullptr));
    if (hasKey)
        contents.keys.emplace_back(std::exchange(piece->x_pkey->dec_pkey, nullptr));
    return hasCertificate || hasKey;
}

/// Adds what a PEM file holds; false if that is nothing that can be used.
bool addFile(const QByteArray &bytes, KeychainContents &contents)
{
    const MemoryFile memory(BIO_new_mem_buf(bytes.constData(), static_cast<int>(bytes.size())));
    const std::unique_ptr<STACK_OF(X509_INFO), Freed<freeInfoStack>> stack(
        PEM_X509_INFO_read_bio(memory.get(), nullptr, refusePassphrase, nullptr));
    bool isUseful = false;
    for (int index = 0; stack && index < sk_X509_INFO_num(stack.get()); ++index)
        isUseful |= takePiece(sk_X509_INFO_value(stack.get(), index), contents);
    ERR_clear_error();
    return isUseful;
}

} // namespace

EVP_PKEY *KeychainContents::keyOf(X509 *certificate) const
{
    EVP_PKEY *found = nullptr;
    for (const Key &key : keys) {
        if (X509_check_private_key(certificate, key.get()) == 1)
            found = key.get();
    }
    ERR_clear_error();
    return found;
}

KeychainContents readKeychain(const QString &folder)
{
    KeychainContents contents;
    const QStringList filters{u"*.pem"_s, u"*.crt"_s, u"*.key"_s};
    const auto files = QDir(folder).entryList(filters, QDir::Files, QDir::Name);
    for (const QString &name : files) {
        QFile file(folder + u'/' + name);
        if (!file.open(QIODevice::ReadOnly))
            contents.warnings.append(file.fileName() + u": "_s + file.errorString());
        else if (!addFile(file.readAll(), contents))
            contents.warnings.append(file.fileName() + u": no certificate and no key that can be read"_s);
    }
    return contents;
}

QString fingerprintOf(X509 *certificate)
{
    unsigned char digest[EVP_MAX_MD_SIZE] = {};
    unsigned int length = 0;
    X509_digest(certificate, EVP_sha1(), digest, &length);
    const QByteArray sha1(reinterpret_cast<char *>(digest), static_cast<int>(length));
    return QString::fromLatin1(sha1.toHex().toUpper());
}

} // namespace toolchain
