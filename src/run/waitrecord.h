#pragma once

#include "run/credentials.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <optional>

namespace sealwright {

/// A submission that the service has and whose verdict is awaited: what another process must know to go on
/// with it. No secret is in it.
struct WaitRecord {
    QString identifier; ///< the service's name for the upload
    QString folder; ///< path of the folder that holds it
    QString item; ///< the name in that folder of what gets the ticket
    QString original; ///< the name beside that folder of what the user chose
    QDateTime since; ///< when the service had the upload
    QString service; ///< the notary tool that was asked; a path
    Credentials credentials;
    bool logsToFile = false; ///< a log file is wanted
    QByteArray itemState; ///< what the item was like then; empty if that cannot be told

    bool isNone() const { return identifier.isEmpty(); }
    /// Where they are, or were. Paths.
    QString itemPath() const;
    QString originalPath() const;
};

/// As it is kept on disk.
[[nodiscard]] QByteArray toJson(const WaitRecord &record);
/// Nothing for what is none, be it damaged or somebody else's.
[[nodiscard]] std::optional<WaitRecord> waitRecordFromJson(const QByteArray &json);

} // namespace sealwright
