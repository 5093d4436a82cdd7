#pragma once

#include "scripting/dbus/busnames.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <gtest/gtest.h>

/// Has the application's name on a connection, and gives it up at the first call: an application that is
/// about to quit.
class QuittingApplication : public QDBusVirtualObject {
public:
    explicit QuittingApplication(QDBusConnection connection)
        : m_connection(std::move(connection))
    {
        EXPECT_TRUE(m_connection.registerVirtualObject(bus::applicationPath, this, QDBusConnection::SubPath));
        EXPECT_TRUE(m_connection.registerService(bus::service));
    }
    ~QuittingApplication() override { m_connection.unregisterObject(bus::applicationPath); }

    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        m_connection.unregisterService(bus::service);
        return connection.send(message.createReply());
    }

private:
    QDBusConnection m_connection;
};
