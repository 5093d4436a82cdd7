#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>

#include "platform/result.h"

namespace toolchain {

/// Certificates and private keys of a file that somebody hands over.
struct ImportedItems {
    QList<QByteArray> certificates; ///< in DER form
    QList<QByteArray> keys; ///< in PKCS #8 without encryption
};

/// Asked for a passphrase once a file turns out to need one.
using PassphraseSource = std::function<platform::Result<QByteArray>()>;

/// Reads PKCS #12 (RFC 7292, with the old ciphers that Keychain Access uses), PEM, or DER with one
/// certificate or key. Refuses a file that would have a passphrase stretched more than five million times.
[[nodiscard]] platform::Result<ImportedItems> readImport(const QByteArray &bytes,
                                                         const PassphraseSource &passphrase);

/// The same of PKCS #12 alone.
[[nodiscard]] platform::Result<ImportedItems> readPkcs12(const QByteArray &bytes,
                                                         const PassphraseSource &passphrase);

} // namespace toolchain
