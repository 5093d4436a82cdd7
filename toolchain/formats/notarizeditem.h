#pragma once

#include "formats/ticket.h"

#include <memory>

namespace toolchain {

/// Something that the notary can approve and that a ticket can be attached to: a bundle, a disk image or a
/// package.
class NotarizedItem {
public:
    virtual ~NotarizedItem() = default;

    /// By which the notary knows the item; empty if it has no seal.
    [[nodiscard]] virtual QByteArray digest() const = 0;

    /// The ticket that is attached; nothing if there is none of this toolchain.
    [[nodiscard]] virtual std::optional<Ticket> ticket() const = 0;

    /// Attaches a ticket, in place of one that is there. Answers what went wrong, or an empty text.
    [[nodiscard]] virtual QString attach(const Ticket &ticket) = 0;
};

/// Recognises an item by what it holds, whatever it is called. Null for anything else.
[[nodiscard]] std::unique_ptr<NotarizedItem> openNotarizedItem(const QString &path);

/// Whether an item's ticket fits it or the notary of this machine has approved it.
[[nodiscard]] bool isApproved(const NotarizedItem &item);

} // namespace toolchain
