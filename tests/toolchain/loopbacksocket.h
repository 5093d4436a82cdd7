#pragma once

#include <QtGlobal>

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

/// A socket that listens on 127.0.0.1, at a port that nobody else has. Closed at the end.
class LoopbackSocket {
public:
    LoopbackSocket()
    {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        EXPECT_EQ(bind(m_descriptor, reinterpret_cast<sockaddr *>(&address), length), 0);
        EXPECT_EQ(listen(m_descriptor, 16), 0);
        EXPECT_EQ(getsockname(m_descriptor, reinterpret_cast<sockaddr *>(&address), &length), 0);
        m_port = ntohs(address.sin_port);
    }
    ~LoopbackSocket() { close(m_descriptor); }
    LoopbackSocket(const LoopbackSocket &) = delete;
    LoopbackSocket &operator=(const LoopbackSocket &) = delete;

    [[nodiscard]] int descriptor() const { return m_descriptor; }
    [[nodiscard]] quint16 port() const { return m_port; }

    /// Waits for a connection; below 0 when nobody is listening any more.
    [[nodiscard]] int accepted() const { return accept4(m_descriptor, nullptr, nullptr, SOCK_CLOEXEC); }
    /// Ends the waiting of another thread.
    void stopListening() const { shutdown(m_descriptor, SHUT_RDWR); }

private:
    const int m_descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    quint16 m_port = 0;
};
