#pragma once

#include "platform/posix/posixprocesslauncher.h"

#include <QDBusConnection>
#include <QDBusMessage>

#include <future>
#include <thread>

#include <gtest/gtest.h>

/// A bus of the test's own, with the application and the desktop as two peers on it.
class DesktopBus {
public:
    void start()
    {
        daemon = launcher.process(
            QStringLiteral("/usr/bin/dbus-daemon"),
            {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address=1")});
        ASSERT_TRUE(daemon->launch());
        std::promise<QByteArray> printed;
        auto line = printed.get_future();
        serving = std::thread([this, printed = std::move(printed)]() mutable {
            daemon->waitUntilExit([&](const QByteArray &chunk) { printed.set_value(chunk); },
                                  [](const QByteArray &) {});
        });
        const QString address = QString::fromUtf8(line.get()).trimmed();
        application = QDBusConnection::connectToBus(address, QStringLiteral("application"));
        desktop = QDBusConnection::connectToBus(address, QStringLiteral("desktop"));
        ASSERT_TRUE(application.isConnected() && desktop.isConnected());
    }

    void stop()
    {
        QDBusConnection::disconnectFromBus(QStringLiteral("application"));
        QDBusConnection::disconnectFromBus(QStringLiteral("desktop"));
        daemon->terminate();
        if (serving.joinable())
            serving.join();
    }

    void serve(const QString &name, const QString &path, QObject *object)
    {
        constexpr auto all = QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals
            | QDBusConnection::ExportAllProperties;
        ASSERT_TRUE(desktop.registerObject(path, object, all));
        ASSERT_TRUE(desktop.registerService(name));
    }

    /// Returns once the bus has taken all that the application asked of it.
    void settle() { roundTrip(application); }

    static void roundTrip(const QDBusConnection &connection)
    {
        const QString bus = QStringLiteral("org.freedesktop.DBus");
        const QDBusMessage reply = connection.call(QDBusMessage::createMethodCall(
            bus, QStringLiteral("/org/freedesktop/DBus"), bus, QStringLiteral("GetId")));
        ASSERT_EQ(reply.type(), QDBusMessage::ReplyMessage);
    }

    platform::PosixProcessLauncher launcher;
    QDBusConnection application{QStringLiteral("none")};
    QDBusConnection desktop{QStringLiteral("none")};

private:
    std::shared_ptr<platform::Process> daemon;
    std::thread serving;
};

class Desktop : public testing::Test, protected DesktopBus {
protected:
    void SetUp() override { start(); }
    void TearDown() override { stop(); }
};
