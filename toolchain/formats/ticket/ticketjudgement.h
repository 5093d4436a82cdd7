#pragma once

#include "formats/codesignature/trust.h"
#include "formats/ticket/signedticket.h"

namespace toolchain::ticket {

/// What an attached or delivered ticket is worth for an item.
struct TicketJudgement {
    enum class Verdict {
        none, ///< there is no ticket
        bad, ///< it is no ticket, not signed by whom it must be, or not about the item
        good
    };
    Verdict verdict = Verdict::none;
    Anchor anchor = Anchor::other; ///< whose it is
    QString problem; ///< what speaks against a bad one

    [[nodiscard]] bool isGood() const { return verdict == Verdict::good; }
};

/// Judges a ticket's bytes: signature, the signer's chain at the moment of issue, and that one of the entries
/// is in it. Empty bytes are no ticket.
[[nodiscard]] TicketJudgement judgeTicket(const QByteArray &bytes, const QList<TicketEntry> &entries);

} // namespace toolchain::ticket
