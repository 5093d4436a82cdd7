#pragma once

#include <QByteArray>
#include <QString>

#include "platform/result.h"

namespace notaryd {

/// What the service shows of itself to those who connect.
struct ServerCertificate {
    QByteArray key; ///< PEM
    QByteArray chain; ///< PEM, the service's own certificate first
};

/// The PEM file with the certificate of the authority that vouches for the service.
[[nodiscard]] QString authorityFile();

/// A new certificate for this machine's own names and for one address more, by a new authority. Neither's key
/// is kept on disk; the authority's certificate lies in `authorityFile()`.
[[nodiscard]] platform::Result<ServerCertificate> serverCertificate(const QString &address);

} // namespace notaryd
