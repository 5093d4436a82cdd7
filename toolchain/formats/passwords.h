#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace toolchain {

/// The password kept in the keychain's vault under a name; nothing if there is no such item, or the vault is
/// locked or cannot be read.
[[nodiscard]] std::optional<QByteArray> readPassword(const QString &name);

/// Keeps a password under a name in the keychain's vault, encrypted; an item of that name is replaced.
/// Answers what went wrong, or an empty text.
[[nodiscard]] QString storePassword(const QString &name, const QByteArray &password);

} // namespace toolchain
