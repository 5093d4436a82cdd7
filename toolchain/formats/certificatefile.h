#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include "formats/cryptography.h"
#include "platform/result.h"

namespace toolchain {

/// The certificates of a file in PEM form, as DER; none if it cannot be read.
[[nodiscard]] QList<QByteArray> readCertificateFile(const QString &path);
/// What bytes in PEM form hold under the name of certificates, as DER; none of it has been parsed.
[[nodiscard]] QList<QByteArray> certificatesInPem(const QByteArray &pem);
[[nodiscard]] QByteArray pemOf(const QList<QByteArray> &certificates);

/// Writes certificates in PEM form, and the folder if it is not there. Fails with the file's or
/// the folder's name.
[[nodiscard]] platform::Outcome writeCertificateFile(const QString &path,
                                                     const QList<QByteArray> &certificates);

/// Whether a server's certificate names all of these hosts and addresses; true for none.
[[nodiscard]] bool certificateAnswersFor(X509 *certificate, const QStringList &hosts);

} // namespace toolchain
