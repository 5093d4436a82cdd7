// The programs of the notary as a person meets them: command lines, names of files, folders and disks that
// give no room, services that end in the middle.

#include "toolchain/bundlebuilder.h"
#include "toolchain/loopbacksocket.h"
#include "toolchain/notaryfixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QUrl>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <memory>
#include <vector>

using namespace Qt::StringLiterals;
using bundlebuilder::readFile;
using bundlebuilder::writeFile;

namespace {

const QString notaryd = u"/usr/bin/sealwright-notaryd"_s;

QString addressOf(const LoopbackSocket &socket)
{
    return u"127.0.0.1:%1"_s.arg(socket.port());
}

/// Words of a command line, and what is to come of them.
struct Use {
    QStringList words;
    int status;
    QString said;
};

class NotaryUse : public NotaryFixture {
protected:
    void expect(const QString &tool, const QList<Use> &uses) const
    {
        for (const Use &use : uses) {
            const ToolResult result = run(tool, use.words);
            EXPECT_EQ(result.status, use.status) << use.words.join(u' ').toStdString();
            EXPECT_EQ(result.output, QString()) << use.words.join(u' ').toStdString();
            EXPECT_TRUE(result.error.contains(use.said)) << result.error.toStdString();
        }
    }

    /// What the service has written down of itself.
    [[nodiscard]] QJsonObject address() const
    {
        return QJsonDocument::fromJson(readFile(statePath(u"notary/service/address.json"_s))).object();
    }
    [[nodiscard]] pid_t process() const { return pid_t(address()[u"pid"].toInteger()); }

    void killService() const
    {
        const pid_t killed = process();
        ASSERT_GT(killed, 1);
        ASSERT_EQ(kill(killed, SIGKILL), 0);
        EXPECT_TRUE(waitUntil([killed] { // one whose parent does not ask for it stays as a name
            QFile line(u"/proc/%1/cmdline"_s.arg(killed));
            return !line.open(QIODevice::ReadOnly) || line.readAll().isEmpty();
        }));
    }

    [[nodiscard]] QStringList uploads() const
    {
        return QDir(statePath(u"notary/uploads"_s)).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    }
};

} // namespace

TEST_F(NotaryUse, aCommandLineOfTheKeychainThatIsNotWholeIsRefusedInWords)
{
    constexpr int wrongUse = 64;
    expect(keychain,
           {{{}, wrongUse, u"sealwright-keychain: a command is needed\nUsage: "_s},
            {{u"frobnicate"_s}, wrongUse, u"there is no command 'frobnicate'"_s},
            {{u"--frobnicate"_s}, 2, u"unrecognized option '--frobnicate'"_s},
            {{u"add-api-key"_s}, wrongUse, u"add-api-key needs ITEM\n"_s},
            {{u"add-api-key"_s, u"item"_s}, wrongUse, u"add-api-key needs FILE.p8\n"_s},
            {{u"add-api-key"_s, QString(), u"file"_s}, wrongUse, u"add-api-key needs ITEM\n"_s},
            {{u"add-api-key"_s, u"item"_s, u"--key-id"_s}, wrongUse, u"option '--key-id' requires a value"_s},
            {{u"add-api-key"_s, u"a"_s, u"b"_s, u"c"_s}, wrongUse, u"unexpected argument 'c'"_s},
            {{u"add-password"_s}, wrongUse, u"add-password needs ITEM\n"_s},
            {{u"make-api-key"_s}, wrongUse, u"make-api-key needs ITEM\n"_s},
            {{u"make-api-key"_s, u"a"_s, u"--key-id"_s, u"B"_s},
             wrongUse,
             u"make-api-key takes no option '--key-id'"_s},
            {{u"status"_s, u"--name"_s, u"x"_s}, wrongUse, u"status takes no option '--name'"_s},
            {{u"status"_s, u"more"_s}, wrongUse, u"unexpected argument 'more'"_s},
            {{u"use-store"_s}, wrongUse, u"use-store needs secret-service or file"_s},
            {{u"use-store"_s, u"nowhere"_s}, wrongUse, u"no store 'nowhere'"_s},
            {{u"import-token"_s}, wrongUse, u"import-token needs PKCS11-URI"_s},
            {{u"make-identity"_s}, wrongUse, u"a name is needed"_s},
            {{u"use-notary"_s, u"apple"_s, u"local"_s}, wrongUse, u"unexpected argument 'local'"_s},
            {{u"add-api-key"_s, u"item"_s, u"none.p8"_s}, 1, u"none.p8: No such file or directory"_s},
            {{u"add-api-key"_s, u"item"_s, path(u"."_s)}, 1, u"is a directory"_s},
            {{u"unlock"_s, u"--passphrase-file"_s, u"none"_s}, 0, u"the keychain is under no passphrase"_s},
            {{u"set-passphrase"_s, u"--passphrase-file"_s, u"none"_s},
             1,
             u"none: No such file or directory"_s}});
}

