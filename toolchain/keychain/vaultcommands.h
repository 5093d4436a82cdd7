#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "support/arguments.h"

namespace toolchain {

/// What of the usage concerns the vault that secrets lie in, and tokens.
[[nodiscard]] std::string_view vaultUsage();
[[nodiscard]] std::string_view vaultDetails();

/// The options of these commands.
[[nodiscard]] std::vector<Option> vaultOptions();

/// Carries out status, lock, unlock, use-store, set-passphrase or import-token and answers the exit status;
/// nothing for another command.
[[nodiscard]] std::optional<int> runVaultCommand(const ParsedArguments &arguments);

} // namespace toolchain
