#pragma once

#include "notaryd/service.h"

namespace notaryd {

inline const QByteArray ticketLookupPath =
    "/database/1/com.apple.gk.ticket-delivery/production/public/records/lookup";

/// The lookup of tickets, as CloudKit's public database answers it
/// (https://developer.apple.com/library/archive/documentation/DataManagement/Conceptual/CloudKitWebServicesReference).
[[nodiscard]] std::unique_ptr<Handler> ticketHandler(Service &service, const Request &request);

/// The time-stamp authority of this machine (RFC 3161, section 3.4).
[[nodiscard]] std::unique_ptr<Handler> timestampHandler(Service &service, const Request &request);

} // namespace notaryd
