// The program as it was built: a second start, the end without a notary tool, life without a bus or a
// display, and where it looks for its files.

#include "app/program.h"

#include "app/keychaincommands.h"
#include "dbus/quittingapplication.h"

#include <QDBusConnectionInterface>
#include <QDir>
#include <QRegularExpression>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

const QString program = QString::fromUtf8(SEALWRIGHT_PROGRAM);

class BuiltProgram : public Program {
protected:
    BuiltProgram()
    {
        environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
        setPreferences(
            {toolRoot, u"toolPause=0"_s, u"appleIDValue=dev@example.com"_s, u"appPassValue=notary"_s});
        const QString xcode = host.tools.root() + u"/Applications/Xcode.app/Contents"_s;
        items::makeInfo(xcode, u"Xcode"_s, u"com.apple.dt.Xcode"_s);
        items::makeFile(xcode + u"/MacOS/Xcode"_s, "#!/bin/sh\n", true);
    }
    ~BuiltProgram() override { kill(process); }

    void start() { Program::start(process, program); }
    void startAndWait()
    {
        start();
        waitUntilReady();
    }
    void quitAndExpectSuccess()
    {
        quit();
        EXPECT_EQ(end(process), 0);
    }
    void removeXcode() const { QDir(host.tools.root() + u"/Applications"_s).removeRecursively(); }
    void removeDisplay()
    {
        for (const QString &name : {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s})
            environment.remove(name);
    }

    QVariant ofApplication(const QString &name)
    {
        return client.get(bus::applicationPath, bus::applicationInterface, name);
    }

    const QString toolRoot = u"toolRoot="_s + host.tools.root();
    QProcess process;
};

} // namespace

TEST_F(BuiltProgram, tellsTheCommitThatItWasBuiltFromAndOpensNothing)
{
    Program::start(process, program, {u"--version"_s});
    EXPECT_EQ(end(process), 0);
    static const QRegularExpression line(
        u"\\Asealwright [0-9.]+ \\(([0-9a-f]{10}(-dirty)?|unknown)\\)\\n\\z"_s);
    const QString output = QString::fromUtf8(process.readAllStandardOutput());
    EXPECT_TRUE(line.match(output).hasMatch()) << output.toStdString();
}

TEST_F(BuiltProgram, isReadyWithOneDocumentAndQuitsOnlyWhenTold)
{
    startAndWait();
    ASSERT_EQ(documents().size(), 1);
    client.call(documents().first(), bus::documentInterface, u"Close"_s);
    host.runUntil([this] { return documents().isEmpty(); });
    waitUntilReady();
    quitAndExpectSuccess();
}

class SteeredProgram : public BuiltProgram, public testing::WithParamInterface<const char *> { };

TEST_P(SteeredProgram, goesOnWhenItsLastWindowIsClosedAndNoDocumentIsOpen)
{
    environment.insert(u"STEERED_ITEM"_s, QString::fromUtf8(GetParam()));
    Program::start(process, QString::fromUtf8(STEERED_PROGRAM));
    QByteArray said;
    host.runUntil([&] {
        said += process.readAllStandardOutput();
        return said.endsWith("closed\n") || process.state() == QProcess::NotRunning;
    });
    ASSERT_EQ(process.state(), QProcess::Running);
    EXPECT_EQ(said, "closed\n");
    EXPECT_TRUE(documents().isEmpty());
    quitAndExpectSuccess();
}

INSTANTIATE_TEST_SUITE_P(Windows, SteeredProgram, testing::Values("About Sealwright", "Settings…"),
                         [](const auto &row) { return row.index == 0 ? "about" : "settings"; });

TEST_F(BuiltProgram, withoutSettingsOfAPersonHasTheRegisteredOnes)
{
    setPreferences({toolRoot});
    startAndWait();
    EXPECT_EQ(ofApplication(u"PollingDelay"_s), QVariant(30.0));
    EXPECT_EQ(ofApplication(u"ErrorRetryLimit"_s).toInt(), 1000);
    EXPECT_EQ(ofApplication(u"LogClearing"_s), QVariant(true));
    EXPECT_EQ(ofApplication(u"SkipEnclosures"_s), QVariant(false));
    EXPECT_EQ(ofApplication(u"AllowEvents"_s), QVariant(true));
    EXPECT_EQ(ofApplication(u"AllowFrameworks"_s), QVariant(true));
    EXPECT_EQ(ofApplication(u"AllowCamera"_s), QVariant(false)) << "of those that have none";
    quitAndExpectSuccess();
}

