#include "formats/identities.h"

#include <QUrl>

#include <openssl/ec.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/rsa.h>
#include <openssl/x509v3.h>

#include <sys/stat.h>

#include "formats/keychaincontents.h"
#include "support/wholefile.h"

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

using Extension = std::unique_ptr<X509_EXTENSION, Freed<X509_EXTENSION_free>>;
using UsageList = std::unique_ptr<EXTENDED_KEY_USAGE, Freed<EXTENDED_KEY_USAGE_free>>;
using Object = std::unique_ptr<ASN1_OBJECT, Freed<ASN1_OBJECT_free>>;

/// Apple's extended key usage for a certificate that signs installer packages.
constexpr const char *packageSigningUsage = "1.2.840.113635.100.4.13";
constexpr long tenYearsInSeconds = 10L * 365 * 24 * 60 * 60;

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

bool canSignPackages(X509 *certificate)
{
    const UsageList usages(static_cast<EXTENDED_KEY_USAGE *>(
        X509_get_ext_d2i(certificate, NID_ext_key_usage, nullptr, nullptr)));
    const Object wanted(OBJ_txt2obj(packageSigningUsage, 1));
    for (int index = 0; usages && index < sk_ASN1_OBJECT_num(usages.get()); ++index) {
        if (OBJ_cmp(sk_ASN1_OBJECT_value(usages.get(), index), wanted.get()) == 0)
            return true;
    }
    return false;
}

Identity identityFrom(X509 *certificate)
{
    return {commonNameOf(certificate), fingerprintOf(certificate), isValidNow(certificate),
            (X509_get_extended_key_usage(certificate) & XKU_CODE_SIGN) != 0, canSignPackages(certificate)};
}

bool isFor(const Identity &identity, IdentityKind kind)
{
    return kind == IdentityKind::Application ? identity.canSignCode : identity.canSignPackages;
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

/// The signature in a package's header is an RSA signature.
Key newKey(IdentityKind kind)
{
    constexpr unsigned int bits = 2048;
    return Key(kind == IdentityKind::Application ? EVP_EC_gen("P-256") : EVP_RSA_gen(bits));
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
    const KeychainContents contents = readKeychain(folder);
    IdentityList list;
    list.warnings = contents.warnings;
    for (const Certificate &certificate : contents.certificates) {
        if (contents.keyOf(certificate.get()))
            list.identities.append(identityFrom(certificate.get()));
    }
    return list;
}

std::optional<Identity> readCertificate(const QByteArray &certificate)
{
    auto bytes = reinterpret_cast<const unsigned char *>(certificate.constData());
    const Certificate x509(d2i_X509(nullptr, &bytes, long(certificate.size())));
    ERR_clear_error();
    return x509 ? std::optional(identityFrom(x509.get())) : std::nullopt;
}

IdentityChoice chooseIdentity(const QString &folder, const QString &wanted, IdentityKind kind)
{
    QList<Identity> matches;
    QStringList names;
    for (const Identity &identity : readIdentities(folder).identities) {
        const bool matchesName =
            identity.sha1.compare(wanted, Qt::CaseInsensitive) == 0 || identity.commonName.contains(wanted);
        if (!matchesName || !identity.isValidNow || !isFor(identity, kind))
            continue;
        if (identity.commonName == wanted)
            return {identity, {}};
        matches.append(identity);
        names.append(identity.commonName);
    }
    if (matches.isEmpty() || wanted.isEmpty())
        return {std::nullopt, u"no identity found"_s};
    if (matches.size() == 1)
        return {matches.first(), {}};
    return {std::nullopt, u"ambiguous (matches \"%1\")"_s.arg(names.join(u"\" and \""_s))};
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
    const Key key(newKey(kind));
    const Certificate certificate = key ? selfSignedCertificate(key.get(), commonName, kind) : nullptr;
    if (!certificate)
        return {{}, libraryError()};
    const QString fileName = QString::fromLatin1(QUrl::toPercentEncoding(commonName, " (),:")) + u".pem"_s;
    const QString path = folder + u'/' + fileName;
    const QString problem = storeIdentity(path, pemOf(key.get(), certificate.get()));
    return problem.isEmpty() ? NewIdentity{path, {}} : NewIdentity{{}, problem};
}

} // namespace toolchain
