#pragma once

#include <QByteArray>
#include <QString>

#include "platform/result.h"

/// The desktop's Secret Service (freedesktop.org Secret Service API), asked by a program of its own, so that
/// only who uses it pays for a connection to the session bus. Blocks until the service has answered; a person
/// may have to open it.
namespace toolchain::secretservice {

[[nodiscard]] platform::Result<QByteArray> read(const QString &entry);
[[nodiscard]] platform::Outcome store(const QString &entry, const QByteArray &secret);
[[nodiscard]] platform::Outcome remove(const QString &entry);

} // namespace toolchain::secretservice