TEST_F(BuiltProgram, quitsAtOnceAndLeavesARunningToolToItself)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    host.tools.answerRun(u"codesign"_s, 1, {.hangs = true});
    startAndWait();
    const QDBusPendingCall lost =
        client.beginSubmit({{u"at"_s, QUrl::fromLocalFile(host.item(u"Foo.app"_s)).toString()}});
    host.runUntil([this] { return !host.tools.callsOf(u"codesign"_s).isEmpty(); });
    quitAndExpectSuccess();
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Working"_s, u"Foo.app"_s})) << "nothing is cancelled";
    host.tools.release(u"codesign"_s, 1);
    host.runUntil([this] { return host.tools.hasGoneOn(u"codesign"_s, 1); });
}

class EndingSignal : public BuiltProgram, public testing::WithParamInterface<int> { };

TEST_P(EndingSignal, isTheLastThingThatTheLogOfARunTells)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    host.tools.answerRun(u"codesign"_s, 1, {.hangs = true});
    startAndWait();
    const QDBusPendingCall lost =
        client.beginSubmit({{u"at"_s, QUrl::fromLocalFile(host.item(u"Foo.app"_s)).toString()}});
    host.runUntil([this] { return !host.tools.callsOf(u"codesign"_s).isEmpty(); });
    ::kill(static_cast<pid_t>(process.processId()), GetParam());
    EXPECT_EQ(end(process), -1) << "whoever waits for it sees the signal";
    const QString name = GetParam() == SIGTERM ? u"SIGTERM"_s : u"SIGINT"_s;
    const QString log = host.text(u"Foo - Working/Submission Log.txt"_s);
    EXPECT_TRUE(log.endsWith(u": Sealwright has been ended by %1 while this was going on.\n"_s.arg(name)))
        << log.toStdString();
    host.tools.release(u"codesign"_s, 1);
    host.runUntil([this] { return host.tools.hasGoneOn(u"codesign"_s, 1); });
}

INSTANTIATE_TEST_SUITE_P(Signals, EndingSignal, testing::Values(SIGTERM, SIGINT),
                         [](const auto &row) { return row.param == SIGTERM ? "SIGTERM" : "SIGINT"; });

TEST_F(BuiltProgram, runsTheToolsBelowTheRootThatThePreferencesName)
{
    startAndWait();
    EXPECT_EQ(host.tools.order(), (QStringList{u"security"_s, u"altool-h"_s}));
    quitAndExpectSuccess();
}

TEST_F(BuiltProgram, carriesAnItemThroughAndPutsWhatIsInTheWayIntoThePersonsTrash)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    items::makeFile(host.item(u"Foo - Submitted/earlier"_s), "text");
    startAndWait();
    const QDBusMessage answer = client.end(client.beginSubmit(
        {{u"at"_s, QUrl::fromLocalFile(host.item(u"Foo.app"_s)).toString()}, {u"skippingStapling"_s, true}}));
    EXPECT_EQ(
        variantOf(answer),
        QVariant(QUrl::fromLocalFile(host.item(u"Foo - Submitted/Foo.app"_s)).toString(QUrl::FullyEncoded)));
    EXPECT_TRUE(QFile::exists(folder("DATA") + u"/Trash/files/Foo - Submitted/earlier"_s));
    quitAndExpectSuccess();
}

TEST_F(BuiltProgram, takesItsTemporaryFilesWithIt)
{
    items::makeFolder(folder("TMP"));
    environment.insert(u"TMPDIR"_s, folder("TMP"));
    items::makeFile(host.item(u"Foo.pkg"_s), "package");
    host.tools.answer(u"security"_s,
                      {.output = "1) AA \"Developer ID Application: Example (A1B2C3D4E5)\"\n"
                                 "2) BB \"Developer ID Installer: Example (A1B2C3D4E5)\"\n"});
    host.tools.answer(u"spctl"_s, {.output = "rejected\nsource=no usable signature\n"});
    host.tools.answer(u"productsign"_s, {.status = 1, .error = "no identity"});
    startAndWait();
    const QDBusMessage answer =
        client.end(client.beginSubmit({{u"at"_s, QUrl::fromLocalFile(host.item(u"Foo.pkg"_s)).toString()}}));
    EXPECT_EQ(host.tools.order().last(), u"productsign"_s) << qPrintable(errorOf(answer));
    const auto temporaryItems = [this] {
        return QDir(folder("TMP")).entryList({u".replacement-*"_s}, QDir::AllEntries | QDir::Hidden);
    };
    EXPECT_EQ(temporaryItems().size(), 1);
    quitAndExpectSuccess();
    EXPECT_EQ(temporaryItems(), QStringList());
}

