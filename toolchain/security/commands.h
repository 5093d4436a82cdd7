#pragma once

#include <QString>

#include <string_view>

#include "support/arguments.h"

namespace toolchain::security {

/// The statuses of the real program: the low byte of a number of Apple's OSStatus.
inline constexpr int notFoundStatus = 44; ///< errSecItemNotFound
inline constexpr int duplicateStatus = 45; ///< errSecDuplicateItem
inline constexpr int lockedStatus = 36; ///< errSecInteractionNotAllowed

/// Each carries out one command and answers the exit status.
[[nodiscard]] int findIdentity(const ParsedArguments &arguments);
[[nodiscard]] int import(const ParsedArguments &arguments);
[[nodiscard]] int deleteIdentity(const ParsedArguments &arguments);
[[nodiscard]] int addGenericPassword(const ParsedArguments &arguments);
[[nodiscard]] int findGenericPassword(const ParsedArguments &arguments);
[[nodiscard]] int deleteGenericPassword(const ParsedArguments &arguments);

/// Prints "security: MESSAGE" on standard error and answers the status.
[[nodiscard]] int fail(const QString &message, int status = 1);

/// Complains of the command line, prints the usage, and answers the status.
[[nodiscard]] int refuse(std::string_view complaint, int status);

} // namespace toolchain::security
