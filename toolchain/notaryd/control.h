#pragma once

#include "notaryd/service.h"

namespace notaryd {

/// What steers the service's misbehaviour, for this machine alone: POST /control/faults, GET
/// /control/requests, POST /control/reset.
[[nodiscard]] std::unique_ptr<Handler> controlHandler(Service &service, const Request &request);

} // namespace notaryd
