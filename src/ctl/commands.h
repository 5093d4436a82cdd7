#pragma once

#include "ctl/client.h"
#include "ctl/commandline.h"

namespace sealwright {

/// Carries out the request and prints its result. The answer's error is left to the caller.
[[nodiscard]] Answer carryOut(const Request &request, const Client &client);

} // namespace sealwright
