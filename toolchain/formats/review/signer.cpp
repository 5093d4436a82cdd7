#include "formats/review/signer.h"

#include <openssl/cms.h>
#include <openssl/ts.h>
#include <openssl/x509.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace toolchain::review {

namespace {

template <auto Free>
struct Freed {
    template <typename T>
    void operator()(T *object) const
    {
        Free(object);
    }
};

using Cms = std::unique_ptr<CMS_ContentInfo, Freed<CMS_ContentInfo_free>>;
using Time = std::unique_ptr<TS_TST_INFO, Freed<TS_TST_INFO_free>>;
using Token = std::unique_ptr<PKCS7, Freed<PKCS7_free>>;

struct FreedCertificates {
    void operator()(STACK_OF(X509) * certificates) const { sk_X509_pop_free(certificates, X509_free); }
};
using Certificates = std::unique_ptr<STACK_OF(X509), FreedCertificates>;

QString commonName(X509 *certificate)
{
    char name[256] = {};
    X509_NAME_get_text_by_NID(X509_get_subject_name(certificate), NID_commonName, name, sizeof name);
    return QString::fromUtf8(name);
}

bool hasExtension(X509 *certificate, const char *oid)
{
    const std::unique_ptr<ASN1_OBJECT, Freed<ASN1_OBJECT_free>> object(OBJ_txt2obj(oid, 1));
    return X509_get_ext_by_OBJ(certificate, object.get(), -1) >= 0;
}

X509 *issuerOf(X509 *certificate, STACK_OF(X509) * others)
{
    for (int i = 0; i < sk_X509_num(others); ++i) {
        X509 *other = sk_X509_value(others, i);
        if (other != certificate && X509_check_issued(other, certificate) == X509_V_OK)
            return other;
    }
    return nullptr;
}

X509 *leafOf(CMS_SignerInfo *signer, STACK_OF(X509) * certificates)
{
    for (int i = 0; i < sk_X509_num(certificates); ++i) {
        if (CMS_SignerInfo_cert_cmp(signer, sk_X509_value(certificates, i)) == 0)
            return sk_X509_value(certificates, i);
    }
    return nullptr;
}

QList<X509 *> chainFrom(X509 *leaf, STACK_OF(X509) * certificates)
{
    constexpr qsizetype longestChain = 8;
    QList<X509 *> chain;
    for (X509 *next = leaf; next && chain.size() < longestChain && !chain.contains(next);
         next = issuerOf(next, certificates))
        chain.append(next);
    return chain;
}

QDateTime timeOf(const ASN1_GENERALIZEDTIME *time)
{
    struct tm parts = {};
    if (!time || ASN1_TIME_to_tm(time, &parts) != 1)
        return {};
    return {QDate(parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday),
            QTime(parts.tm_hour, parts.tm_min, parts.tm_sec), Qt::UTC};
}

QDateTime timestampOf(CMS_SignerInfo *signer)
{
    const std::unique_ptr<ASN1_OBJECT, Freed<ASN1_OBJECT_free>> type(
        OBJ_txt2obj("1.2.840.113549.1.9.16.2.14", 1));
    const int index = CMS_unsigned_get_attr_by_OBJ(signer, type.get(), -1);
    X509_ATTRIBUTE *attribute = index < 0 ? nullptr : CMS_unsigned_get_attr(signer, index);
    const ASN1_TYPE *value = attribute ? X509_ATTRIBUTE_get0_type(attribute, 0) : nullptr;
    if (!value || value->type != V_ASN1_SEQUENCE)
        return {};
    const unsigned char *bytes = value->value.sequence->data;
    const Token token(d2i_PKCS7(nullptr, &bytes, value->value.sequence->length));
    const Time info(token ? PKCS7_to_TS_TST_INFO(token.get()) : nullptr);
    return info ? timeOf(TS_TST_INFO_get_time(info.get())) : QDateTime();
}

bool hasDeveloperIdForm(const QList<X509 *> &chain)
{
    return chain.size() == 3 && hasExtension(chain[0], "1.2.840.113635.100.6.1.13")
        && hasExtension(chain[1], "1.2.840.113635.100.6.2.6");
}

} // namespace

SignerFacts signerFacts(const QByteArray &cms)
{
    const auto *bytes = reinterpret_cast<const unsigned char *>(cms.constData());
    const Cms content(d2i_CMS_ContentInfo(nullptr, &bytes, long(cms.size())));
    STACK_OF(CMS_SignerInfo) *signers = content ? CMS_get0_SignerInfos(content.get()) : nullptr;
    if (!signers || sk_CMS_SignerInfo_num(signers) < 1)
        return {};
    CMS_SignerInfo *signer = sk_CMS_SignerInfo_value(signers, 0);
    const Certificates certificates(CMS_get1_certs(content.get()));
    if (!certificates)
        return {};
    SignerFacts facts;
    const QList<X509 *> chain = chainFrom(leafOf(signer, certificates.get()), certificates.get());
    for (X509 *certificate : chain)
        facts.names.append(commonName(certificate));
    facts.isDeveloperId = hasDeveloperIdForm(chain);
    facts.timestamp = timestampOf(signer);
    return facts;
}

} // namespace toolchain::review
