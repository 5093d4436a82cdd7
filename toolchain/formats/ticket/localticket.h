#pragma once

#include "formats/ticket/signedticket.h"

namespace toolchain::ticket {

/// A ticket in Apple's form by the authority of this machine, which makes a key for it at the first wish. Any
/// process.
[[nodiscard]] platform::Result<QByteArray> mintTicketOfThisMachine(const QList<TicketEntry> &entries,
                                                                   const QDateTime &issued);

} // namespace toolchain::ticket
