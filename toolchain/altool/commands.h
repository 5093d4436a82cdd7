#pragma once

#include "altool/replies.h"
#include "support/arguments.h"

#include <string_view>

namespace toolchain {

/// The text of --help.
[[nodiscard]] std::string altoolHelp();

/// The options that `runAltool` understands.
[[nodiscard]] std::vector<Option> altoolOptions();

/// Carries out one command and answers the exit status. The locale must be a UTF-8 one.
[[nodiscard]] int runAltool(const ParsedArguments &arguments);

} // namespace toolchain
