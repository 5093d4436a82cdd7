#pragma once

#include "formats/ticket/signedticket.h"

#include <QString>

#include <memory>

namespace toolchain::ticket {

/// Something that a ticket can be attached to: a bundle with a Contents folder, a signed disk image, or a
/// flat package.
class StapleTarget {
public:
    /// Recognises an item by what it holds, whatever it is called. The error is for a person, without the
    /// item's name.
    [[nodiscard]] static platform::Result<std::shared_ptr<const StapleTarget>> open(const QString &path);

    virtual ~StapleTarget() = default;

    /// What a ticket may know the item by; the service is asked by the first. Empty if the item is not
    /// signed.
    [[nodiscard]] virtual QList<TicketEntry> entries() const = 0;

    /// The bytes of the ticket that is attached; empty if there is none.
    [[nodiscard]] virtual QByteArray ticket() const = 0;

    /// Attaches a ticket as it is, in place of one that is there. The item is the old or the new one at every
    /// moment.
    [[nodiscard]] virtual platform::Outcome attach(const QByteArray &ticket) const = 0;

    /// Whether a ticket knows the item.
    [[nodiscard]] bool isNamedBy(const SignedTicket &ticket) const;
};

} // namespace toolchain::ticket
