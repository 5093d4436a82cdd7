#include "formats/digestsignature.h"

#include "formats/keychaincontents.h"

#include <openssl/err.h>
#include <openssl/rsa.h>

namespace toolchain {

namespace {

using Operation = std::unique_ptr<EVP_PKEY_CTX, Freed<EVP_PKEY_CTX_free>>;

/// Sets an operation up that has been begun; false if the key cannot be used so.
bool chooseScheme(EVP_PKEY_CTX *operation, EVP_PKEY *key, QCryptographicHash::Algorithm algorithm)
{
    const EVP_MD *digest = algorithm == QCryptographicHash::Sha1 ? EVP_sha1() : EVP_sha256();
    return (EVP_PKEY_get_base_id(key) != EVP_PKEY_RSA
            || EVP_PKEY_CTX_set_rsa_padding(operation, RSA_PKCS1_PADDING) == 1)
        && EVP_PKEY_CTX_set_signature_md(operation, digest) == 1;
}

} // namespace

struct DigestSigner::Parts {
    QByteArray certificate;
    SharedKey key;
};

DigestSigner::DigestSigner(const QString &folder, const QString &certificateSha1)
    : m_parts(std::make_unique<Parts>())
{
    const KeychainContents contents = readKeychain(folder);
    for (const auto &entry : contents.entries) {
        X509 *certificate = entry.certificate.get();
        if (fingerprintOf(certificate).compare(certificateSha1, Qt::CaseInsensitive) != 0)
            continue;
        const auto key = contents.openKeyOf(certificate);
        if (key)
            *m_parts = {derOf(certificate), *key};
    }
}

DigestSigner::~DigestSigner() = default;

QByteArray DigestSigner::certificate() const
{
    return m_parts->certificate;
}

qsizetype DigestSigner::signatureSize() const
{
    return m_parts->key ? EVP_PKEY_get_size(m_parts->key.get()) : 0;
}

DigestSignature DigestSigner::sign(const QByteArray &digest, QCryptographicHash::Algorithm algorithm) const
{
    DigestSignature signature{certificate(), QByteArray(signatureSize(), '\0')};
    auto length = std::size_t(signature.bytes.size());
    const Operation operation(m_parts->key ? EVP_PKEY_CTX_new(m_parts->key.get(), nullptr) : nullptr);
    const bool isSigned = operation && EVP_PKEY_sign_init(operation.get()) == 1
        && chooseScheme(operation.get(), m_parts->key.get(), algorithm)
        && EVP_PKEY_sign(operation.get(), reinterpret_cast<unsigned char *>(signature.bytes.data()), &length,
                         bytesOf(digest), std::size_t(digest.size()))
            == 1;
    signature.bytes.truncate(isSigned ? qsizetype(length) : 0);
    ERR_clear_error();
    return signature;
}

bool DigestSignature::fits(const QByteArray &digest, QCryptographicHash::Algorithm algorithm) const
{
    const Certificate x509 = certificateFrom(certificate);
    EVP_PKEY *key = x509 ? X509_get0_pubkey(x509.get()) : nullptr;
    const Operation operation(key ? EVP_PKEY_CTX_new(key, nullptr) : nullptr);
    const bool does = operation && EVP_PKEY_verify_init(operation.get()) == 1
        && chooseScheme(operation.get(), key, algorithm)
        && EVP_PKEY_verify(operation.get(), bytesOf(bytes), std::size_t(bytes.size()), bytesOf(digest),
                           std::size_t(digest.size()))
            == 1;
    ERR_clear_error();
    return does;
}

} // namespace toolchain
