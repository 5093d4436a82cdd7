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
/// and then closes the connection.
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

    /// All requests so far, once the client has its answer.
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
        socket->write(m_answers.value(request.split(' ').value(1)));
        socket->disconnectFromHost();
    }

    const QHash<QByteArray, QByteArray> m_answers;
    std::atomic<bool> m_isEnding = false;
    std::mutex m_mutex;
    QByteArray m_requests;
    quint16 m_port = 0;
    std::thread m_thread;
};
