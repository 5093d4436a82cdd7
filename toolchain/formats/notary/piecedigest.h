#pragma once

#include "formats/notary/httpclient.h"
#include "platform/result.h"

namespace toolchain::notary {

/// The SHA-256 of a stretch of a file in 64 lower-case hexadecimal digits. Fails where the file ends before
/// the stretch does, or cannot be read; the error does not name the file. Any thread, and several at once.
[[nodiscard]] platform::Result<QByteArray> sha256Of(const FilePiece &piece);

} // namespace toolchain::notary
