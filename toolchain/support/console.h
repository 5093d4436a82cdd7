#pragma once

#include <string_view>

namespace toolchain {

/// The exit status for a command line that a tool does not understand (EX_USAGE of sysexits.h).
inline constexpr int usageStatus = 64;

/// The exit status for an option or a value of one that the real tool may know and this one does not.
inline constexpr int notBuiltStatus = 2;

/// Writes the text as it stands to standard output.
void print(std::string_view text);

/// Writes the text as it stands to standard error.
void printError(std::string_view text);

/// Complains about the command line on standard error, followed by the usage, and answers the status.
[[nodiscard]] int refuseArguments(std::string_view tool, std::string_view complaint, std::string_view usage,
                                  int status = usageStatus);

} // namespace toolchain
