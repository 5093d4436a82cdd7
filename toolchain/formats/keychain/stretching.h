#pragma once

#include <QByteArray>

#include <openssl/x509.h>

namespace toolchain {

/// How often a file may have its passphrase stretched: some seconds' worth.
inline constexpr long mostIterations = 5'000'000;

/// Whether the key derivation that an encryption names (PKCS #5, RFC 8018; PKCS #12) ends in bearable time.
[[nodiscard]] bool isBearable(const X509_ALGOR *encryption);

/// The same of a key in EncryptedPrivateKeyInfo (PKCS #8). True for bytes that are none.
[[nodiscard]] bool isBearableKey(const QByteArray &der);

} // namespace toolchain
