#pragma once

#include "ctl/client.h"
#include "ctl/commandline.h"

namespace sealwright {

/// What waits for a verdict: told, and gone on with.
[[nodiscard]] Answer waiting(const Request &request, const Client &client);
[[nodiscard]] Answer resume(const Request &request, const Client &client);

} // namespace sealwright
