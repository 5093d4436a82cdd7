#pragma once

#include <QString>
#include <QStringList>

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <memory>
#include <vector>

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
using MemoryFile = std::unique_ptr<BIO, Freed<BIO_free_all>>;

/// What the PEM files of a keychain folder hold.
struct KeychainContents {
    std::vector<Certificate> certificates; ///< ordered by their files' names
    std::vector<Key> keys;
    QStringList warnings; ///< one line for each file that could not be used

    /// The private key of a certificate; null if it is not there. Stays the contents' own.
    [[nodiscard]] EVP_PKEY *keyOf(X509 *certificate) const;
};

/// Reads every .pem, .crt and .key file. A folder that does not exist is an empty one.
[[nodiscard]] KeychainContents readKeychain(const QString &folder);

/// SHA-1 of a certificate, 40 upper-case hexadecimal digits.
[[nodiscard]] QString fingerprintOf(X509 *certificate);

} // namespace toolchain
