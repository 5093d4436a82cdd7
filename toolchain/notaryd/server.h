#pragma once

#include "notaryd/certificate.h"
#include "notaryd/service.h"
#include "platform/result.h"

#include <chrono>

struct MHD_Daemon;

namespace notaryd {

struct ListenAddress {
    QString host; ///< a number
    quint16 port = 0; ///< 0: a free one
    int socket = -1; ///< one that listens there already
};

/// The sockets of the service (libmicrohttpd), one thread for each connection.
class Server {
public:
    explicit Server(Service &service);
    ~Server();
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    [[nodiscard]] platform::Outcome listen(const ListenAddress &address,
                                           const ServerCertificate &certificate);
    [[nodiscard]] quint16 port() const;

    /// For how long nobody has asked anything and no connection is open.
    [[nodiscard]] std::chrono::seconds idleFor() const;

private:
    Service &m_service;
    MHD_Daemon *m_daemon = nullptr;
};

} // namespace notaryd
