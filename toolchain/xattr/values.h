#pragma once

#include <optional>
#include <string>

/// Values of attributes as text, as the real tool writes and reads them.
namespace toolchain {

/// Two digits a byte, sixteen bytes a line; each line ends in a line end.
[[nodiscard]] std::string inHex(const std::string &value);

/// The bytes of digits with blanks of any kind between them; nothing if there is something else or half a
/// byte.
[[nodiscard]] std::optional<std::string> fromHex(const std::string &text);

/// Whether a value can be printed as it is: UTF-8 without a NUL.
[[nodiscard]] bool isText(const std::string &value);

/// Lines with the place, the bytes and what of them can be printed, and a last one with the length.
[[nodiscard]] std::string dumpOf(const std::string &value);

} // namespace toolchain
