#include "examine/timestampserver.h"

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

TimestampServer::TimestampServer(const QString &keychainFolder)
{
    auto authority = toolchain::TimestampAuthority::open(keychainFolder);
    EXPECT_TRUE(authority) << authority.error().toStdString();
    m_authority = std::make_unique<toolchain::TimestampAuthority>(*std::move(authority));
    m_thread = std::thread([this] { serve(); });
}

TimestampServer::~TimestampServer()
{
    m_ends = true;
    m_socket.stopListening();
    m_thread.join();
}

QString TimestampServer::url() const
{
    return u"http://127.0.0.1:%1/"_s.arg(m_socket.port());
}

void TimestampServer::serve()
{
    while (!m_ends) {
        const int connection = m_socket.accepted();
        if (connection < 0)
            continue;
        answer(connection);
        close(connection);
    }
}

void TimestampServer::answer(int connection) const
{
    QByteArray request;
    qsizetype wanted = -1;
    char block[4096];
    while (wanted < 0 || request.size() < wanted) {
        const ssize_t length = read(connection, block, sizeof block);
        if (length <= 0)
            return;
        request.append(block, qsizetype(length));
        const qsizetype body = request.indexOf("\r\n\r\n") + 4;
        const qsizetype field = request.toLower().indexOf("content-length:");
        if (wanted < 0 && body > 3 && field >= 0)
            wanted = body + request.mid(field + 15, 12).trimmed().split('\r').first().toLongLong();
    }
    const QByteArray reply = m_authority->answer(request.mid(request.indexOf("\r\n\r\n") + 4));
    const QByteArray head =
        "HTTP/1.1 200 OK\r\nContent-Type: application/timestamp-reply\r\nConnection: close\r\n"
        "Content-Length: "
        + QByteArray::number(reply.size()) + "\r\n\r\n";
    for (const QByteArray &part : {head, reply})
        EXPECT_EQ(write(connection, part.constData(), std::size_t(part.size())), part.size());
}
