#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace toolchain {

/// What stapling leaves in an item: which seal was approved by which request. It is a note of this
/// toolchain in JSON, carries no signature, and means nothing to macOS.
struct Ticket {
    QString requestUUID;
    QByteArray sealDigest; ///< by which the notary knows the item, 64 lower-case hexadecimal digits
};

/// The ticket as JSON.
[[nodiscard]] QByteArray jsonOf(const Ticket &ticket);

/// Nothing for bytes of another kind, such as a real ticket.
[[nodiscard]] std::optional<Ticket> ticketFromJson(const QByteArray &json);

/// Writes a ticket whole, in place of what is there; a link is replaced and not followed. Answers what
/// went wrong, or an empty text.
[[nodiscard]] QString writeTicket(const QString &path, const Ticket &ticket);

/// Nothing if there is no file, or one of another kind, such as a real ticket.
[[nodiscard]] std::optional<Ticket> readTicket(const QString &path);

} // namespace toolchain