TEST_F(NotaryUse, anAddressThatIsNoneIsNamedWithoutItsSecrets)
{
    const QByteArray before = readFile(statePath(u"notary/service.json"_s));
    expect(
        keychain,
        {{{u"use-notary"_s, u"https://h:99999"_s}, 1, u"'https://h:99999' is neither apple nor local"_s},
         {{u"use-notary"_s, u"https://h:0"_s}, 1, u"'https://h:0' is neither"_s},
         {{u"use-notary"_s, u"https://a b"_s}, 1, u"'https://a b' is neither"_s},
         {{u"use-notary"_s, u"https://[::1"_s}, 1, u"'https://[::1' is neither"_s},
         {{u"use-notary"_s, u"https://me:secret@h"_s}, 1, u"'https://h' is neither"_s},
         {{u"use-notary"_s, u"https://me:secret@h:x/"_s}, 1, u"'https://h:x/' is neither"_s},
         {{u"use-notary"_s, u"https://h/?key=secret"_s}, 1, u"'https://h/' is neither"_s},
         {{u"use-notary"_s, u"https://h/#secret"_s}, 1, u"'https://h/' is neither"_s},
         {{u"use-notary"_s, u"http://localhost.example"_s}, 1, u"'http://localhost.example' is neither"_s}});
    EXPECT_EQ(readFile(statePath(u"notary/service.json"_s)), before);
    for (const QString &choice :
         {u"https://h/"_s, u"https://h//"_s, u"HTTPS://H"_s, u"https://h/notary/v2/"_s})
        EXPECT_EQ(run(keychain, {u"use-notary"_s, choice}).output, u"notary service: h:443\n"_s);
    EXPECT_EQ(run(keychain, {u"use-notary"_s}).output, u"https://h\n"_s);
}

TEST_F(NotaryUse, aCommandLineOfTheServiceThatIsNotGoodLeavesTheRunningOneAlone)
{
    const LoopbackSocket taken;
    const pid_t running = process();
    writeFile(path(u"nothing.json"_s), R"([{"fault":"nothing"}])");
    expect(
        notaryd,
        {{{u"--frobnicate"_s}, 2, u"unrecognized option '--frobnicate'"_s},
         {{u"more"_s}, 2, u"unexpected argument 'more'"_s},
         {{u"--listen"_s}, 2, u"option '--listen' requires a value"_s},
         {{u"--listen"_s, u"127.0.0.1"_s}, 2, u"not '127.0.0.1'"_s},
         {{u"--listen"_s, u"127.0.0.1:70000"_s}, 2, u"--listen needs ADDRESS:PORT"_s},
         {{u"--listen"_s, u"[::1:0"_s}, 2, u"--listen needs ADDRESS:PORT"_s},
         {{u"--listen"_s, u"host.example:0"_s}, 2, u"--listen needs ADDRESS:PORT"_s},
         {{u"--faults"_s, u"none.json"_s}, 1, u"none.json: No such file or directory"_s},
         {{u"--faults"_s, u"nothing.json"_s}, 1, u"nothing.json: fault 1: there is no fault \"nothing\""_s}});
    EXPECT_EQ(process(), running);
    expect(notaryd,
           {{{u"--listen"_s, addressOf(taken)},
             1,
             u"cannot listen at 127.0.0.1 port %1: Address already in use"_s.arg(addressOf(taken).mid(10))}});
    EXPECT_EQ(altool({u"--notarization-history"_s, u"0"_s}).status, 0);
}

TEST_F(NotaryUse, anOptionOfAltoolThatIsNotBuiltIsRefusedByName)
{
    expect(xcrun,
           {{{u"altool"_s, u"--upload-app"_s}, 2, u"altool: unrecognized option '--upload-app'"_s},
            {{u"altool"_s, u"--notarize-app"_s, u"--verbose"_s}, 2, u"unrecognized option '--verbose'"_s},
            {{u"altool"_s, u"--notarization-info"_s}, 64, u"requires a value"_s}});
}

