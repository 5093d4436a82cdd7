#pragma once

#include "support/arguments.h"

#include <optional>
#include <string_view>

namespace toolchain {

/// What of the usage concerns the notary service's keys and its choice.
[[nodiscard]] std::string_view notaryUsage();
[[nodiscard]] std::string_view notaryDetails();

/// The options of these commands.
[[nodiscard]] std::vector<Option> notaryOptions();

/// Carries out add-api-key, make-api-key or use-notary and answers the exit status; nothing for another
/// command.
[[nodiscard]] std::optional<int> runNotaryCommand(const ParsedArguments &arguments);

} // namespace toolchain
