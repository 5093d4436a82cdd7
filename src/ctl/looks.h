#pragma once

#include "ctl/client.h"
#include "ctl/commandline.h"

namespace sealwright {

/// Commands that look at something and print what they see.
[[nodiscard]] Answer examine(const Request &request, const Client &client);
[[nodiscard]] Answer issues(const Request &request, const Client &client);
[[nodiscard]] Answer compare(const Request &request, const Client &client);

} // namespace sealwright
