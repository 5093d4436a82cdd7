#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Names of extended attributes. macOS has one space of names; Linux keeps what users may set under "user.",
/// and the rest ("system.", "security.", "trusted.") belongs to the host and does not travel with a file.
namespace toolchain {

/// How this host keeps macOS's attribute: com.apple.cs.CodeDirectory as user.com.apple.cs.CodeDirectory. A
/// name that begins with "user." is taken as the host's own already.
[[nodiscard]] std::string hostAttributeName(std::string_view name);

/// macOS's name of an attribute of this host; nothing for one that belongs to the host.
[[nodiscard]] std::optional<std::string> attributeName(std::string_view hostName);

} // namespace toolchain
