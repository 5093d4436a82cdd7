#include "dbus/privatebus.h"

#include "scripting/dbus/busnames.h"
#include "support/core.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString configuration = uR"(<busconfig>
  <type>session</type>
  <listen>unix:path=%1/bus</listen>
  <servicedir>%1/services</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
  <!-- what an ordinary session bus allows, in place of the lower limits of a system's -->
  <limit name="max_incoming_bytes">1000000000</limit>
  <limit name="max_outgoing_bytes">1000000000</limit>
  <limit name="max_message_size">1000000000</limit>
  <limit name="max_match_rules_per_connection">50000</limit>
  <limit name="max_replies_per_connection">50000</limit>
</busconfig>
)"_s;

void write(const QString &path, const QString &text)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(text.toUtf8());
}

class PrivateBus : public testing::Environment {
public:
    void SetUp() override
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QDir().mkpath(m_folder->filePath(u"services"_s));
        const QString file = m_folder->filePath(u"bus.conf"_s);
        write(file, configuration.arg(m_folder->path()));
        start();
        // Without the identity of this one daemon, which is another after its next start.
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + m_folder->filePath(u"bus"_s).toUtf8());
    }

    void TearDown() override { end(); }

    void start()
    {
        m_daemon.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_daemon.start(u"dbus-daemon"_s,
                       {u"--config-file="_s + m_folder->filePath(u"bus.conf"_s), u"--nofork"_s,
                        u"--nopidfile"_s, u"--print-address"_s});
        ASSERT_TRUE(m_daemon.waitForReadyRead()) << "dbus-daemon does not start";
        m_daemon.readAll();
    }

    void end()
    {
        m_daemon.kill();
        m_daemon.waitForFinished();
        QFile::remove(m_folder->filePath(u"bus"_s));
    }

    QString serviceFile() const { return m_folder->filePath(u"services/application.service"_s); }

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    QProcess m_daemon;
};

PrivateBus *const theBus = [] {
    auto *const bus = new PrivateBus;
    testing::AddGlobalTestEnvironment(bus); // which owns it from now on
    return bus;
}();

} // namespace

namespace privatebus {

void start()
{
    theBus->start();
}

void end()
{
    theBus->end();
}

void setActivation(const QString &commandLine)
{
    if (commandLine.isEmpty())
        QFile::remove(theBus->serviceFile());
    else
        write(theBus->serviceFile(), u"[D-BUS Service]\nName=%1\nExec=%2\n"_s.arg(bus::service, commandLine));
    const auto connection = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"reload"_s);
    connection.call(QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                                   u"org.freedesktop.DBus"_s, u"ReloadConfig"_s));
    QDBusConnection::disconnectFromBus(u"reload"_s);
}

} // namespace privatebus