class KilledProgram : public BuiltProgram, public testing::WithParamInterface<const char *> {
protected:
    QDBusPendingCall beginSubmit()
    {
        return client.beginSubmit({{u"at"_s, QUrl::fromLocalFile(host.item(u"Foo.app"_s)).toString()},
                                   {u"skippingStapling"_s, true}});
    }
};

TEST_P(KilledProgram, leavesTheItemAsItWasAndWorksOverWhatIsLeftAtItsNextStart)
{
    const QString tool = QString::fromLatin1(GetParam());
    items::makeBundle(host.item(u"Foo.app"_s));
    const QByteArray fingerprint = items::fingerprint(host.item(u"Foo.app"_s));
    host.tools.answerRun(tool, 1, {.hangs = true});
    startAndWait();
    const QDBusPendingCall lost = beginSubmit();
    host.runUntil([&] { return host.tools.callsOf(tool).size() == 1; });
    kill(process);
    host.tools.release(tool, 1);
    EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), fingerprint);
    startAndWait();
    EXPECT_EQ(errorOf(client.end(beginSubmit())), u"no error"_s);
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Submitted"_s, u"Foo.app"_s}));
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), fingerprint);
    quitAndExpectSuccess();
}

INSTANTIATE_TEST_SUITE_P(WhileAToolRuns, KilledProgram,
                         testing::Values("altool--notarization-history", "xattr", "codesign", "ditto",
                                         "altool--notarize-app"),
                         [](const auto &row) {
                             return QString::fromLatin1(row.param).section(u'-', -1).toStdString();
                         });

TEST_F(BuiltProgram, startedASecondTimeEndsAndActivatesTheFirst)
{
    startAndWait();
    client.call(documents().first(), bus::documentInterface, u"Close"_s);
    host.runUntil([this] { return documents().isEmpty(); });
    QProcess second;
    Program::start(second, program);
    EXPECT_EQ(end(second), 0);
    EXPECT_EQ(documents().size(), 1) << "the activation opens a document where there is none";
    quitAndExpectSuccess();
}

TEST_F(BuiltProgram, startedWhileAnotherQuitsTakesItsPlace)
{
    BusClient other(host);
    const QuittingApplication quitting(other.connection());
    start();
    host.runUntil([&other] {
        return other.connection().interface()->serviceOwner(bus::service).value()
            != other.connection().baseService();
    });
    waitUntilReady();
    EXPECT_EQ(documents().size(), 1);
    quitAndExpectSuccess();
    EXPECT_FALSE(process.readAllStandardError().contains("sealwright: ")) << "it has the bus";
}

TEST_F(BuiltProgram, withoutANotaryToolSaysSoOnStandardErrorAndEndsWithStatusOne)
{
    removeXcode();
    start();
    EXPECT_EQ(end(process), 1);
    const QString error = QString::fromUtf8(process.readAllStandardError());
    EXPECT_TRUE(error.startsWith(u"Xcode or Transporter Not Found\nNotarization cannot be performed "_s))
        << error.toStdString();
    EXPECT_TRUE(error.endsWith(u"\n\nSealwright will now quit.\n"_s)) << error.toStdString();
}

TEST_F(BuiltProgram, withoutABusSaysSoAndRunsAllTheSame)
{
    environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, u"unix:path=/nonexistent/bus"_s);
    start();
    host.runUntil([this] { return !host.tools.callsOf(u"altool-h"_s).isEmpty(); });
    EXPECT_EQ(process.state(), QProcess::Running);
    const QByteArray error = process.readAllStandardError();
    EXPECT_TRUE(error.startsWith("sealwright: ")) << error.constData();
}

TEST_F(BuiltProgram, startsWithoutADisplay)
{
    removeDisplay();
    startAndWait();
    quitAndExpectSuccess();
}

TEST_F(BuiltProgram, withoutADisplayAsWellSaysThatThereIsNoNotaryTool)
{
    removeDisplay();
    removeXcode();
    start();
    EXPECT_EQ(end(process), 1);
}

