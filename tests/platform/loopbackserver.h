#pragma once

#include <QHash>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>
#include <QUrl>

/// An HTTP server on loopback, in a thread of its own, that answers each path with the raw bytes given for it
/// and then closes the connection.
class LoopbackServer {
public:
    explicit LoopbackServer(QHash<QByteArray, QByteArray> answers)
        : m_answers(std::move(answers))
    {
        m_server.moveToThread(&m_thread);
        m_thread.start();
        QMetaObject::invokeMethod(
            &m_server,
            [this] {
                m_server.listen(QHostAddress::LocalHost);
                m_port = m_server.serverPort();
                QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] { accept(); });
            },
            Qt::BlockingQueuedConnection);
    }

    ~LoopbackServer()
    {
        QMetaObject::invokeMethod(
            &m_server,
            [this] {
                m_server.close();
                qDeleteAll(m_server.findChildren<QTcpSocket *>());
                m_server.moveToThread(nullptr);
            },
            Qt::BlockingQueuedConnection);
        m_thread.quit();
        m_thread.wait();
    }

    QUrl url(const QString &path) const
    {
        return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(m_port).arg(path));
    }

    /// All requests so far, once the client has its answer.
    QByteArray requests()
    {
        QByteArray requests;
        QMetaObject::invokeMethod(
            &m_server, [&] { requests = m_requests; }, Qt::BlockingQueuedConnection);
        return requests;
    }

private:
    void accept()
    {
        while (QTcpSocket *socket = m_server.nextPendingConnection())
            QObject::connect(socket, &QTcpSocket::readyRead, &m_server, [this, socket] { answer(socket); });
    }

    void answer(QTcpSocket *socket)
    {
        const QByteArray request = socket->peek(64 * 1024);
        if (!request.contains("\r\n\r\n"))
            return;
        socket->readAll();
        m_requests += request;
        socket->write(m_answers.value(request.split(' ').value(1)));
        socket->disconnectFromHost();
    }

    const QHash<QByteArray, QByteArray> m_answers;
    QThread m_thread;
    QTcpServer m_server;
    quint16 m_port = 0;
    QByteArray m_requests;
};
