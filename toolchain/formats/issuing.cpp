#include "formats/issuing.h"

#include <openssl/x509v3.h>

#include <algorithm>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain {

namespace {

using Extension = std::unique_ptr<X509_EXTENSION, Freed<X509_EXTENSION_free>>;
using Object = std::unique_ptr<ASN1_OBJECT, Freed<ASN1_OBJECT_free>>;
using Octets = std::unique_ptr<ASN1_OCTET_STRING, Freed<ASN1_OCTET_STRING_free>>;

constexpr long secondsInADay = 24L * 60 * 60;
/// Clocks of the machines that a certificate goes to may be behind.
constexpr long secondsBeforeNow = 60L * 60;

bool add(X509 *certificate, const Extension &extension)
{
    return extension && X509_add_ext(certificate, extension.get(), -1) == 1;
}

bool addExtension(X509 *certificate, X509 *issuer, int nid, const std::string &value)
{
    if (value.empty())
        return true;
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    return add(certificate, Extension(X509V3_EXT_conf_nid(nullptr, &context, nid, value.c_str())));
}

bool addMarker(X509 *certificate, const MarkerExtension &marker)
{
    constexpr unsigned char null[] = {V_ASN1_NULL, 0};
    const Object oid(OBJ_txt2obj(marker.oid, 1));
    const Octets value(ASN1_OCTET_STRING_new());
    ASN1_OCTET_STRING_set(value.get(), null, sizeof null);
    const int isCritical = marker.criticality == Criticality::critical ? 1 : 0;
    return add(certificate,
               Extension(X509_EXTENSION_create_by_OBJ(nullptr, oid.get(), isCritical, value.get())));
}

bool addName(X509_NAME *name, const NameEntry &entry)
{
    const QByteArray bytes = entry.value.toUtf8();
    return entry.value.isEmpty()
        || X509_NAME_add_entry_by_txt(name, entry.field, MBSTRING_UTF8, bytesOf(bytes),
                                      static_cast<int>(bytes.size()), -1, 0)
        == 1;
}

bool addNames(X509_NAME *name, const QList<NameEntry> &entries)
{
    return std::all_of(entries.begin(), entries.end(),
                       [name](const NameEntry &entry) { return addName(name, entry); });
}

bool setSerialNumber(X509 *certificate)
{
    std::uint64_t number = 0;
    const QByteArray random = randomBytes(sizeof number);
    std::copy_n(random.constData(), sizeof number, reinterpret_cast<char *>(&number));
    return ASN1_INTEGER_set_uint64(X509_get_serialNumber(certificate), number >> 1 | 1) == 1;
}

bool setDates(X509 *certificate, long days)
{
    return X509_gmtime_adj(X509_getm_notBefore(certificate), -secondsBeforeNow)
        && X509_gmtime_adj(X509_getm_notAfter(certificate), days * secondsInADay);
}

bool addExtensions(X509 *certificate, X509 *issuer, const CertificatePlan &plan)
{
    return addExtension(certificate, issuer, NID_subject_key_identifier, "hash")
        && addExtension(certificate, issuer, NID_authority_key_identifier,
                        certificate == issuer ? "" : "keyid:always")
        && addExtension(certificate, issuer, NID_basic_constraints, plan.basicConstraints)
        && addExtension(certificate, issuer, NID_key_usage, plan.keyUsage)
        && addExtension(certificate, issuer, NID_ext_key_usage, plan.extendedKeyUsage)
        && addExtension(certificate, issuer, NID_subject_alt_name, plan.alternativeNames)
        && std::all_of(
               plan.markers.begin(), plan.markers.end(),
               [certificate](const MarkerExtension &marker) { return addMarker(certificate, marker); });
}

} // namespace

Result<Certificate> issueCertificate(const CertificatePlan &plan, EVP_PKEY *publicKey, const Issuer &issuer)
{
    Certificate certificate(X509_new());
    X509 *x509 = certificate.get();
    X509 *signer = issuer.certificate ? issuer.certificate : x509;
    const bool isIssued = X509_set_version(x509, X509_VERSION_3) == 1 && setSerialNumber(x509)
        && setDates(x509, plan.days) && addNames(X509_get_subject_name(x509), plan.subject)
        && X509_set_issuer_name(x509, X509_get_subject_name(signer)) == 1
        && X509_set_pubkey(x509, publicKey) == 1 && addExtensions(x509, signer, plan)
        && X509_sign(x509, issuer.key ? issuer.key : publicKey, EVP_sha256()) > 0;
    if (!isIssued)
        return Error{u"no certificate could be made: "_s + libraryError()};
    return certificate;
}

} // namespace toolchain
