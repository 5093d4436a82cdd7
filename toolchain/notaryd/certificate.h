#pragma once

#include <QByteArray>
#include <QString>

#include "platform/result.h"

namespace notaryd {

/// What the service shows of itself to those who connect.
struct ServerCertificate {
    QByteArray key; ///< PEM
    QByteArray chain; ///< PEM, the service's own certificate first
    QString authority; ///< PEM file of the authority that vouches for it
};

/// A new certificate for this machine's own names and for one address more, by a new authority. Neither's key
/// is kept on disk; the authority's certificate lies in the service's folder.
[[nodiscard]] platform::Result<ServerCertificate> serverCertificate(const QString &address);

} // namespace notaryd
