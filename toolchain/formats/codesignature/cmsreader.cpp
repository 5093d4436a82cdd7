#include "formats/codesignature/cmsreader.h"

#include <QTimeZone>

#include <openssl/err.h>
#include <openssl/pkcs7.h>

#include <algorithm>

#include "formats/codesignature/attributereader.h"
#include "formats/codesignature/berreader.h"
#include "formats/codesignature/cmsattributes.h"
#include "formats/codesignature/cmsform.h"

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain {

namespace {

using SignedData = std::unique_ptr<PKCS7, Freed<PKCS7_free>>;

/// A signature with a long chain and a time stamp has 20 KB.
constexpr qsizetype mostBytes = 1 << 20;

/// The signed attributes where they stand: libcrypto would hand them out sorted, and a signature may be over
/// another order. ContentInfo, [0], SignedData, SignerInfos, SignerInfo, [0].
QByteArray signedAttributesIn(const QByteArray &cms)
{
    const auto contentInfo = readBer(cms);
    const auto explicitContent = contentInfo ? readBerList(contentInfo->content) : std::nullopt;
    const auto signedData = explicitContent && explicitContent->size() == 2
        ? readBer(explicitContent->at(1).content)
        : std::nullopt;
    const auto fields = signedData ? readBerList(signedData->content) : std::nullopt;
    const auto signer = fields && !fields->isEmpty() ? readBer(fields->last().content) : std::nullopt;
    const auto parts = signer ? readBerList(signer->content) : std::nullopt;
    for (const BerValue &part : parts.value_or(QList<BerValue>())) {
        if (part.isContext(0))
            return QByteArray(1, '\x31') + part.whole.mid(1);
    }
    return {};
}

std::optional<QCryptographicHash::Algorithm> algorithmOf(const X509_ALGOR *identifier)
{
    const ASN1_OBJECT *object = nullptr;
    X509_ALGOR_get0(&object, nullptr, nullptr, identifier);
    switch (OBJ_obj2nid(object)) {
    case NID_sha1:
        return QCryptographicHash::Sha1;
    case NID_sha256:
        return QCryptographicHash::Sha256;
    case NID_sha384:
        return QCryptographicHash::Sha384;
    case NID_sha512:
        return QCryptographicHash::Sha512;
    default:
        return std::nullopt;
    }
}

PKCS7_SIGNER_INFO *onlySigner(PKCS7 *cms)
{
    STACK_OF(PKCS7_SIGNER_INFO) *signers =
        PKCS7_type_is_signed(cms) && cms->d.sign ? PKCS7_get_signer_info(cms) : nullptr;
    return signers && sk_PKCS7_SIGNER_INFO_num(signers) == 1 ? sk_PKCS7_SIGNER_INFO_value(signers, 0)
                                                             : nullptr;
}

/// The attributes' order in an array does not matter here, their bytes do: see `signedAttributesIn`.
Result<CmsSignature> withAttributes(CmsSignature signature, const PKCS7_SIGNER_INFO *signer)
{
    signature.timestampToken = attributes::sequence(signer->unauth_attr, attributes::timestampTokenOid);
    if (!signer->auth_attr)
        return signature;
    signature.messageDigest = attributes::octets(signer->auth_attr, attributes::messageDigestOid);
    signature.signingTime = attributes::time(signer->auth_attr, attributes::signingTimeOid);
    signature.directories = attributes::directoryDigests(signer->auth_attr);
    signature.codeHashes = attributes::codeHashes(signer->auth_attr);
    if (signature.messageDigest.isEmpty() || signature.signedBytes.isEmpty())
        return Error{u"the CMS signature has attributes without a digest of the content"_s};
    return signature;
}

bool keyMade(const CmsSignature &signature, const QByteArray &digest)
{
    const Certificate leaf = certificateFrom(signature.leaf);
    EVP_PKEY *key = leaf ? X509_get0_pubkey(leaf.get()) : nullptr;
    const std::unique_ptr<EVP_PKEY_CTX, Freed<EVP_PKEY_CTX_free>> operation(
        key ? EVP_PKEY_CTX_new(key, nullptr) : nullptr);
    const bool didIt = operation && EVP_PKEY_verify_init(operation.get()) == 1
        && EVP_PKEY_CTX_set_signature_md(operation.get(), digestFor(signature.algorithm)) == 1
        && EVP_PKEY_verify(operation.get(), bytesOf(signature.value),
                           static_cast<size_t>(signature.value.size()), bytesOf(digest),
                           static_cast<size_t>(digest.size()))
            == 1;
    ERR_clear_error();
    return didIt;
}

/// Each directory that the attribute speaks of must be the one that is there.
bool agrees(const QList<DirectoryDigest> &told, const DirectoryDigest &directory)
{
    for (const DirectoryDigest &digest : told) {
        const bool isSameKind = digestOfHashType(digest.hashType) == digestOfHashType(directory.hashType);
        if (isSameKind && digest.digest != directory.digest)
            return false;
    }
    return true;
}

/// A directory that the signature is over must not be missing: the others would stand for it.
bool areAllThere(const CmsSignature &signature, const QList<DirectoryDigest> &directories)
{
    const auto isThere = [&directories](const DirectoryDigest &told) {
        return std::any_of(directories.begin(), directories.end(), [&told](const DirectoryDigest &directory) {
            return digestOfHashType(told.hashType) == digestOfHashType(directory.hashType);
        });
    };
    return std::all_of(signature.directories.begin(), signature.directories.end(), isThere)
        && signature.codeHashes.size() <= directories.size();
}

QString objectionToDirectories(const CmsSignature &signature, const SignedContent &content)
{
    constexpr qsizetype codeHashSize = 20;
    const bool speaksOfThem = !signature.directories.isEmpty() || !signature.codeHashes.isEmpty();
    if (content.directories.size() > 1 && !speaksOfThem)
        return u"the signature is not over all code directories"_s;
    for (const DirectoryDigest &directory : content.directories) {
        const bool isListed = signature.codeHashes.isEmpty()
            || signature.codeHashes.contains(directory.digest.left(codeHashSize));
        if (!isListed || !agrees(signature.directories, directory))
            return u"the signature is over other code directories"_s;
    }
    const bool isOfCode = !content.directories.isEmpty();
    return isOfCode && !areAllThere(signature, content.directories)
        ? u"a code directory that the signature is over is missing"_s
        : QString();
}

} // namespace

Result<CmsSignature> readCms(const QByteArray &bytes)
{
    const auto outer = bytes.size() <= mostBytes ? readBer(bytes) : std::nullopt;
    if (!outer)
        return Error{u"the CMS signature is damaged"_s};
    const unsigned char *at = bytesOf(outer->whole);
    const SignedData cms(d2i_PKCS7(nullptr, &at, static_cast<long>(outer->whole.size())));
    PKCS7_SIGNER_INFO *signer = cms ? onlySigner(cms.get()) : nullptr;
    X509 *leaf = signer ? PKCS7_cert_from_signer_info(cms.get(), signer) : nullptr;
    const auto algorithm = signer ? algorithmOf(signer->digest_alg) : std::nullopt;
    ERR_clear_error();
    if (!leaf || !algorithm)
        return Error{u"the CMS signature is damaged, or lacks its signer's certificate"_s};
    const QByteArray value(reinterpret_cast<const char *>(ASN1_STRING_get0_data(signer->enc_digest)),
                           ASN1_STRING_length(signer->enc_digest));
    return withAttributes({derOf(leaf),
                           derOfAll(cms->d.sign->cert),
                           *algorithm,
                           {},
                           {},
                           {},
                           {},
                           signedAttributesIn(outer->whole),
                           value,
                           {},
                           objectionToForm(outer->whole, derOf(leaf), CmsContent::detached)},
                          signer);
}

QString objectionTo(const CmsSignature &signature, const SignedContent &content)
{
    if (!signature.formProblem.isEmpty())
        return signature.formProblem;
    const QByteArray digest = content.digest(signature.algorithm);
    const bool hasAttributes = !signature.signedBytes.isEmpty();
    if (hasAttributes && signature.messageDigest != digest)
        return u"the signature is over other content"_s;
    const QByteArray signedDigest =
        hasAttributes ? QCryptographicHash::hash(signature.signedBytes, signature.algorithm) : digest;
    if (!keyMade(signature, signedDigest))
        return u"the signature was not made with its certificate's key, or has been changed"_s;
    return objectionToDirectories(signature, content);
}

} // namespace toolchain
