#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>

#include <openssl/types.h>

#include "platform/result.h"

/// The ticket by which a notary vouches for an item: what stapling attaches. Apple has published no
/// description of the form; it was measured on tickets that Apple has delivered.
namespace toolchain::ticket {

/// Something that a ticket vouches for.
struct TicketEntry {
    quint8 hashType = 2; ///< 1 SHA-1, 2 SHA-256, as code directories have them
    QByteArray hash; ///< the first 20 bytes: of a code directory, or of the checksum of a package's table

    [[nodiscard]] bool operator==(const TicketEntry &) const = default;

    /// "2/2/" and the hash in hexadecimal digits: by which the service knows the ticket.
    [[nodiscard]] QString recordName() const;
};

/// A ticket taken apart. Its own bytes stay as they came.
struct SignedTicket {
    QList<QByteArray> certificates; ///< in DER form, the signer's first
    QList<TicketEntry> entries;
    quint32 flags = 0;
    QDateTime issued; ///< UTC
    QByteArray signedBytes; ///< all before the signature
    QByteArray signature; ///< ECDSA in DER form

    [[nodiscard]] bool vouchesFor(const TicketEntry &entry) const { return entries.contains(entry); }
    /// Whether the signature is the first certificate's key's over the bytes. Tells nothing about whom it
    /// belongs to.
    [[nodiscard]] bool isSignatureGood() const;
};

/// Whether bytes begin as a ticket does.
[[nodiscard]] bool looksLikeTicket(QByteArrayView bytes);

/// Takes a ticket apart. An error says what is wrong with it, without a name.
[[nodiscard]] platform::Result<SignedTicket> readTicket(const QByteArray &bytes);

/// A new ticket, signed with the P-256 key of the first certificate; `certificates` are the signer's and the
/// one that vouches for it. Fails for entries without 20 bytes and where the key does not sign.
[[nodiscard]] platform::Result<QByteArray> mintTicket(const QList<TicketEntry> &entries,
                                                      const QDateTime &issued,
                                                      const QList<QByteArray> &certificates, EVP_PKEY *key);

} // namespace toolchain::ticket
