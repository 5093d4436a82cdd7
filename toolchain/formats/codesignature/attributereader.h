#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>

#include <openssl/pkcs7.h>

#include "formats/codesignature/cms.h"

/// Attributes of a CMS signature by their dotted object identifiers. A list may be null; what is not there,
/// or of another form, is empty.
namespace toolchain::attributes {

inline constexpr const char *messageDigestOid = "1.2.840.113549.1.9.4";
inline constexpr const char *signingTimeOid = "1.2.840.113549.1.9.5";
inline constexpr const char *timestampTokenOid = "1.2.840.113549.1.9.16.2.14";

using List = STACK_OF(X509_ATTRIBUTE);

[[nodiscard]] QByteArray octets(const List *list, const char *oid);
/// In DER form, with its header.
[[nodiscard]] QByteArray sequence(const List *list, const char *oid);
[[nodiscard]] QDateTime time(const List *list, const char *oid);
[[nodiscard]] QList<DirectoryDigest> directoryDigests(const List *list);
[[nodiscard]] QList<QByteArray> codeHashes(const List *list);

} // namespace toolchain::attributes
