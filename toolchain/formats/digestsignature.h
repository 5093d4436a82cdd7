#pragma once

#include <QByteArray>
#include <QCryptographicHash>
#include <QString>

#include <memory>

namespace toolchain {

/// A signature over a digest, and the certificate of the key that made it.
struct DigestSignature {
    QByteArray certificate; ///< in DER form
    QByteArray bytes; ///< PKCS #1 v1.5 for an RSA key, else as libcrypto gives it

    /// Whether the certificate's key made it of this digest. Judges no certificate.
    [[nodiscard]] bool fits(const QByteArray &digest, QCryptographicHash::Algorithm algorithm) const;
};

/// Signs digests with a private key of the keychain folder.
class DigestSigner {
public:
    /// Takes the key of the certificate with this SHA-1 in hexadecimal digits.
    DigestSigner(const QString &folder, const QString &certificateSha1);
    ~DigestSigner();

    /// In DER form; empty if it is not in the folder or its key is not.
    [[nodiscard]] QByteArray certificate() const;

    /// The most bytes of a signature, which is what each has with an RSA key.
    [[nodiscard]] qsizetype signatureSize() const;

    /// The signature's bytes are empty if the digest could not be signed.
    [[nodiscard]] DigestSignature sign(const QByteArray &digest,
                                       QCryptographicHash::Algorithm algorithm) const;

private:
    struct Parts;
    const std::unique_ptr<Parts> m_parts;
};

} // namespace toolchain
