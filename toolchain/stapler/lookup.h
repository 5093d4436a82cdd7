#pragma once

#include "formats/notary/serviceconfig.h"
#include "formats/ticket/signedticket.h"

namespace toolchain {

/// What became of the question for a ticket.
struct TicketQuestion {
    enum class Outcome {
        found,
        notFound, ///< not even after the last wait
        noService ///< the service could not be reached or did not answer as it should
    };
    Outcome outcome = Outcome::noService;
    QByteArray ticket; ///< as it came
    QString reason; ///< the service's word for NotFound, null if it gave none; what went wrong for NoService
};

/// Asks the ticket service for a record, again and again while there is no ticket: it may take some minutes
/// from the verdict to the ticket. Gives up two and a half minutes after it began at the latest;
/// SEALWRIGHT_WAIT_SCALE shortens the waits. SIGTERM ends the process as usual.
[[nodiscard]] TicketQuestion askForTicket(const notary::ServiceConfig &service,
                                          const ticket::TicketEntry &entry);

} // namespace toolchain
