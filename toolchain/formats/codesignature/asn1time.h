#pragma once

#include <QDateTime>

#include <openssl/asn1.h>

namespace toolchain {

/// A moment of ASN.1, UTCTime or GeneralizedTime, to the second; not valid for null and for what is none.
[[nodiscard]] QDateTime momentOf(const ASN1_TIME *time);

} // namespace toolchain
