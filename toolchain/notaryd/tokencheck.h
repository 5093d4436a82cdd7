#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

namespace notaryd {

/// Why the Authorization header's token is not accepted; empty if it is. Looks at its form, its key among
/// those that were enrolled in the folder, its times, and its signature (RFC 7519, RFC 7518 section 3.4).
[[nodiscard]] QString objectionToToken(const QByteArray &authorization, const QString &keyFolder,
                                       const QDateTime &now);

/// The identifier of the key that the header's token names, which may be any text; empty if it names none.
[[nodiscard]] QString keyIdIn(const QByteArray &authorization);

} // namespace notaryd