TEST_F(NotaryUse, aFileMayHaveAnyName)
{
    const QStringList names{
        u"with blanks.zip"_s, u"quo'te\".zip"_s,     u"emoji 🦭.zip"_s,     u"new\nline.zip"_s,
        u"back\\slash.zip"_s, u"%41 a]b <x>&.zip"_s, u"escape\x1b[31m.zip"_s, QString(246, u'a') + u".zip"_s};
    for (const QString &name : names) {
        const QString archive = makeArchive(name);
        const ToolResult reply = upload(archive); // as a property list, which holds the name too
        ASSERT_EQ(reply.status, 0) << name.toStdString() << reply.error.toStdString();
        const QString uuid = uuidIn(reply);
        EXPECT_TRUE(pollToTheEnd(uuid).output.contains(u"Status: invalid\n"_s)) << name.toStdString();
        const QJsonDocument log =
            QJsonDocument::fromJson(readFile(statePath(u"notary/logs/%1.json"_s.arg(uuid))));
        EXPECT_EQ(log[u"archiveFilename"].toString(), name);
    }
    const ToolResult missing = upload(path(u"no\nne\x1b.zip"_s));
    EXPECT_EQ(missing.error.count(u'\n'), 1) << missing.error.toStdString();
    EXPECT_FALSE(missing.error.contains(QChar(27)));
    EXPECT_TRUE(missing.error.contains(u"no ne .zip': No such file or directory"_s));
}

