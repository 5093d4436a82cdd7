#pragma once

#include "toolchain/loopbacksocket.h"

#include <atomic>
#include <thread>

/// Stands on loopback between a client and a server, passes their bytes on, and tears connections down on the
/// wire, which no server can do to its own. One connection after the other, on a thread of its own.
class Relay {
public:
    enum class Role {
        wire, ///< passes bytes on from the first one
        proxy, ///< wants CONNECT before (RFC 9110, section 9.3.6)
        refusingProxy ///< answers 403 to it
    };

    /// The server is the one at this port of 127.0.0.1.
    Relay(quint16 server, Role role);
    ~Relay();
    Relay(const Relay &) = delete;
    Relay &operator=(const Relay &) = delete;

    [[nodiscard]] quint16 port() const { return m_socket.port(); }

    /// So many connections are reset, each after so many bytes from the client. Before the first connection.
    void resetAfter(qint64 bytes, int times);

    [[nodiscard]] int connections() const { return m_connections; }
    [[nodiscard]] int resets() const { return m_done; }
    /// From all clients.
    [[nodiscard]] qint64 bytesFromClient() const { return m_bytes; }

private:
    enum class Passed { on, ended, toBeReset };

    void serve();
    void serveOne(int client);
    [[nodiscard]] bool shakeHands(int client) const;
    [[nodiscard]] bool pump(int client, int server);
    [[nodiscard]] Passed passOn(int from, int to, qint64 *fromClient);

    const quint16 m_server;
    const Role m_role;
    const LoopbackSocket m_socket;
    qint64 m_resetAt = 0;
    int m_resets = 0;
    std::atomic<int> m_done = 0;
    std::atomic<int> m_connections = 0;
    std::atomic<qint64> m_bytes = 0;
    std::atomic<bool> m_isEnding = false;
    std::thread m_thread;
};
