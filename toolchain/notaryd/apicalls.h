#pragma once

#include "notaryd/service.h"

namespace notaryd {

/// The four calls of the notary service (https://developer.apple.com/documentation/notaryapi).
[[nodiscard]] std::unique_ptr<Handler> apiHandler(Service &service, const Request &request);

/// The logs, under addresses that are signed and expire.
[[nodiscard]] std::unique_ptr<Handler> artifactHandler(Service &service, const Request &request);

} // namespace notaryd
