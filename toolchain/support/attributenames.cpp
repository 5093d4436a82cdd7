#include "support/attributenames.h"

namespace toolchain {

namespace {

constexpr std::string_view userSpace = "user.";

} // namespace

std::string hostAttributeName(std::string_view name)
{
    return (name.starts_with(userSpace) ? std::string() : std::string(userSpace)).append(name);
}

std::optional<std::string> attributeName(std::string_view hostName)
{
    if (!hostName.starts_with(userSpace) || hostName == userSpace)
        return {};
    return std::string(hostName.substr(userSpace.size()));
}

} // namespace toolchain
