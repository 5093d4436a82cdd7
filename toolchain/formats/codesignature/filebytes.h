#pragma once

#include <QByteArrayView>

namespace toolchain::codesignature {

/// Bytes of an open file at a place, all that are asked for. False, with errno telling why, if that fails;
/// EIO where the file ends too early.
[[nodiscard]] bool readAt(int descriptor, char *buffer, quint64 length, quint64 offset);
[[nodiscard]] bool writeAt(int descriptor, QByteArrayView bytes, quint64 offset);

} // namespace toolchain::codesignature
