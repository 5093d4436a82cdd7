#pragma once

#include <QByteArray>
#include <QString>

namespace toolchain {

/// Writes a whole file that only its owner may read. Answers what went wrong, naming the file, or an empty
/// text.
[[nodiscard]] QString writePrivateFile(const QString &path, const QByteArray &bytes);

} // namespace toolchain
