#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <memory>

namespace toolchain {

/// Lets a smart pointer free what libcrypto made.
template <auto freeFunction>
struct Freed {
    template <typename T>
    void operator()(T *object) const
    {
        freeFunction(object);
    }
};

using Certificate = std::unique_ptr<X509, Freed<X509_free>>;
using Key = std::unique_ptr<EVP_PKEY, Freed<EVP_PKEY_free>>;
using SharedKey = std::shared_ptr<EVP_PKEY>;
using MemoryFile = std::unique_ptr<BIO, Freed<BIO_free_all>>;

/// The oldest entry of libcrypto's queue of errors as a text; empties the queue.
[[nodiscard]] QString libraryError();

/// Bytes as libcrypto wants them. Valid as long as the array is.
[[nodiscard]] inline const unsigned char *bytesOf(const QByteArray &array)
{
    return reinterpret_cast<const unsigned char *>(array.constData());
}

/// A memory BIO over bytes that outlive it.
[[nodiscard]] MemoryFile memoryOver(const QByteArray &bytes);

/// What has been written to a memory BIO.
[[nodiscard]] QByteArray writtenTo(BIO *memory);

/// The DER form of a structure of libcrypto, by its i2d function; empty on failure.
template <auto i2d, typename T>
[[nodiscard]] QByteArray encoded(T *object)
{
    unsigned char *bytes = nullptr;
    const int length = object ? i2d(object, &bytes) : -1;
    const QByteArray der =
        length > 0 ? QByteArray(reinterpret_cast<const char *>(bytes), length) : QByteArray();
    OPENSSL_free(bytes);
    return der;
}

[[nodiscard]] QByteArray derOf(X509 *certificate);
/// The same of each; none of null.
[[nodiscard]] QList<QByteArray> derOfAll(const STACK_OF(X509) * certificates);

/// A certificate of exactly these DER bytes; null if they are none. It may be shared with others who ask for
/// the same and must not be changed. Any thread.
[[nodiscard]] Certificate certificateFrom(const QByteArray &der);

/// PKCS #8 without encryption; empty if the key lies in a token.
[[nodiscard]] QByteArray derOf(EVP_PKEY *key);

/// A private key in PKCS #8 or a traditional form; null if it is none.
[[nodiscard]] Key keyFrom(const QByteArray &der);

/// One entry of a name, such as NID_commonName, as text; empty if it has none.
[[nodiscard]] QString entryOf(X509_NAME *name, int nid);
[[nodiscard]] QString subjectEntryOf(X509 *certificate, int nid);

/// Whether a certificate has an extension with this dotted object identifier.
[[nodiscard]] bool hasExtension(X509 *certificate, const char *oid);

/// Whether the extended key usage of a certificate names this dotted object identifier.
[[nodiscard]] bool hasUsage(X509 *certificate, const char *oid);

/// SHA-1 of a certificate, 40 upper-case hexadecimal digits.
[[nodiscard]] QString fingerprintOf(X509 *certificate);

/// SHA-1 of a public key (SubjectPublicKeyInfo), 40 lower-case hexadecimal digits: what a private key is
/// found by.
[[nodiscard]] QString publicKeyId(EVP_PKEY *key);
[[nodiscard]] QString publicKeyId(X509 *certificate);

/// Random bytes from libcrypto; ends the process if it has none to give.
[[nodiscard]] QByteArray randomBytes(qsizetype count);

} // namespace toolchain
