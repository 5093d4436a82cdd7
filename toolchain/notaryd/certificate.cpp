#include "notaryd/certificate.h"

#include <QRandomGenerator>

#include <openssl/bio.h>
#include <openssl/ec.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <memory>

#include "formats/cryptography.h"
#include "formats/keychain/privatefile.h"
#include "formats/notary/serviceconfig.h"

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace notaryd {

namespace {

using Key = std::unique_ptr<EVP_PKEY, void (*)(EVP_PKEY *)>;
using Certificate = std::unique_ptr<X509, void (*)(X509 *)>;
using Memory = std::unique_ptr<BIO, int (*)(BIO *)>;

constexpr long lifetime = 365L * 24 * 60 * 60; // seconds
constexpr long backdated = 24L * 60 * 60;

QByteArray pemOf(X509 *certificate)
{
    const Memory memory(BIO_new(BIO_s_mem()), BIO_free);
    PEM_write_bio_X509(memory.get(), certificate);
    return toolchain::writtenTo(memory.get());
}

QByteArray pemOf(EVP_PKEY *key)
{
    const Memory memory(BIO_new(BIO_s_mem()), BIO_free);
    PEM_write_bio_PKCS8PrivateKey(memory.get(), key, nullptr, nullptr, 0, nullptr, nullptr);
    return toolchain::writtenTo(memory.get());
}

void extend(X509 *certificate, X509 *issuer, int name, const QByteArray &value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    X509_EXTENSION *extension = X509V3_EXT_conf_nid(nullptr, &context, name, value.constData());
    X509_add_ext(certificate, extension, -1);
    X509_EXTENSION_free(extension);
}

/// A certificate with everything but its extensions and its signature.
Certificate blank(EVP_PKEY *key, const QByteArray &commonName)
{
    Certificate certificate(X509_new(), X509_free);
    X509_set_version(certificate.get(), X509_VERSION_3);
    ASN1_INTEGER_set_uint64(X509_get_serialNumber(certificate.get()),
                            QRandomGenerator::system()->generate64() >> 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -backdated);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), lifetime);
    X509_set_pubkey(certificate.get(), key);
    X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate.get()), "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char *>(commonName.constData()), -1, -1, 0);
    return certificate;
}

QByteArray namesFor(const QString &address)
{
    QByteArray names = "DNS:localhost,IP:127.0.0.1,IP:::1";
    if (!address.isEmpty() && address != u"127.0.0.1"_s && address != u"::1"_s && address != u"localhost"_s)
        names += ",IP:" + address.toLatin1();
    return names;
}

} // namespace

QString authorityFile()
{
    return toolchain::notary::serviceFolder() + u"/ca.pem"_s;
}

Result<ServerCertificate> serverCertificate(const QString &address)
{
    const Key authorityKey(EVP_EC_gen("P-256"), EVP_PKEY_free);
    const Key key(EVP_EC_gen("P-256"), EVP_PKEY_free);
    if (!authorityKey || !key)
        return Error{u"no key could be made"_s};
    const Certificate authority = blank(authorityKey.get(), "Sealwright notary service of this machine");
    X509_set_issuer_name(authority.get(), X509_get_subject_name(authority.get()));
    extend(authority.get(), authority.get(), NID_basic_constraints, "critical,CA:TRUE,pathlen:0");
    extend(authority.get(), authority.get(), NID_key_usage, "critical,keyCertSign");
    extend(authority.get(), authority.get(), NID_subject_key_identifier, "hash");
    X509_sign(authority.get(), authorityKey.get(), EVP_sha256());
    const Certificate server = blank(key.get(), "localhost");
    X509_set_issuer_name(server.get(), X509_get_subject_name(authority.get()));
    extend(server.get(), authority.get(), NID_basic_constraints, "critical,CA:FALSE");
    extend(server.get(), authority.get(), NID_key_usage, "critical,digitalSignature");
    extend(server.get(), authority.get(), NID_ext_key_usage, "serverAuth");
    extend(server.get(), authority.get(), NID_subject_alt_name, namesFor(address));
    extend(server.get(), authority.get(), NID_authority_key_identifier, "keyid");
    X509_sign(server.get(), authorityKey.get(), EVP_sha256());
    const auto written = toolchain::writePrivateFile(authorityFile(), pemOf(authority.get()));
    if (!written)
        return written.failure();
    return ServerCertificate{pemOf(key.get()), pemOf(server.get())};
}

} // namespace notaryd
