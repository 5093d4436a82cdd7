#pragma once

#include <QString>

#include "formats/ticket/ticketjudgement.h"

namespace toolchain::spctl {

/// The judgement on an item's ticket: the attached one, else the one that the service has. `entries` are what
/// a ticket may know the item by, `attached` the bytes of an attached one.
[[nodiscard]] ticket::TicketJudgement approvalOf(const QList<ticket::TicketEntry> &entries,
                                                 const QByteArray &attached);

} // namespace toolchain::spctl
