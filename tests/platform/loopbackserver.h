#pragma once

#include <QEventLoop>
#include <QHash>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <QUrl>

#include <atomic>
#include <future>
#include <mutex>
#include <thread>

/// An HTTP server on loopback, in a thread of its own, that answers each path with the raw bytes given for it
/// and then closes the connection. It may be told to hold the last byte back.
class LoopbackServer {
public:
    explicit LoopbackServer(QHash<QByteArray, QByteArray> answers)
        : m_answers(std::move(answers))
    {
        std::promise<quint16> port;
        auto known = port.get_future();
        m_thread = std::thread([this, port = std::move(port)]() mutable { serve(port); });
        m_port = known.get();
    }

    ~LoopbackServer()
    {
        m_isEnding = true;
        m_thread.join();
    }

    QUrl url(const QString &path) const
    {
        return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(m_port).arg(path));
    }

    /// From now on all but the last byte of each answer is sent, until `release`.
    void hold() { m_isHolding = true; }
    void release() { m_isHolding = false; }

    /// All requests so far, once the client has its answer, or what there is of it.
    QByteArray requests()
    {
        const std::lock_guard lock(m_mutex);
        return m_requests;
    }

private:
    void serve(std::promise<quint16> &port)
    {
        QTcpServer server;
        QEventLoop loop;
        QTimer end;
        QObject::connect(&server, &QTcpServer::newConnection, &loop, [&] {
            while (QTcpSocket *socket = server.nextPendingConnection())
                QObject::connect(socket, &QTcpSocket::readyRead, &loop, [this, socket] { answer(socket); });
        });
        QObject::connect(&end, &QTimer::timeout, &loop, [&] {
            if (m_isEnding)
                loop.quit();
            if (!m_isHolding)
                sendRests();
        });
        server.listen(QHostAddress::LocalHost);
        port.set_value(server.serverPort());
        end.start(10); // milliseconds
        loop.exec();
    }

    void answer(QTcpSocket *socket)
    {
        const QByteArray request = socket->peek(64 * 1024);
        if (!request.contains("\r\n\r\n"))
            return;
        socket->readAll();
        {
            const std::lock_guard lock(m_mutex);
            m_requests += request;
        }
        const QByteArray bytes = m_answers.value(request.split(' ').value(1));
        if (m_isHolding) {
            socket->write(bytes.chopped(1));
            m_rests.append({socket, bytes.last(1)});
        } else {
            socket->write(bytes);
            socket->disconnectFromHost();
        }
    }

    void sendRests()
    {
        for (const auto &[socket, rest] : std::exchange(m_rests, {})) {
            socket->write(rest);
            socket->disconnectFromHost();
        }
    }

    const QHash<QByteArray, QByteArray> m_answers;
    std::atomic<bool> m_isEnding = false;
    std::atomic<bool> m_isHolding = false;
    QList<std::pair<QTcpSocket *, QByteArray>> m_rests; // held back; of the server's thread
    std::mutex m_mutex;
    QByteArray m_requests;
    quint16 m_port = 0;
    std::thread m_thread;
};
