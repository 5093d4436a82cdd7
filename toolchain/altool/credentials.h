#pragma once

#include "formats/notary/apikey.h"
#include "support/arguments.h"

namespace toolchain {

/// The API key that the arguments name: a password item (-p @keychain:ITEM), a variable (-p @env:VARIABLE),
/// or a key file in the folder where Apple's tools look for one (--apiKey, --apiIssuer). Refuses an item of
/// another account or team than the arguments name. Every failure to find a usable key says what the keychain
/// says of a missing item, since that is what readers of this tool look for.
[[nodiscard]] platform::Result<notary::ApiKey> readCredentials(const ParsedArguments &arguments);

/// Says on standard error that a variable, where the arguments name one, is no good place for a key.
void warnOfEnvironment(const ParsedArguments &arguments);

} // namespace toolchain
