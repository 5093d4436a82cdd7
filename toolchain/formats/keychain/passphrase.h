#pragma once

#include <QByteArray>
#include <QString>

#include "platform/result.h"

namespace toolchain {

/// The first line of a file, or of standard input for "-", without its end. An empty one is an error.
[[nodiscard]] platform::Result<QByteArray> passphraseFromFile(const QString &file);

/// Asks at the terminal without showing what is typed. Fails where there is no terminal.
[[nodiscard]] platform::Result<QByteArray> askPassphrase(const QString &question);

/// From the file that is named; if none is, from the systemd credential "sealwright-keychain"
/// ($CREDENTIALS_DIRECTORY, systemd.exec(5)) where the process has one; else from the terminal.
[[nodiscard]] platform::Result<QByteArray> passphraseFrom(const QString &file, const QString &question);

} // namespace toolchain
