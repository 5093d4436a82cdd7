#pragma once

#include <QByteArray>
#include <QString>

#include "formats/keychain/importing.h"
#include "platform/result.h"

namespace toolchain {

/// What of an import was not in the keychain before.
struct ImportCount {
    qsizetype identities = 0; ///< certificates whose key is there now
    qsizetype certificates = 0; ///< others
    qsizetype keys = 0; ///< without a certificate
    bool isNothing() const { return identities + certificates + keys == 0; }
};

/// Keeps certificates as files of the keychain folder, keys in its vault.
[[nodiscard]] platform::Result<ImportCount> addToKeychain(const QString &folder, const ImportedItems &items);

/// Removes the certificate with this SHA-1 (hexadecimal digits) and its key, unless another certificate has
/// it too.
[[nodiscard]] platform::Outcome removeIdentity(const QString &folder, const QString &sha1);

} // namespace toolchain
