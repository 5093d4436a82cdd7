#include "toolchain/relay.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <string>

namespace {

constexpr int lookPause = 50; // milliseconds

sockaddr_in loopback(quint16 port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

int connectTo(quint16 port)
{
    const int descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = loopback(port);
    if (connect(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0)
        return descriptor;
    close(descriptor);
    return -1;
}

bool sendAll(int descriptor, const char *bytes, ssize_t length)
{
    for (ssize_t done = 0; done < length;) {
        const ssize_t sent = send(descriptor, bytes + done, std::size_t(length - done), MSG_NOSIGNAL);
        if (sent <= 0)
            return false;
        done += sent;
    }
    return true;
}

/// A socket that is closed without lingering answers with a reset.
void closeByReset(int descriptor)
{
    const linger none{.l_onoff = 1, .l_linger = 0};
    setsockopt(descriptor, SOL_SOCKET, SO_LINGER, &none, sizeof none);
    close(descriptor);
}

} // namespace

Relay::Relay(quint16 server, Role role)
    : m_server(server)
    , m_role(role)
    , m_thread([this] { serve(); })
{
}

Relay::~Relay()
{
    m_isEnding = true;
    m_thread.join();
}

void Relay::resetAfter(qint64 bytes, int times)
{
    m_resetAt = bytes;
    m_resets = times;
}

void Relay::serve()
{
    while (!m_isEnding) {
        pollfd watched{m_socket.descriptor(), POLLIN, 0};
        if (poll(&watched, 1, lookPause) <= 0)
            continue;
        const int client = m_socket.accepted();
        if (client >= 0)
            serveOne(client);
    }
}

void Relay::serveOne(int client)
{
    ++m_connections;
    const int server = shakeHands(client) ? connectTo(m_server) : -1;
    const bool isToBeReset = server >= 0 && pump(client, server);
    if (server >= 0)
        close(server);
    if (isToBeReset)
        closeByReset(client);
    else
        close(client);
}

bool Relay::shakeHands(int client) const
{
    if (m_role == Role::wire)
        return true;
    std::string head;
    for (char byte = 0; head.find("\r\n\r\n") == std::string::npos; head += byte) {
        if (recv(client, &byte, 1, 0) != 1)
            return false;
    }
    const bool isGood = m_role == Role::proxy && head.rfind("CONNECT ", 0) == 0;
    const std::string answer =
        isGood ? "HTTP/1.1 200 OK\r\n\r\n" : "HTTP/1.1 403 Forbidden\r\nContent-Length: 0\r\n\r\n";
    return sendAll(client, answer.data(), ssize_t(answer.size())) && isGood;
}

/// True if the connection is to be reset.
bool Relay::pump(int client, int server)
{
    qint64 fromClient = 0;
    while (!m_isEnding) {
        std::array<pollfd, 2> watched{pollfd{client, POLLIN, 0}, pollfd{server, POLLIN, 0}};
        if (poll(watched.data(), watched.size(), lookPause) <= 0)
            continue;
        Passed passed = watched[0].revents != 0 ? passOn(client, server, &fromClient) : Passed::on;
        if (passed == Passed::on && watched[1].revents != 0)
            passed = passOn(server, client, nullptr);
        if (passed != Passed::on)
            return passed == Passed::toBeReset;
    }
    return false;
}

Relay::Passed Relay::passOn(int from, int to, qint64 *fromClient)
{
    std::array<char, 64 * 1024> block;
    const ssize_t length = recv(from, block.data(), block.size(), 0);
    if (length <= 0)
        return Passed::ended;
    if (fromClient) {
        *fromClient += length;
        m_bytes += length;
        if (m_done < m_resets && *fromClient >= m_resetAt) {
            ++m_done;
            return Passed::toBeReset;
        }
    }
    return sendAll(to, block.data(), length) ? Passed::on : Passed::ended;
}