TEST_F(BuiltProgram, startedOnDemandOpensTheItemsAndNoEmptyDocument)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    const QStringList cleared{u"-u"_s, u"DISPLAY"_s,        u"-u"_s, u"WAYLAND_DISPLAY"_s,
                              u"-u"_s, u"QT_QPA_PLATFORM"_s};
    privatebus::setActivation(u"/usr/bin/env %1 XDG_CONFIG_HOME='%2' SEALWRIGHT_FAKE_ROOT='%3' '%4'"_s.arg(
        cleared.join(u' '), folder("CONFIG"), host.tools.root(), program));
    const QDBusMessage answer =
        client.call(bus::applicationPath, bus::desktopInterface, u"Open"_s,
                    {QStringList{QUrl::fromLocalFile(host.item(u"Foo.app"_s)).toString()}, QVariantMap()});
    EXPECT_EQ(errorOf(answer), u"no error"_s);
    waitUntilReady();
    ASSERT_EQ(documents().size(), 1);
    EXPECT_EQ(client.get(documents().first(), bus::documentInterface, u"DocStatus"_s),
              QVariant(u"interacting"_s));
    quit();
    host.runUntil([this] { return !client.connection().interface()->isServiceRegistered(bus::service); });
}

// The new start after the first steps

namespace {

class NewStart : public BuiltProgram {
protected:
    NewStart()
    {
        setPreferences({toolRoot, u"toolPause=0"_s});
        host.tools.add(u"/usr/bin/sealwright-keychain"_s);
        for (const int run : {1, 2}) // of the launch, and of the sheet that comes up
            host.tools.answerRun(u"security"_s, run, {.output = "     0 valid identities found\n"});
        host.tools.answer(u"security"_s,
                          {.output = "  1) 0A \"Developer ID Application: " + name.toUtf8()
                               + "\"\n     1 valid identities found\n"});
    }

    enum class Asking { startsNothing, startsWhatIsMissing };

    /// Until the bus has an application with the identity that the first start made.
    void waitForNewStart(Asking asking = Asking::startsNothing)
    {
        host.runUntil([this, asking] {
            QDBusMessage question = QDBusMessage::createMethodCall(
                bus::service, bus::applicationPath, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
            question.setAutoStartService(asking == Asking::startsWhatIsMissing);
            question << bus::applicationInterface << u"DeveloperIdentities"_s;
            const QDBusMessage answer = client.connection().call(question);
            return answer.type() == QDBusMessage::ReplyMessage
                && variantOf(answer).toStringList().contains(name);
        });
        waitUntilReady();
    }
    /// Has the bus start the program when somebody asks for it, and asks.
    void startByTheBus()
    {
        privatebus::setActivation(
            u"/usr/bin/env QT_QPA_PLATFORM=offscreen XDG_CONFIG_HOME='%1' SEALWRIGHT_FAKE_ROOT='%2' '%3'"_s
                .arg(folder("CONFIG"), host.tools.root(), QString::fromUtf8(STEERED_SETUP)));
        client.call(bus::applicationPath, bus::desktopInterface, u"Activate"_s, {QVariantMap()});
    }
    void quitAndExpectNobody()
    {
        EXPECT_EQ(documents().size(), 1);
        quit();
        host.runUntil([this] { return !client.connection().interface()->isServiceRegistered(bus::service); });
    }
    uint ownerOfTheName() { return client.connection().interface()->servicePid(bus::service).value(); }

    const QString name = keychain::withTeam(u"Practice"_s);
};

} // namespace

TEST_F(NewStart, comesBackByItselfUnderTheSameNumberWithWhatWasAdded)
{
    Program::start(process, QString::fromUtf8(STEERED_SETUP));
    waitForNewStart();
    EXPECT_EQ(process.state(), QProcess::Running) << "whoever started it sees no end";
    EXPECT_EQ(qint64(ownerOfTheName()), process.processId()) << "it has taken the bus again";
    ASSERT_EQ(documents().size(), 1);
    EXPECT_EQ(client.get(documents().first(), bus::documentInterface, u"ActiveIdentity"_s), QVariant(name));
    EXPECT_EQ(client.get(documents().first(), bus::documentInterface, u"AppleID"_s),
              QVariant(u"practice@localhost"_s));
    EXPECT_EQ(process.readAllStandardOutput(), "setupPractice\npracticeButton\n") << "asked once";
    quitAndExpectSuccess();
}

TEST_F(NewStart, comesBackAlsoWhereTheBusStartedIt)
{
    startByTheBus();
    const uint before = ownerOfTheName();
    ASSERT_NE(before, 0U);
    waitForNewStart();
    EXPECT_EQ(ownerOfTheName(), before);
    quitAndExpectNobody();
}

TEST_F(NewStart, isOneApplicationAlsoForWhoAsksWhileTheNameIsFree)
{
    startByTheBus();
    waitForNewStart(Asking::startsWhatIsMissing); // for whom the bus may start another one
    quitAndExpectNobody();
}
