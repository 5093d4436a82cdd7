#include "formats/codesignature/timestamptoken.h"

#include <openssl/err.h>
#include <openssl/ess.h>
#include <openssl/pkcs7.h>
#include <openssl/ts.h>

#include "formats/codesignature/asn1time.h"
#include "formats/codesignature/attributereader.h"
#include "formats/codesignature/berreader.h"
#include "formats/codesignature/cmsform.h"
#include "formats/codesignature/cmsreader.h"
#include "formats/cryptography.h"

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain {

namespace {

using SignedData = std::unique_ptr<PKCS7, Freed<PKCS7_free>>;
using TokenInfo = std::unique_ptr<TS_TST_INFO, Freed<TS_TST_INFO_free>>;

constexpr qsizetype mostBytes = 1 << 18;
constexpr const char *signingCertificateOid = "1.2.840.113549.1.9.16.2.12";
constexpr const char *signingCertificateV2Oid = "1.2.840.113549.1.9.16.2.47";

void freeStack(STACK_OF(X509) * stack)
{
    sk_X509_free(stack);
}
/// The certificates in it belong to somebody else.
using BorrowedStack = std::unique_ptr<STACK_OF(X509), Freed<freeStack>>;

QByteArray numberIn(const ASN1_INTEGER *number)
{
    const std::unique_ptr<BIGNUM, Freed<BN_free>> big(number ? ASN1_INTEGER_to_BN(number, nullptr) : nullptr);
    if (!big)
        return {};
    QByteArray bytes(BN_num_bytes(big.get()), '\0');
    BN_bn2bin(big.get(), reinterpret_cast<unsigned char *>(bytes.data()));
    return bytes;
}

/// Whether the token is over the digest of these bytes.
bool isOver(TS_TST_INFO *info, const QByteArray &stamped)
{
    TS_MSG_IMPRINT *imprint = TS_TST_INFO_get_msg_imprint(info);
    const ASN1_OBJECT *object = nullptr;
    X509_ALGOR_get0(&object, nullptr, nullptr, TS_MSG_IMPRINT_get_algo(imprint));
    const EVP_MD *algorithm = EVP_get_digestbyobj(object);
    const ASN1_OCTET_STRING *told = TS_MSG_IMPRINT_get_msg(imprint);
    unsigned char digest[EVP_MAX_MD_SIZE] = {};
    unsigned int length = 0;
    return algorithm
        && EVP_Digest(bytesOf(stamped), static_cast<size_t>(stamped.size()), digest, &length, algorithm,
                      nullptr)
        == 1
        && ASN1_STRING_length(told) == static_cast<int>(length)
        && CRYPTO_memcmp(ASN1_STRING_get0_data(told), digest, length) == 0;
}

template <typename T, auto d2i>
T *decoded(const QByteArray &der)
{
    const unsigned char *at = bytesOf(der);
    return der.isEmpty() ? nullptr : d2i(nullptr, &at, static_cast<long>(der.size()));
}

/// The attribute names the signer's certificate, so that nobody can put another with the same key in its
/// place.
bool namesItsSigner(PKCS7 *token, X509 *signer)
{
    const PKCS7_SIGNER_INFO *info = sk_PKCS7_SIGNER_INFO_value(PKCS7_get_signer_info(token), 0);
    const std::unique_ptr<ESS_SIGNING_CERT, Freed<ESS_SIGNING_CERT_free>> first(
        decoded<ESS_SIGNING_CERT, d2i_ESS_SIGNING_CERT>(
            attributes::sequence(info->auth_attr, signingCertificateOid)));
    const std::unique_ptr<ESS_SIGNING_CERT_V2, Freed<ESS_SIGNING_CERT_V2_free>> second(
        decoded<ESS_SIGNING_CERT_V2, d2i_ESS_SIGNING_CERT_V2>(
            attributes::sequence(info->auth_attr, signingCertificateV2Oid)));
    const BorrowedStack chain(sk_X509_new_null());
    sk_X509_push(chain.get(), signer);
    for (int index = 0; index < sk_X509_num(token->d.sign->cert); ++index) {
        if (X509 *other = sk_X509_value(token->d.sign->cert, index); X509_cmp(other, signer) != 0)
            sk_X509_push(chain.get(), other);
    }
    const bool isNamed = OSSL_ESS_check_signing_certs(first.get(), second.get(), chain.get(), 1) == 1;
    ERR_clear_error();
    return isNamed;
}

/// Whether the signature is over the token's attributes as they stand; libcrypto digests what it has made of
/// them.
bool isOverWhatStandsThere(const QByteArray &bytes, const PKCS7 *token)
{
    const ASN1_TYPE *content = token->d.sign->contents->d.other;
    auto signature = readCms(bytes);
    if (!signature || !content || content->type != V_ASN1_OCTET_STRING)
        return false;
    signature->formProblem.clear(); // it is told for a detached signature
    const QByteArray stamped(
        reinterpret_cast<const char *>(ASN1_STRING_get0_data(content->value.octet_string)),
        ASN1_STRING_length(content->value.octet_string));
    const auto digest = [&stamped](QCryptographicHash::Algorithm algorithm) {
        return QCryptographicHash::hash(stamped, algorithm);
    };
    return objectionTo(*signature, {digest, {}}).isEmpty();
}

bool hasOneSigner(PKCS7 *token)
{
    return PKCS7_type_is_signed(token) && token->d.sign && token->d.sign->cert
        && sk_PKCS7_SIGNER_INFO_num(PKCS7_get_signer_info(token)) == 1;
}

/// The signer's certificate if its key signed the token's content; stays the token's own.
X509 *verifiedSigner(PKCS7 *token)
{
    X509 *signer =
        PKCS7_cert_from_signer_info(token, sk_PKCS7_SIGNER_INFO_value(PKCS7_get_signer_info(token), 0));
    const bool isSigned = signer
        && PKCS7_verify(token, nullptr, nullptr, nullptr, nullptr, PKCS7_NOVERIFY) == 1
        && namesItsSigner(token, signer);
    ERR_clear_error();
    return isSigned ? signer : nullptr;
}

QList<QByteArray> certificatesOf(const PKCS7 *token)
{
    QList<QByteArray> list;
    for (int index = 0; index < sk_X509_num(token->d.sign->cert); ++index)
        list.append(derOf(sk_X509_value(token->d.sign->cert, index)));
    return list;
}

Result<VerifiedTimestamp> trusted(const QByteArray &bytes, PKCS7 *token, TS_TST_INFO *info,
                                  const TrustStore &store)
{
    X509 *signer = verifiedSigner(token);
    if (!signer || !isOverWhatStandsThere(bytes, token))
        return Error{u"the time stamp's own signature does not verify"_s};
    const QString formProblem = objectionToForm(bytes, derOf(signer), CmsContent::timeStamp);
    if (!formProblem.isEmpty())
        return Error{u"the time stamp is damaged: "_s + formProblem};
    const QDateTime time = momentOf(TS_TST_INFO_get_time(info));
    if (!time.isValid())
        return Error{u"the time stamp tells no time"_s};
    const Trust trust =
        trustOf(derOf(signer), certificatesOf(token), TrustPurpose::timestamping, time, store);
    if (!trust.isGood())
        return Error{u"the time stamp's signer is not accepted: "_s + trust.text()};
    if (!bringsItsChain(certificatesOf(token), trust))
        return Error{u"the time stamp's certificates have been changed"_s};
    return VerifiedTimestamp{time, trust.anchor, numberIn(TS_TST_INFO_get_nonce(info)),
                             numberIn(TS_TST_INFO_get_serial(info))};
}

} // namespace

Result<VerifiedTimestamp> checkTimestamp(const QByteArray &token, const QByteArray &stamped,
                                         const TrustStore &store)
{
    const auto outer = token.size() <= mostBytes ? readBer(token) : std::nullopt;
    const SignedData cms(outer ? decoded<PKCS7, d2i_PKCS7>(outer->whole) : nullptr);
    const TokenInfo info(cms && hasOneSigner(cms.get()) ? PKCS7_to_TS_TST_INFO(cms.get()) : nullptr);
    ERR_clear_error();
    if (!info)
        return Error{u"the time stamp is damaged"_s};
    if (!isOver(info.get(), stamped))
        return Error{u"the time stamp is of something else"_s};
    return trusted(outer->whole, cms.get(), info.get(), store);
}

} // namespace toolchain
