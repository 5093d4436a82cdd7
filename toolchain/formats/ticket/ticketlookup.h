#pragma once

#include <QByteArray>
#include <QString>

namespace toolchain::ticket {

/// How the ticket service answered for one record.
struct LookupAnswer {
    enum class Kind {
        found,
        notFound, ///< there is no ticket, or not yet
        unclear ///< no answer that could be understood
    };
    Kind kind = Kind::unclear;
    QByteArray ticket; ///< as it came
    QString reason; ///< the service's word, such as "Record not found"; null if it gave none
};

/// The body of the request for a record. Public document: Apple's CloudKit Web Services Reference, "Fetching
/// Records (records/lookup)".
[[nodiscard]] QByteArray lookupBody(const QString &recordName);

/// Reads the body of a reply with status 200. Fields that are not known are passed over.
[[nodiscard]] LookupAnswer readLookupReply(const QByteArray &body, const QString &recordName);

} // namespace toolchain::ticket
