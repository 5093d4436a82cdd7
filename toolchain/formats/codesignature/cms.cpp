#include "formats/codesignature/cms.h"

#include <openssl/asn1t.h>
#include <openssl/err.h>
#include <openssl/pkcs7.h>
#include <openssl/rsa.h>

#include <algorithm>

#include "formats/codesignature/cmsattributes.h"

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Outcome;
using platform::Result;

namespace toolchain {

namespace {

using SignedData = std::unique_ptr<PKCS7, Freed<PKCS7_free>>;
using Operation = std::unique_ptr<EVP_PKEY_CTX, Freed<EVP_PKEY_CTX_free>>;

void freeAttributes(STACK_OF(X509_ATTRIBUTE) * stack)
{
    sk_X509_ATTRIBUTE_pop_free(stack, X509_ATTRIBUTE_free);
}
using Attributes = std::unique_ptr<STACK_OF(X509_ATTRIBUTE), Freed<freeAttributes>>;

constexpr const char *timestampTokenOid = "1.2.840.113549.1.9.16.2.14";

Attributes attributesFrom(const QList<QByteArray> &encodings)
{
    Attributes attributes(sk_X509_ATTRIBUTE_new_null());
    for (const QByteArray &encoding : encodings) {
        const unsigned char *at = bytesOf(encoding);
        sk_X509_ATTRIBUTE_push(attributes.get(), d2i_X509_ATTRIBUTE(nullptr, &at, encoding.size()));
    }
    return attributes;
}

/// Certificates stand in the order of a DER SET OF, which libcrypto would leave as they come.
bool addCertificates(PKCS7 *cms, QList<QByteArray> chain)
{
    std::sort(chain.begin(), chain.end());
    return std::all_of(chain.begin(), chain.end(), [cms](const QByteArray &der) {
        const Certificate certificate = certificateFrom(der);
        return certificate && PKCS7_add_certificate(cms, certificate.get()) == 1;
    });
}

/// codesign names the signature's algorithm together with its digest, libcrypto names RSA alone.
void nameAlgorithm(PKCS7_SIGNER_INFO *signer, EVP_PKEY *key, const EVP_MD *digest)
{
    int combined = NID_undef;
    X509_ALGOR *algorithm = nullptr;
    PKCS7_SIGNER_INFO_get0_algs(signer, nullptr, nullptr, &algorithm);
    if (EVP_PKEY_get_base_id(key) == EVP_PKEY_RSA
        && OBJ_find_sigid_by_algs(&combined, EVP_MD_get_type(digest), NID_rsaEncryption) == 1)
        X509_ALGOR_set0(algorithm, OBJ_nid2obj(combined), V_ASN1_NULL, nullptr);
}

Outcome addTimestamp(PKCS7_SIGNER_INFO *signer, const Stamper &stamper)
{
    if (!stamper)
        return Outcome::success();
    const auto token = stamper({reinterpret_cast<const char *>(ASN1_STRING_get0_data(signer->enc_digest)),
                                ASN1_STRING_length(signer->enc_digest)});
    if (!token)
        return token.failure();
    const Attributes attributes = attributesFrom({attributeOf(timestampTokenOid, {*token})});
    if (PKCS7_set_attributes(signer, attributes.get()) != 1)
        return Error{u"the time stamp cannot be added: "_s + libraryError()};
    return Outcome::success();
}

QByteArray encodedIndefinitely(PKCS7 *cms)
{
    unsigned char *bytes = nullptr;
    const int length =
        ASN1_item_ndef_i2d(reinterpret_cast<const ASN1_VALUE *>(cms), &bytes, ASN1_ITEM_rptr(PKCS7));
    const QByteArray encoding(reinterpret_cast<const char *>(bytes), std::max(length, 0));
    OPENSSL_free(bytes);
    return encoding;
}

Result<QByteArray> makeCms(const SigningIdentity &identity, const QList<QByteArray> &signedAttributes,
                           const EVP_MD *digest, const Stamper &stamper)
{
    const Certificate leaf = certificateFrom(identity.chain.value(0));
    const SignedData cms(PKCS7_new());
    const bool isBegun = leaf && identity.key && PKCS7_set_type(cms.get(), NID_pkcs7_signed) == 1
        && PKCS7_content_new(cms.get(), NID_pkcs7_data) == 1 && PKCS7_set_detached(cms.get(), 1) == 1;
    PKCS7_SIGNER_INFO *signer =
        isBegun ? PKCS7_add_signature(cms.get(), leaf.get(), identity.key.get(), digest) : nullptr;
    const Attributes attributes = attributesFrom(signedAttributes);
    if (!signer || PKCS7_set_signed_attributes(signer, attributes.get()) != 1)
        return Error{u"the key cannot sign: "_s + libraryError()};
    nameAlgorithm(signer, identity.key.get(), digest);
    if (!addCertificates(cms.get(), identity.chain) || PKCS7_SIGNER_INFO_sign(signer) != 1)
        return Error{u"the key did not sign: "_s + libraryError()};
    const auto stamped = addTimestamp(signer, stamper);
    return stamped ? Result<QByteArray>(encodedIndefinitely(cms.get())) : stamped.failure();
}

Operation operationWith(EVP_PKEY *key)
{
    return Operation(key && EVP_PKEY_get_base_id(key) == EVP_PKEY_RSA ? EVP_PKEY_CTX_new(key, nullptr)
                                                                      : nullptr);
}

bool choosePkcs1(EVP_PKEY_CTX *operation, const EVP_MD *digest)
{
    return EVP_PKEY_CTX_set_rsa_padding(operation, RSA_PKCS1_PADDING) == 1
        && EVP_PKEY_CTX_set_signature_md(operation, digest) == 1;
}

bool isOf(const QByteArray &value, const QByteArray &digest, EVP_PKEY *key, const EVP_MD *algorithm)
{
    const Operation operation = operationWith(key);
    const bool fits = operation && EVP_PKEY_verify_init(operation.get()) == 1
        && choosePkcs1(operation.get(), algorithm)
        && EVP_PKEY_verify(operation.get(), bytesOf(value), static_cast<size_t>(value.size()),
                           bytesOf(digest), static_cast<size_t>(digest.size()))
            == 1;
    ERR_clear_error();
    return fits;
}

} // namespace

Result<QByteArray> makeCodeCms(const SigningIdentity &identity, const CodeCmsOrder &order,
                               const Stamper &stamper)
{
    return makeCms(identity, codeAttributes(order), EVP_sha256(), stamper);
}

Result<QByteArray> makePackageCms(const SigningIdentity &identity, const QByteArray &checksum,
                                  QCryptographicHash::Algorithm algorithm, const Stamper &stamper)
{
    const QByteArray digest = QCryptographicHash::hash(checksum, algorithm);
    return makeCms(identity, plainAttributes(digest, {}), digestFor(algorithm), stamper);
}

Result<QByteArray> makePackageSignature(const SigningIdentity &identity, const QByteArray &checksum,
                                        QCryptographicHash::Algorithm algorithm)
{
    const Operation operation = operationWith(identity.key.get());
    if (!operation)
        return Error{u"a package is signed with an RSA key"_s};
    auto length = static_cast<size_t>(EVP_PKEY_get_size(identity.key.get()));
    QByteArray value(static_cast<qsizetype>(length), '\0');
    const bool isSigned = EVP_PKEY_sign_init(operation.get()) == 1
        && choosePkcs1(operation.get(), digestFor(algorithm))
        && EVP_PKEY_sign(operation.get(), reinterpret_cast<unsigned char *>(value.data()), &length,
                         bytesOf(checksum), static_cast<size_t>(checksum.size()))
            == 1;
    if (!isSigned)
        return Error{u"the key did not sign: "_s + libraryError()};
    return value.left(static_cast<qsizetype>(length));
}

bool packageSignatureFits(const QByteArray &value, const QByteArray &certificate, const QByteArray &checksum,
                          QCryptographicHash::Algorithm algorithm)
{
    const Certificate leaf = certificateFrom(certificate);
    EVP_PKEY *key = leaf ? X509_get0_pubkey(leaf.get()) : nullptr;
    const EVP_MD *digest = digestFor(algorithm);
    return isOf(value, checksum, key, digest)
        || isOf(value, QCryptographicHash::hash(checksum, algorithm), key, digest);
}

} // namespace toolchain
