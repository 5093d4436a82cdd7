#include "formats/codesignature/certificatefacts.h"

#include "formats/codesignature/digest.h"
#include "formats/cryptography.h"

#include <openssl/err.h>
#include <openssl/x509v3.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace toolchain::codesignature {

namespace {

template <auto release>
struct Released {
    template <typename Thing>
    void operator()(Thing *thing) const
    {
        release(thing);
    }
};
using ObjectPointer = std::unique_ptr<ASN1_OBJECT, Released<ASN1_OBJECT_free>>;
using PoliciesPointer = std::unique_ptr<CERTIFICATEPOLICIES, Released<CERTIFICATEPOLICIES_free>>;

ObjectPointer objectOf(const QString &oid)
{
    ObjectPointer object(OBJ_txt2obj(oid.toLatin1().constData(), 1));
    ERR_clear_error();
    return object;
}

QString textOf(const ASN1_STRING *string)
{
    unsigned char *text = nullptr;
    const int length = ASN1_STRING_to_UTF8(&text, string);
    const QString result = length < 0 ? QString() : QString::fromUtf8(reinterpret_cast<char *>(text), length);
    OPENSSL_free(text);
    ERR_clear_error();
    return result;
}

/// Apple's extensions hold a text or a date, or NULL where they are a mere mark.
QByteArray contentOf(const ASN1_OCTET_STRING *value)
{
    const QByteArray der(reinterpret_cast<const char *>(ASN1_STRING_get0_data(value)),
                         ASN1_STRING_length(value));
    constexpr qsizetype shortHeader = 2;
    const bool isShort =
        der.size() >= shortHeader && quint8(der[1]) < 0x80 && der.size() == shortHeader + der[1];
    return isShort ? der.sliced(shortHeader) : der;
}

} // namespace

struct CertificateFacts::Parsed {
    Certificate certificate;
};

const CertificateFacts::Parsed &CertificateFacts::parsed() const
{
    if (!m_parsed)
        m_parsed = std::make_shared<Parsed>(Parsed{certificateFrom(m_der)});
    return *m_parsed;
}

CertificateFacts::CertificateFacts(const QByteArray &der)
    : m_der(der)
{
}

std::optional<QString> CertificateFacts::subject(const QString &name) const
{
    X509 *certificate = parsed().certificate.get();
    const ObjectPointer object(OBJ_txt2obj(name.toLatin1().constData(), 0));
    ERR_clear_error();
    if (!certificate || !object)
        return std::nullopt;
    X509_NAME *subject = X509_get_subject_name(certificate);
    const int at = X509_NAME_get_index_by_OBJ(subject, object.get(), -1);
    if (at < 0)
        return std::nullopt;
    return textOf(X509_NAME_ENTRY_get_data(X509_NAME_get_entry(subject, at)));
}

std::optional<QByteArray> CertificateFacts::extension(const QString &oid) const
{
    X509 *certificate = parsed().certificate.get();
    const ObjectPointer object = objectOf(oid);
    if (!certificate || !object)
        return std::nullopt;
    const int at = X509_get_ext_by_OBJ(certificate, object.get(), -1);
    if (at < 0)
        return std::nullopt;
    return contentOf(X509_EXTENSION_get_data(X509_get_ext(certificate, at)));
}

bool CertificateFacts::hasPolicy(const QString &oid) const
{
    X509 *certificate = parsed().certificate.get();
    const ObjectPointer object = objectOf(oid);
    if (!certificate || !object)
        return false;
    const PoliciesPointer policies(static_cast<CERTIFICATEPOLICIES *>(
        X509_get_ext_d2i(certificate, NID_certificate_policies, nullptr, nullptr)));
    for (int index = 0; policies && index < sk_POLICYINFO_num(policies.get()); ++index) {
        if (OBJ_cmp(sk_POLICYINFO_value(policies.get(), index)->policyid, object.get()) == 0)
            return true;
    }
    return false;
}

QByteArray CertificateFacts::sha1() const
{
    return digestOf(m_der, HashType::sha1);
}

} // namespace toolchain::codesignature
