#include "formats/identities.h"

#include <QDir>
#include <QFile>
#include <QUrl>

#include <openssl/ec.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include <sys/stat.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "formats/statefolder.h"
#include "support/wholefile.h"

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

template <auto freeFunction>
struct Freed {
    template <typename T>
    void operator()(T *object) const
    {
        freeFunction(object);
    }
};

using Certificate = std::unique_ptr<X509, Freed<X509_free>>;
using Key = std::unique_ptr<EVP_PKEY, Freed<EVP_PKEY_free>>;
using MemoryFile = std::unique_ptr<BIO, Freed<BIO_free_all>>;
using Extension = std::unique_ptr<X509_EXTENSION, Freed<X509_EXTENSION_free>>;

/// Apple's extended key usage for a certificate that signs installer packages.
constexpr const char *packageSigningUsage = "1.2.840.113635.100.4.13";
constexpr long tenYearsInSeconds = 10L * 365 * 24 * 60 * 60;

struct KeychainContents {
    std::vector<Certificate> certificates;
    std::vector<Key> keys;
};

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

QString commonNameOf(X509 *certificate)
{
    X509_NAME *subject = X509_get_subject_name(certificate);
    const int at = X509_NAME_get_index_by_NID(subject, NID_commonName, -1);
    if (at < 0)
        return {};
    unsigned char *text = nullptr;
    const int length = ASN1_STRING_to_UTF8(&text, X509_NAME_ENTRY_get_data(X509_NAME_get_entry(subject, at)));
    const QString name = length < 0 ? QString() : QString::fromUtf8(reinterpret_cast<char *>(text), length);
    OPENSSL_free(text);
    return name;
}

bool isValidNow(X509 *certificate)
{
    return X509_cmp_current_time(X509_get0_notBefore(certificate)) < 0
        && X509_cmp_current_time(X509_get0_notAfter(certificate)) > 0;
}

Identity identityFrom(X509 *certificate)
{
    unsigned char digest[EVP_MAX_MD_SIZE] = {};
    unsigned int length = 0;
    X509_digest(certificate, EVP_sha1(), digest, &length);
    const QByteArray sha1(reinterpret_cast<char *>(digest), static_cast<int>(length));
    return {commonNameOf(certificate), QString::fromLatin1(sha1.toHex().toUpper()), isValidNow(certificate),
            (X509_get_extended_key_usage(certificate) & XKU_CODE_SIGN) != 0};
}

bool hasKey(X509 *certificate, const KeychainContents &contents)
{
    const bool found = std::any_of(contents.keys.begin(), contents.keys.end(), [certificate](const Key &key) {
        return X509_check_private_key(certificate, key.get()) == 1;
    });
    ERR_clear_error();
    return found;
}

bool addExtension(X509 *certificate, int nid, const char *value)
{
    const Extension extension(X509V3_EXT_conf_nid(nullptr, nullptr, nid, value));
    return extension && X509_add_ext(certificate, extension.get(), -1) == 1;
}

bool addName(X509_NAME *name, const char *field, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    return X509_NAME_add_entry_by_txt(name, field, MBSTRING_UTF8,
                                      reinterpret_cast<const unsigned char *>(bytes.constData()),
                                      static_cast<int>(bytes.size()), -1, 0)
        == 1;
}

bool setSerialNumber(X509 *certificate)
{
    std::uint64_t number = 0;
    if (RAND_bytes(reinterpret_cast<unsigned char *>(&number), sizeof number) != 1)
        return false;
    return ASN1_INTEGER_set_uint64(X509_get_serialNumber(certificate), number >> 1) == 1;
}

Certificate selfSignedCertificate(EVP_PKEY *key, const QString &commonName, IdentityKind kind)
{
    Certificate certificate(X509_new());
    X509 *x509 = certificate.get();
    X509_NAME *subject = X509_get_subject_name(x509);
    const QString notice = u"Self-signed for trying out Sealwright"_s;
    const char *usage = kind == IdentityKind::Application ? "critical,codeSigning" : packageSigningUsage;
    const bool isWhole = X509_set_version(x509, X509_VERSION_3) == 1 && setSerialNumber(x509)
        && X509_gmtime_adj(X509_getm_notBefore(x509), 0)
        && X509_gmtime_adj(X509_getm_notAfter(x509), tenYearsInSeconds) && addName(subject, "CN", commonName)
        && addName(subject, "OU", notice) && addName(subject, "O", notice)
        && X509_set_issuer_name(x509, subject) == 1 && X509_set_pubkey(x509, key) == 1
        && addExtension(x509, NID_basic_constraints, "critical,CA:FALSE")
        && addExtension(x509, NID_key_usage, "critical,digitalSignature")
        && addExtension(x509, NID_ext_key_usage, usage) && X509_sign(x509, key, EVP_sha256()) > 0;
    return isWhole ? std::move(certificate) : nullptr;
}

QByteArray pemOf(EVP_PKEY *key, X509 *certificate)
{
    const MemoryFile memory(BIO_new(BIO_s_mem()));
    if (PEM_write_bio_X509(memory.get(), certificate) != 1
        || PEM_write_bio_PrivateKey(memory.get(), key, nullptr, nullptr, 0, nullptr, nullptr) != 1)
        return {};
    char *bytes = nullptr;
    const long length = BIO_get_mem_data(memory.get(), &bytes);
    return {bytes, static_cast<int>(length)};
}

QString libraryError()
{
    char text[256] = {};
    ERR_error_string_n(ERR_get_error(), text, sizeof text);
    ERR_clear_error();
    return QString::fromLatin1(text);
}

QString storeIdentity(const QString &path, const QByteArray &pem)
{
    const mode_t mask = umask(077);
    const std::string error = writeWholeFile(path.toStdString(), {pem.constData(), std::size_t(pem.size())});
    umask(mask);
    return QString::fromStdString(error);
}

} // namespace

IdentityList readIdentities(const QString &folder)
{
    IdentityList list;
    KeychainContents contents;
    const QStringList filters{u"*.pem"_s, u"*.crt"_s, u"*.key"_s};
    const auto files = QDir(folder).entryList(filters, QDir::Files, QDir::Name);
    for (const QString &name : files) {
        QFile file(folder + u'/' + name);
        if (!file.open(QIODevice::ReadOnly))
            list.warnings.append(file.fileName() + u": "_s + file.errorString());
        else if (!addFile(file.readAll(), contents))
            list.warnings.append(file.fileName() + u": no certificate and no key that can be read"_s);
    }
    for (const Certificate &certificate : contents.certificates) {
        if (hasKey(certificate.get(), contents))
            list.identities.append(identityFrom(certificate.get()));
    }
    return list;
}

QString identityCommonName(const QString &name, IdentityKind kind)
{
    return (kind == IdentityKind::Application ? u"Developer ID Application: "_s
                                              : u"Developer ID Installer: "_s)
        + name;
}

NewIdentity makeIdentity(const QString &folder, const QString &name, IdentityKind kind)
{
    const QString commonName = identityCommonName(name, kind);
    const Key key(EVP_EC_gen("P-256"));
    const Certificate certificate = key ? selfSignedCertificate(key.get(), commonName, kind) : nullptr;
    if (!certificate)
        return {{}, libraryError()};
    const QString fileName = QString::fromLatin1(QUrl::toPercentEncoding(commonName, " (),:")) + u".pem"_s;
    const QString path = folder + u'/' + fileName;
    const QString problem = storeIdentity(path, pemOf(key.get(), certificate.get()));
    return problem.isEmpty() ? NewIdentity{path, {}} : NewIdentity{{}, problem};
}

} // namespace toolchain
