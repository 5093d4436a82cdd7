#include "toolchain/httpanswers.h"

#include <gtest/gtest.h>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int patienceInMilliseconds = 5'000;

/// Waits for bytes to read; false if none come or the connection ends.
bool readMore(int connection, QByteArray &bytes)
{
    pollfd waiting{connection, POLLIN, 0};
    char buffer[4096];
    if (poll(&waiting, 1, patienceInMilliseconds) != 1)
        return false;
    const ssize_t count = read(connection, buffer, sizeof buffer);
    if (count > 0)
        bytes.append(buffer, count);
    return count > 0;
}

/// The body of a request; empty if it does not come whole.
QByteArray readBody(int connection)
{
    QByteArray request;
    while (!request.contains("\r\n\r\n")) {
        if (!readMore(connection, request))
            return {};
    }
    const qsizetype bodyAt = request.indexOf("\r\n\r\n") + 4;
    const qsizetype lengthAt = request.toLower().indexOf("content-length:") + 15;
    const qsizetype length =
        request.mid(lengthAt, request.indexOf("\r\n", lengthAt) - lengthAt).trimmed().toLongLong();
    while (request.size() < bodyAt + length) {
        if (!readMore(connection, request))
            return {};
    }
    return request.mid(bodyAt, length);
}

void writeAll(int connection, const QByteArray &bytes)
{
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t count = send(connection, bytes.constData() + done, bytes.size() - done, MSG_NOSIGNAL);
        if (count <= 0)
            return;
        done += count;
    }
}

} // namespace

HttpAnswers::HttpAnswers(std::function<QByteArray(const QByteArray &)> answer, Manner manner)
    : m_answer(std::move(answer))
    , m_manner(manner)
    , m_thread([this] { serve(); })
{
}

HttpAnswers::~HttpAnswers()
{
    m_isEnding = true;
    m_socket.stopListening();
    m_thread.join();
}

QString HttpAnswers::url() const
{
    return u"http://127.0.0.1:%1/"_s.arg(m_socket.port());
}

void HttpAnswers::serve()
{
    while (!m_isEnding) {
        const int connection = m_socket.accepted();
        if (connection < 0)
            return;
        serveOne(connection);
        close(connection);
    }
}

void HttpAnswers::serveOne(int connection) const
{
    const QByteArray body = readBody(connection);
    QByteArray more;
    if (m_manner == Manner::silent) {
        static_cast<void>(readMore(connection, more)); // until the other side gives up
        return;
    }
    const QByteArray answer = m_answer(body);
    const QByteArray status = m_manner == Manner::refusing ? "503 Service Unavailable" : "200 OK";
    writeAll(connection,
             "HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(answer.size())
                 + "\r\nConnection: close\r\n\r\n" + answer);
}
