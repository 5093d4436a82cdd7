#pragma once

#include <QByteArray>
#include <QList>

#include <openssl/pkcs7.h>

#include <memory>

#include "formats/codesignature/cms.h"
#include "formats/cryptography.h"

namespace toolchain {

/// Apple's attribute that holds a property list of the code directories' hashes.
inline constexpr const char *hashAgilityListOid = "1.2.840.113635.100.9.1";
/// Apple's attribute that holds the algorithm and digest of each code directory.
inline constexpr const char *hashAgilityOid = "1.2.840.113635.100.9.2";

/// libcrypto's number of the digest that a hash type stands for; NID_undef for none.
[[nodiscard]] int digestOfHashType(int hashType);

/// The hash type of a digest's number; 0 for none.
[[nodiscard]] int hashTypeOfDigest(int nid);

/// libcrypto's digest; SHA-256 for algorithms that no signature uses.
[[nodiscard]] const EVP_MD *digestFor(QCryptographicHash::Algorithm algorithm);

/// The signed attributes of code, in the order of their encoding.
[[nodiscard]] QList<QByteArray> codeAttributes(const CodeCmsOrder &order);

/// The signed attributes that every signature has: content type, time, digest.
[[nodiscard]] QList<QByteArray> plainAttributes(const QByteArray &contentDigest,
                                                const QDateTime &signingTime);

/// An attribute of one value, given in DER form, as DER.
[[nodiscard]] QByteArray attributeOf(const char *oid, const QList<QByteArray> &values);

} // namespace toolchain
