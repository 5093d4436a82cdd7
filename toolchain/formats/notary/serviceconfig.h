#pragma once

#include <QString>
#include <QUrl>

#include "platform/result.h"

namespace toolchain::notary {

/// Where the notary service, its storage, its tickets and the time-stamp authority are.
struct ServiceConfig {
    QString api; ///< whole, with "/notary/v2", no slash at the end
    QString upload; ///< of an object: "https://{bucket}.HOST/{object}"
    QString region; ///< of the storage, for its request signatures
    QString tickets; ///< whole address of the lookup
    QString timestamp; ///< whole address of the time-stamp authority (RFC 3161)
    QString ca; ///< PEM file with certificates that are trusted beside the system's; may be empty
    QString proxy; ///< may be empty: then the environment's
    bool isLocal = false; ///< the service of this machine, which is started on demand
};

/// The folder of the service's own files: keys, certificates, locks, uploads.
[[nodiscard]] QString serviceFolder();

/// "notary/service.json" of the state folder.
[[nodiscard]] QString serviceFile();

/// What service.json and above it SEALWRIGHT_NOTARY_API, _UPLOAD, _REGION, _TICKETS, _TIMESTAMP and _CA name.
/// Without both it is the local service, whose addresses are empty until it has been started. Fails for a
/// file that is no JSON object and for an address that is neither https nor http on the loopback interface.
[[nodiscard]] platform::Result<ServiceConfig> readServiceConfig();

/// The configuration of one file; entries that are missing are Apple's.
[[nodiscard]] platform::Result<ServiceConfig> serviceConfigFrom(const QByteArray &json);

/// The form of service.json.
[[nodiscard]] QByteArray jsonOf(const ServiceConfig &config);

/// Apple's own addresses.
[[nodiscard]] ServiceConfig appleService();

/// The addresses of a service that is laid out as sealwright-notaryd is; `origin` is "https://HOST:PORT".
[[nodiscard]] ServiceConfig serviceAt(const QString &origin);

/// Keeps the choice of a person in service.json: "apple", "local", or the address of a service. Fails for
/// another word, and where it cannot be kept.
[[nodiscard]] platform::Outcome chooseService(const QString &choice);

/// Whether requests may go there: https, or http to 127.0.0.0/8, ::1 or localhost.
[[nodiscard]] bool isAcceptable(const QUrl &address);

/// Whether the host is this machine by name or number.
[[nodiscard]] bool isLoopback(const QString &host);

/// "HOST:PORT" with the scheme's port where the address names none; an IPv6 number in brackets.
[[nodiscard]] QString hostAndPort(const QString &address);

} // namespace toolchain::notary
