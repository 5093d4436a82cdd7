#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <string>

#include "formats/cryptography.h"
#include "platform/result.h"

namespace toolchain {

/// One entry of a certificate's subject.
struct NameEntry {
    const char *field; ///< libcrypto's short name, such as "CN"
    QString value;
};

enum class Criticality { notCritical, critical };

/// An extension that libcrypto has no name for. Apple's markers hold an ASN.1 NULL.
struct MarkerExtension {
    const char *oid;
    Criticality criticality;
};

/// What a new certificate says.
struct CertificatePlan {
    QList<NameEntry> subject;
    std::string basicConstraints; ///< these four as in openssl's x509v3_config; empty for none
    std::string keyUsage;
    std::string extendedKeyUsage;
    std::string alternativeNames;
    QList<MarkerExtension> markers;
    long days = 0; ///< that it is good for
};

/// Who signs it; both null for one that signs itself.
struct Issuer {
    X509 *certificate = nullptr;
    EVP_PKEY *key = nullptr;
};

/// A certificate of version 3 with a random serial number, both key identifiers, signed with SHA-256 (RFC
/// 5280).
[[nodiscard]] platform::Result<Certificate> issueCertificate(const CertificatePlan &plan, EVP_PKEY *publicKey,
                                                             const Issuer &issuer);

} // namespace toolchain
