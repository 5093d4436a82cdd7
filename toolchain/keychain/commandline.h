#pragma once

#include "support/arguments.h"

#include <QString>

#include <string>

namespace toolchain {

/// What is wrong with a command line as a whole: no command, one that there is not, an operand that is
/// missing or too many, an option of another command. Empty if nothing is.
[[nodiscard]] std::string commandLineProblem(const ParsedArguments &arguments);

/// Says on standard error what went wrong, and answers the exit status for it.
[[nodiscard]] int failCommand(const QString &message);

} // namespace toolchain
