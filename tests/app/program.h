#pragma once

#include "dbus/busclient.h"
#include "dbus/privatebus.h"
#include "support/items.h"
#include "support/testhost.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <gtest/gtest.h>

/// The installed or built program itself, as a process with folders of its own: what it is set to, where it
/// keeps things and how it ends. While something is waited for, the event loop of the test runs.
class Program : public testing::Test {
protected:
    Program()
    {
        for (const char *const name : {"CONFIG", "DATA", "CACHE", "STATE"})
            environment.insert(QStringLiteral("XDG_%1_HOME").arg(QLatin1StringView(name)), folder(name));
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"),
                           folder("RUNTIME")); // without it there are warnings
        environment.insert(QStringLiteral("HOME"), folder("HOME"));
        items::makeFolder(folder("HOME")); // the trash of a home that is not there is that of the whole disk
    }
    ~Program() override { privatebus::setActivation({}); }

    QString folder(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    /// Writes the preferences: lines of the form "key=value".
    void setPreferences(const QStringList &lines) const
    {
        items::makeFile(folder("CONFIG") + QStringLiteral("/Sealwright/Sealwright.conf"),
                        (QStringLiteral("[General]\n") + lines.join(u'\n') + u'\n').toUtf8());
    }

    void start(QProcess &process, const QString &path, const QStringList &arguments = {}) const
    {
        process.setProcessEnvironment(environment);
        process.start(path, arguments);
        EXPECT_TRUE(process.waitForStarted());
    }
    /// Waits for the end; the exit status, or -1 if a signal ended it.
    int end(QProcess &process)
    {
        host.runUntil([&process] { return process.state() == QProcess::NotRunning; });
        return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }
    /// Ends a process that a test has left running.
    static void kill(QProcess &process)
    {
        process.kill();
        process.waitForFinished();
    }

    void waitUntilReady()
    {
        host.runUntil([this] {
            const QDBusMessage answer =
                client.tryToGet(bus::applicationPath, bus::applicationInterface, QStringLiteral("AppStatus"));
            return answer.type() == QDBusMessage::ReplyMessage
                && variantOf(answer) == QVariant(QStringLiteral("ready"));
        });
    }
    QStringList documents() { return client.getPaths(QStringLiteral("OrderedDocuments")); }
    void quit()
    {
        const QDBusMessage answer =
            client.call(bus::applicationPath, bus::desktopInterface, QStringLiteral("ActivateAction"),
                        {QStringLiteral("quit"), QVariantList(), QVariantMap()});
        EXPECT_EQ(errorOf(answer), QStringLiteral("no error"));
    }

    TestHost host; ///< not launched: its tools and its folder of items
    BusClient client{host};
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();

private:
    QTemporaryDir m_folder;
};
