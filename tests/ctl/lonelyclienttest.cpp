// The client where no application runs.

#include "ctl/ctl.h"
#include "dbus/privatebus.h"
#include "scripting/dbus/busnames.h"
#include "support/testhost.h"

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

/// Takes calls and never answers.
class MuteObject : public QDBusVirtualObject {
public:
    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &, const QDBusConnection &) override { return isAsked = true; }

    bool isAsked = false;
};

class LonelyClient : public testing::Test, protected LastRun {
protected:
    ~LonelyClient() override { privatebus::setActivation({}); }

    int run(const QStringList &words) { return runOn(host, words); }
    bool startsTheApplication(const QStringList &words)
    {
        QFile::remove(marker());
        EXPECT_EQ(run(words), 3) << error.toStdString();
        return QFile::exists(marker());
    }
    QString marker() const { return m_folder.filePath(u"started"_s); }

    TestHost host;

private:
    QTemporaryDir m_folder;
};

TEST_F(LonelyClient, saysThatNothingRuns)
{
    for (const QStringList &words :
         {QStringList{u"submit"_s, u"a"_s}, QStringList{u"documents"_s}, QStringList{u"windows"_s},
          QStringList{u"log"_s, u"a"_s}, QStringList{u"cancel"_s, u"a"_s}, QStringList{u"close"_s, u"a"_s},
          QStringList{u"open"_s, u"a"_s}, QStringList{u"get"_s, u"Name"_s}, QStringList{u"quit"_s},
          QStringList{u"staple"_s, u"a"_s}, QStringList{u"sign"_s, u"a"_s}, QStringList{u"prepare"_s, u"a"_s},
          QStringList{u"history"_s}, QStringList{u"clear-log"_s, u"a"_s}, QStringList{u"new"_s},
          QStringList{u"set"_s, u"AppleID"_s, u"a"_s}, QStringList{u"submit"_s, u"a"_s, u"--follow"_s}}) {
        EXPECT_EQ(run(words), 3) << words.join(u' ').toStdString();
        EXPECT_EQ(error, u"sealwrightctl: Sealwright is not running\n"_s);
    }
}

TEST_F(LonelyClient, tellsAnApplicationThatEndsFromOneThatIsSlow)
{
    MuteObject object;
    auto mute = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"mute"_s);
    ASSERT_TRUE(mute.registerVirtualObject(bus::applicationPath, &object));
    ASSERT_TRUE(mute.registerService(bus::service));
    Ctl ctl(host, {u"get"_s, u"Name"_s});
    host.runUntil([&object] { return object.isAsked; });
    mute = QDBusConnection(QString());
    QDBusConnection::disconnectFromBus(u"mute"_s);
    EXPECT_EQ(ctl.end(), 3);
    EXPECT_EQ(ctl.error, u"sealwrightctl: Sealwright has ended without an answer\n"_s);
}

TEST_F(LonelyClient, hasTheBusStartTheApplicationOnlyForWhatCanBeginThere)
{
    // A program that leaves a mark and never takes the name.
    privatebus::setActivation(u"/bin/sh -c 'touch %1; exit 1'"_s.arg(marker()));
    EXPECT_TRUE(startsTheApplication({u"submit"_s, u"a"_s}));
    EXPECT_TRUE(startsTheApplication({u"open"_s, u"a"_s}));
    EXPECT_TRUE(startsTheApplication({u"sign"_s, u"a"_s}));
    EXPECT_TRUE(startsTheApplication({u"history"_s}));
    EXPECT_TRUE(startsTheApplication({u"new"_s}));
    EXPECT_FALSE(startsTheApplication({u"set"_s, u"AppleID"_s, u"a"_s}));
    EXPECT_FALSE(startsTheApplication({u"documents"_s}));
    EXPECT_FALSE(startsTheApplication({u"windows"_s}));
    EXPECT_FALSE(startsTheApplication({u"submit"_s, u"a"_s, u"--document"_s, u"b"_s}));
    EXPECT_FALSE(startsTheApplication({u"quit"_s}));
    EXPECT_FALSE(startsTheApplication({u"log"_s, u"a"_s}));
    EXPECT_FALSE(startsTheApplication({u"get"_s, u"AppStatus"_s}));
}

TEST_F(LonelyClient, answersAboutItselfWithoutABus)
{
    EXPECT_EQ(run({u"--version"_s}), 0);
    EXPECT_TRUE(output.startsWith(u"sealwrightctl "_s));
    EXPECT_EQ(run({u"--help"_s}), 0);
    EXPECT_TRUE(output.startsWith(u"usage: sealwrightctl "_s));
    EXPECT_EQ(run({u"fly"_s}), 2);
    EXPECT_TRUE(error.startsWith(u"sealwrightctl: there is no command fly\n"_s));
    EXPECT_EQ(output, QString());
}

TEST_F(LonelyClient, saysThatThereIsNoBus)
{
    const QByteArray address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
    EXPECT_EQ(run({u"documents"_s}), 3);
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    EXPECT_EQ(error, u"sealwrightctl: there is no session bus\n"_s);
}