TEST_F(NotaryUse, aFullStorageIsToldAndKeepsNothingHalf)
{
    ASSERT_EQ(run(notaryd, {u"--control"_s}, {}, limitFileSize).status, 0);
    const ToolResult reply = upload(makeArchive(u"Large.zip"_s, 200'000));
    EXPECT_EQ(reply.status, 1);
    EXPECT_TRUE(reply.error.contains(u"The storage is full"_s)) << reply.error.toStdString();
    for (const QString &id : uploads())
        EXPECT_TRUE(QDir(statePath(u"notary/uploads/"_s + id)).isEmpty()) << id.toStdString();
    EXPECT_FALSE(uuidIn(upload(makeArchive())).isEmpty());
}

TEST_F(NotaryUse, aSubmissionThatCannotBeWrittenDownIsRefusedWithTheReason)
{
    const QString requestFolder = statePath(u"notary/requests"_s);
    ASSERT_TRUE(QDir(requestFolder).removeRecursively());
    writeFile(requestFolder, "no folder");
    const ToolResult reply = upload(makeArchive());
    EXPECT_EQ(reply.status, 1);
    EXPECT_TRUE(reply.error.contains(u"HTTP status 500"_s)) << reply.error.toStdString();
    EXPECT_TRUE(reply.error.contains(requestFolder)) << reply.error.toStdString();
}

TEST_F(NotaryUse, aVerdictThatCannotBeKeptIsFoundAgainLater)
{
    const QString logs = statePath(u"notary/logs"_s);
    const QString uuid = uuidIn(upload(makeArchive()));
    ASSERT_TRUE(QDir(logs).removeRecursively());
    writeFile(logs, "no folder");
    EXPECT_TRUE(info(uuid).output.contains(u"Status: in progress\n"_s));
    EXPECT_TRUE(info(uuid).output.contains(u"Status: in progress\n"_s));
    EXPECT_TRUE(QFile::exists(statePath(u"notary/uploads/%1/object"_s.arg(uuid)))) << "for another review";
    ASSERT_TRUE(QFile::remove(logs));
    EXPECT_TRUE(pollToTheEnd(uuid).output.contains(u"Status: invalid\n"_s));
}

TEST_F(NotaryUse, aLockThatCannotBeTakenIsNamed)
{
    stopService();
    const QString lock = statePath(u"notary/service/running"_s);
    ASSERT_TRUE(QFile::remove(lock) && QDir().mkpath(lock));
    expect(notaryd, {{{}, 1, lock + u": Is a directory"_s}});
    const ToolResult reply = altool({u"--notarization-history"_s, u"0"_s});
    EXPECT_EQ(reply.status, 1);
    EXPECT_TRUE(reply.error.contains(u"The local notary service could not be started: "_s))
        << reply.error.toStdString();
    EXPECT_TRUE(reply.error.contains(u": Is a directory"_s)) << reply.error.toStdString();
}

TEST_F(NotaryUse, aServiceThatWasKilledReviewsWhatIsWholeAndForgetsWhatIsNot)
{
    const QString whole = uuidIn(upload(makeArchive()));
    ASSERT_EQ(setFaults(R"([{"fault":"slow-read","path":"^/s3/","value":1000,"count":-1}])"), 200);
    forgetRequests();
    ASSERT_EQ(setFaults(R"([{"fault":"slow-read","path":"^/s3/","value":1000,"count":-1}])"), 200);
    const auto sending = start(xcrun, commandFor(putting, makeArchive(u"Large.zip"_s, 300'000), {}));
    const auto isUnderWay = [this] {
        for (const QString &id : uploads()) {
            if (!QDir(statePath(u"notary/uploads/"_s + id)).entryList({u"put-*"_s}).isEmpty())
                return true;
        }
        return false;
    };
    ASSERT_TRUE(waitUntil(isUnderWay));
    killService();
    const ToolResult broken = finish(*sending);
    EXPECT_EQ(broken.status, 1);
    EXPECT_TRUE(broken.error.contains(u"The storage at 127.0.0.1:"_s)) << broken.error.toStdString();
    ASSERT_EQ(run(notaryd, {u"--control"_s}).status, 0);
    EXPECT_FALSE(isUnderWay());
    EXPECT_TRUE(pollToTheEnd(whole).output.contains(u"Status: invalid\n"_s));
    EXPECT_FALSE(uuidIn(upload(makeArchive())).isEmpty());
}

TEST_F(NotaryUse, aSecondServiceTakesThePlaceOfTheFirst)
{
    const pid_t first = process();
    const QString where = origin();
    const auto second = start(notaryd, {u"--foreground"_s, u"--control"_s});
    ASSERT_TRUE(second->waitForReadyRead(-1));
    EXPECT_EQ(QString::fromUtf8(second->readLine()).trimmed(), where) << "at the address that is known";
    EXPECT_EQ(process(), second->processId());
    EXPECT_NE(process(), first);
    EXPECT_FALSE(uuidIn(upload(makeArchive())).isEmpty());
    stopService();
    ASSERT_TRUE(second->waitForFinished(-1));
}

TEST_F(NotaryUse, noSecretStandsInAnArgumentAnEnvironmentAStreamOrAFileThatOthersCanRead)
{
    const ToolResult result =
        run(u"/usr/bin/python3"_s, {QStringLiteral(SECRETS_SCRIPT), toolRoot(), path(u"."_s)});
    EXPECT_EQ(result.status, 0) << result.output.toStdString() << result.error.toStdString();
    EXPECT_TRUE(result.output.endsWith(u" files: 0 found\n"_s)) << result.output.toStdString();
}

TEST_F(NotaryUse, theSameFileMayBeUploadedAnyNumberOfTimes)
{
    const QString archive = makeArchive();
    std::vector<std::unique_ptr<QProcess>> runs;
    for (int index = 0; index < 4; ++index)
        runs.push_back(start(xcrun, commandFor(putting, archive, {})));
    QStringList ids;
    for (const auto &process : runs)
        ids.append(finish(*process).output.section(u"RequestUUID = "_s, 1).trimmed());
    ids.append(uuidIn(upload(archive)));
    ids.removeDuplicates();
    EXPECT_EQ(ids.size(), 5);
    EXPECT_FALSE(ids.contains(QString()));
}

TEST_F(NotaryUse, aServiceAtASocketOfSystemdsIsStartedByWhoAsks)
{
    stopService();
    const QString where = addressOf(LoopbackSocket());
    const auto systemd = start(u"/usr/bin/systemd-socket-activate"_s,
                               {u"--setenv=SEALWRIGHT_TOOLCHAIN_STATE"_s, u"--setenv=SEALWRIGHT_WAIT_SCALE"_s,
                                u"--listen"_s, where, toolRoot() + notaryd, u"--foreground"_s});
    systemd->setReadChannel(QProcess::StandardError);
    ASSERT_TRUE(systemd->waitForReadyRead(-1)) << "says that it listens";
    ASSERT_EQ(run(notaryd, {u"--announce"_s, u"--listen"_s, where}).status, 0);
    EXPECT_EQ(process(), 0) << "nobody has asked yet";
    const ToolResult reply = upload(makeArchive());
    EXPECT_EQ(reply.status, 0) << reply.error.toStdString();
    EXPECT_TRUE(reply.error.contains(u"notary service at "_s + where)) << reply.error.toStdString();
    EXPECT_EQ(process(), systemd->processId());
    EXPECT_TRUE(pollToTheEnd(uuidIn(reply)).output.contains(u"Status: invalid\n"_s));
    stopService();
    systemd->terminate(); // if nobody has asked it, it listens still
    ASSERT_TRUE(systemd->waitForFinished(-1));
    EXPECT_EQ(systemd->exitCode(), 0);
}

TEST_F(NotaryUse, aSocketOfSystemdsTakesThePlaceOfARunningService)
{
    const pid_t first = process();
    const QString where = addressOf(LoopbackSocket());
    ASSERT_EQ(run(notaryd, {u"--announce"_s, u"--listen"_s, where}).status, 0);
    EXPECT_EQ(process(), 0);
    QFile line(u"/proc/%1/cmdline"_s.arg(first));
    EXPECT_TRUE(!line.open(QIODevice::ReadOnly) || line.readAll().isEmpty());
}

TEST_F(NotaryUse, aServiceThatSystemdNoLongerKeepsAPlaceForIsStartedByTheToolItself)
{
    stopService();
    ASSERT_EQ(run(notaryd, {u"--announce"_s, u"--listen"_s, addressOf(LoopbackSocket())}).status, 0);
    EXPECT_EQ(altool({u"--notarization-history"_s, u"0"_s}).status, 0);
    EXPECT_FALSE(address().contains(u"activated"_s));
    EXPECT_GT(process(), 1);
}
