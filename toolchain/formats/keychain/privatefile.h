#pragma once

#include <QByteArray>
#include <QString>

#include "platform/result.h"

namespace toolchain {

/// Writes a whole file that only its owner may read. An error names the file.
[[nodiscard]] platform::Outcome writePrivateFile(const QString &path, const QByteArray &bytes);

} // namespace toolchain
