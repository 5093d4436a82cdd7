#include "formats/cryptography.h"

#include <QCryptographicHash>

#include <openssl/crypto.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include <map>
#include <mutex>

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

using Object = std::unique_ptr<ASN1_OBJECT, Freed<ASN1_OBJECT_free>>;
using UsageList = std::unique_ptr<EXTENDED_KEY_USAGE, Freed<EXTENDED_KEY_USAGE_free>>;

QString idOf(const QByteArray &publicKeyInfo)
{
    return QString::fromLatin1(QCryptographicHash::hash(publicKeyInfo, QCryptographicHash::Sha1).toHex());
}

Certificate parse(const QByteArray &der)
{
    const unsigned char *at = bytesOf(der);
    Certificate certificate(d2i_X509(nullptr, &at, static_cast<long>(der.size())));
    ERR_clear_error();
    return at == bytesOf(der) + der.size() ? std::move(certificate) : nullptr;
}

/// The certificates that have been parsed lately. libcrypto decodes the public key each time, at the price of
/// a signature, and a tool comes back to the same few certificates again and again.
class ParsedCertificates {
public:
    /// libcrypto puts itself away at the end of the process, in the reverse order of beginnings: the
    /// certificates have to go before it, and so it has to begin before them. Asked for nothing, it would not
    /// begin.
    ParsedCertificates() { OPENSSL_init_crypto(OPENSSL_INIT_ADD_ALL_DIGESTS, nullptr); }

    Certificate of(const QByteArray &der)
    {
        const std::lock_guard lock(m_mutex);
        auto known = m_certificates.find(der);
        if (known == m_certificates.end()) {
            if (m_certificates.size() >= most)
                m_certificates.clear();
            known = m_certificates.emplace(QByteArray(der.constData(), der.size()), parse(der))
                        .first; // its own bytes
        }
        if (known->second)
            X509_up_ref(known->second.get());
        return Certificate(known->second.get());
    }

private:
    static constexpr std::size_t most = 64;
    std::mutex m_mutex;
    std::map<QByteArray, Certificate> m_certificates;
};

/// The form that `derOf` writes. libcrypto tries every form that it knows unless it is told.
Key keyInPkcs8(const QByteArray &der)
{
    const unsigned char *at = bytesOf(der);
    const std::unique_ptr<PKCS8_PRIV_KEY_INFO, Freed<PKCS8_PRIV_KEY_INFO_free>> info(
        d2i_PKCS8_PRIV_KEY_INFO(nullptr, &at, static_cast<long>(der.size())));
    return Key(info ? EVP_PKCS82PKEY(info.get()) : nullptr);
}

} // namespace

QString libraryError()
{
    char text[256] = {};
    ERR_error_string_n(ERR_get_error(), text, sizeof text);
    ERR_clear_error();
    return QString::fromLatin1(text);
}

MemoryFile memoryOver(const QByteArray &bytes)
{
    return MemoryFile(BIO_new_mem_buf(bytes.constData(), static_cast<int>(bytes.size())));
}

QByteArray writtenTo(BIO *memory)
{
    char *bytes = nullptr;
    const long length = BIO_get_mem_data(memory, &bytes);
    return {bytes, static_cast<qsizetype>(length)};
}

QByteArray derOf(X509 *certificate)
{
    return encoded<i2d_X509>(certificate);
}

QList<QByteArray> derOfAll(const STACK_OF(X509) * certificates)
{
    QList<QByteArray> list;
    for (int index = 0; certificates && index < sk_X509_num(certificates); ++index)
        list.append(derOf(sk_X509_value(certificates, index)));
    return list;
}

Certificate certificateFrom(const QByteArray &der)
{
    static ParsedCertificates parsed;
    return parsed.of(der);
}

QByteArray derOf(EVP_PKEY *key)
{
    const std::unique_ptr<PKCS8_PRIV_KEY_INFO, Freed<PKCS8_PRIV_KEY_INFO_free>> info(EVP_PKEY2PKCS8(key));
    ERR_clear_error();
    return encoded<i2d_PKCS8_PRIV_KEY_INFO>(info.get());
}

Key keyFrom(const QByteArray &der)
{
    Key key = keyInPkcs8(der);
    const unsigned char *at = bytesOf(der);
    if (!key)
        key.reset(d2i_AutoPrivateKey(nullptr, &at, static_cast<long>(der.size())));
    ERR_clear_error();
    return key;
}

QString entryOf(X509_NAME *name, int nid)
{
    const int at = X509_NAME_get_index_by_NID(name, nid, -1);
    if (at < 0)
        return {};
    unsigned char *text = nullptr;
    const int length = ASN1_STRING_to_UTF8(&text, X509_NAME_ENTRY_get_data(X509_NAME_get_entry(name, at)));
    const QString entry =
        length < 0 ? QString() : QString::fromUtf8(reinterpret_cast<const char *>(text), length);
    OPENSSL_free(text);
    ERR_clear_error();
    return entry;
}

QString subjectEntryOf(X509 *certificate, int nid)
{
    return entryOf(X509_get_subject_name(certificate), nid);
}

bool hasExtension(X509 *certificate, const char *oid)
{
    const Object wanted(OBJ_txt2obj(oid, 1));
    return X509_get_ext_by_OBJ(certificate, wanted.get(), -1) >= 0;
}

bool hasUsage(X509 *certificate, const char *oid)
{
    const UsageList usages(static_cast<EXTENDED_KEY_USAGE *>(
        X509_get_ext_d2i(certificate, NID_ext_key_usage, nullptr, nullptr)));
    const Object wanted(OBJ_txt2obj(oid, 1));
    for (int index = 0; usages && index < sk_ASN1_OBJECT_num(usages.get()); ++index) {
        if (OBJ_cmp(sk_ASN1_OBJECT_value(usages.get(), index), wanted.get()) == 0)
            return true;
    }
    return false;
}

QString fingerprintOf(X509 *certificate)
{
    unsigned char digest[EVP_MAX_MD_SIZE] = {};
    unsigned int length = 0;
    X509_digest(certificate, EVP_sha1(), digest, &length);
    const QByteArray sha1(reinterpret_cast<char *>(digest), static_cast<qsizetype>(length));
    return QString::fromLatin1(sha1.toHex().toUpper());
}

QString publicKeyId(EVP_PKEY *key)
{
    return idOf(encoded<i2d_PUBKEY>(key));
}

QString publicKeyId(X509 *certificate)
{
    return idOf(encoded<i2d_X509_PUBKEY>(X509_get_X509_PUBKEY(certificate)));
}

QByteArray randomBytes(qsizetype count)
{
    QByteArray bytes(count, Qt::Uninitialized);
    if (RAND_bytes(reinterpret_cast<unsigned char *>(bytes.data()), static_cast<int>(count)) != 1)
        qFatal("no random numbers are to be had");
    return bytes;
}

} // namespace toolchain
