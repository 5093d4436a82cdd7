#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

#include "formats/keychain/vaultsecrets.h"
#include "platform/result.h"

namespace toolchain {

/// The password kept in the keychain's vault under a name; nothing if there is no such item, or the vault is
/// locked or cannot be read.
[[nodiscard]] std::optional<QByteArray> readPassword(const QString &name);

/// Keeps a password under a name in the keychain's vault, encrypted; an item of that name is replaced.
[[nodiscard]] platform::Outcome storePassword(const QString &name, const QByteArray &password);

/// An item by its name, and by its account if that is not null; no item is not a failure, a locked vault is
/// one.
[[nodiscard]] platform::Result<std::optional<PasswordItem>> findPassword(const QString &item,
                                                                         const QString &account);

enum class PasswordAddition {
    added,
    updated,
    refused ///< there is an item of this name and account, and it was not to be updated
};
enum class ExistingPassword { kept, updated };

[[nodiscard]] platform::Result<PasswordAddition> addPassword(const PasswordItem &item,
                                                             ExistingPassword existing);

/// Answers whether there was one.
[[nodiscard]] platform::Result<bool> removePassword(const QString &item, const QString &account);

} // namespace toolchain
