#include "toolchain/bundlebuilder.h"
#include "toolchain/diskimagefixture.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>

using namespace Qt::StringLiterals;
using bundlebuilder::readFile;
using bundlebuilder::writeFile;

namespace {

const QString listing =
    u"with timeout of 3 seconds\ntell application id \"com.c-command.DropDMG\" to name of every configuration\nend timeout"_s;

QString creation(const QString &file, const QString &configuration)
{
    return u"set theFile to \"%1\" as POSIX file\ntell application id \"com.c-command.DropDMG\"\nwith timeout of 600 seconds\nset theResult to create from theFile configuration name \"%2\"\nend timeout\nend tell\nreturn theResult"_s
        .arg(file, configuration);
}

class DropDmg : public DiskImageFixture {
protected:
    void SetUp() override
    {
        DiskImageFixture::SetUp();
        ASSERT_EQ(QProcess::execute(u"cp"_s, {u"-a"_s, toolRoot(), path(u"root"_s)}), 0);
        bundlebuilder::makeApp(app(), u"com.example.app"_s);
    }

    [[nodiscard]] QString app() const { return path(u"items/My App.app"_s); }
    [[nodiscard]] QString dropDmg() const { return path(u"root/Applications/DropDMG.app"_s); }

    void install() const
    {
        ASSERT_EQ(QProcess::execute(u"cp"_s, {u"-a"_s, path(u"root/Optional/DropDMG.app"_s), dropDmg()}), 0);
    }
    void addConfiguration(const QString &name) const
    {
        writeFile(path(u"data/DropDMG/Configurations/"_s) + name, "<plist/>");
    }

    [[nodiscard]] ToolResult execute(const QString &source) const
    {
        return run(u"env"_s,
                   {u"XDG_DATA_HOME="_s + path(u"data"_s), path(u"root/usr/bin/osascript"_s), u"-s"_s, u"s"_s,
                    u"-e"_s, source});
    }

    void expectFailure(const QString &source, const QString &message) const
    {
        const ToolResult result = execute(source);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.output, QString());
        EXPECT_EQ(result.error, message + u'\n');
    }
};

/// Counts what is posted under one name.
class Listener : public QObject {
    Q_OBJECT

public:
    explicit Listener(const QString &address)
        : m_bus(QDBusConnection::connectToBus(address, u"listener"_s))
    {
        m_bus.connect({}, u"/org/sealwright/DistributedNotifications"_s,
                      u"org.sealwright.DistributedNotifications"_s, u"Posted"_s, this, SLOT(posted(QString)));
    }
    ~Listener() override { QDBusConnection::disconnectFromBus(u"listener"_s); }

    int count = 0;

public Q_SLOTS:
    void posted(const QString &name) { count += name == u"com.c-command.DropDMG.ConfigurationsChanged"_s; }

private:
    QDBusConnection m_bus;
};

/// Serves the event loop until the listener has heard so many notifications; false if that takes too long.
bool hears(const Listener &listener, int count)
{
    QElapsedTimer timer;
    timer.start();
    while (listener.count < count && timer.elapsed() < 10'000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    return listener.count == count;
}

} // namespace

TEST_F(DropDmg, isNotInstalledUnlessSomebodyCopiesIt)
{
    addConfiguration(u"Plain.plist"_s);
    EXPECT_EQ(namesIn(path(u"root/Applications"_s)), (QStringList{u"TransporterApp.app"_s, u"Xcode.app"_s}));
    expectFailure(listing, u"execution error: Can’t get application id \"com.c-command.DropDMG\". (-1728)"_s);
}

TEST_F(DropDmg, listsTheConfigurationsOfTheFolder)
{
    install();
    EXPECT_EQ(execute(listing).output, u"{}\n"_s);
    for (const QString &name : {u"Item 2.plist"_s, u"Say \"hi\".plist"_s, u".hidden.plist"_s, u"notes.txt"_s})
        addConfiguration(name);
    const ToolResult result = execute(listing);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, u"{\"Item 2\", \"Say \\\"hi\\\"\"}\n"_s);
}

TEST_F(DropDmg, makesAnImageBesideTheFile)
{
    install();
    addConfiguration(u"Plain.plist"_s);
    const ToolResult result = execute(creation(app(), u"Plain"_s));
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    const QString image = path(u"items/My App.dmg"_s);
    EXPECT_EQ(result.output, u"POSIX file \"%1\"\n"_s.arg(image));
    EXPECT_EQ(readFile(unpacked(image) + u"/My App.app/Contents/MacOS/My App"_s),
              readFile(app() + u"/Contents/MacOS/My App"_s));
}

TEST_F(DropDmg, leavesAnImageThatIsThere)
{
    install();
    addConfiguration(u"Plain.plist"_s);
    writeFile(path(u"items/My App.dmg"_s), "precious");
    const ToolResult result = execute(creation(app(), u"Plain"_s));
    EXPECT_EQ(result.output, u"POSIX file \"%1\"\n"_s.arg(path(u"items/My App-2.dmg"_s)));
    EXPECT_EQ(readFile(path(u"items/My App.dmg"_s)), "precious");
}

TEST_F(DropDmg, anUnknownConfigurationOrFileIsAnError)
{
    install();
    addConfiguration(u"Plain.plist"_s);
    expectFailure(creation(app(), u"Other"_s),
                  u"execution error: DropDMG got an error: Can’t get configuration \"Other\". (-1728)"_s);
    expectFailure(creation(path(u"none.app"_s), u"Plain"_s),
                  u"execution error: File \"%1\" wasn’t found. (-43)"_s.arg(path(u"none.app"_s)));
    EXPECT_EQ(namesIn(path(u"items"_s)), QStringList{u"My App.app"_s});
}

TEST_F(DropDmg, aQuoteInANameBreaksTheScript)
{
    install();
    const QString complaint = u"syntax error: this stand-in does not understand the script (-2741)"_s;
    expectFailure(creation(app(), u"Say \"hi\""_s), complaint);
    expectFailure(u"tell application \"Finder\" to quit"_s, complaint);
    expectFailure(listing + u"\n\"more\""_s, complaint);
}

TEST_F(DropDmg, saysOnTheBusWhenAConfigurationComesOrGoes)
{
    install();
    QProcess daemon;
    daemon.start(u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--nopidfile"_s, u"--print-address"_s});
    ASSERT_TRUE(daemon.waitForReadyRead());
    const QString address = QString::fromLatin1(daemon.readLine()).trimmed();
    const auto application =
        start(u"env"_s,
              {u"XDG_DATA_HOME="_s + path(u"data"_s), u"DBUS_SESSION_BUS_ADDRESS="_s + address,
               dropDmg() + u"/Contents/MacOS/DropDMG"_s});
    ASSERT_TRUE(application->waitForReadyRead());
    const Listener listener(address);
    addConfiguration(u"Plain.plist"_s);
    EXPECT_TRUE(hears(listener, 1));
    addConfiguration(u"notes.txt"_s);
    ASSERT_TRUE(QFile::remove(path(u"data/DropDMG/Configurations/Plain.plist"_s)));
    EXPECT_TRUE(hears(listener, 2));
    application->terminate();
    application->waitForFinished();
    daemon.terminate();
    daemon.waitForFinished();
}

#include "dropdmgtest.moc"
