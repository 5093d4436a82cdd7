#include "formats/failures.h"
#include "formats/keychain/privatefile.h"
#include "formats/statefolder.h"
#include "toolchain/bundlebuilder.h"
#include "toolchain/toolfixture.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <sys/stat.h>

#include <algorithm>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr int linesOfTableHead = 4;
constexpr int secondsOfAnHour = 3600;

class NotaryState : public ToolFixture {
protected:
    void SetUp() override
    {
        ToolFixture::SetUp();
        storePassword();
        bundlebuilder::makeApp(path(u"App.app"_s), u"com.example.app"_s);
        ASSERT_EQ(pack(path(u"App.app"_s), archive()).status, 0);
    }

    [[nodiscard]] QString archive() const { return path(u"App.zip"_s); }
    [[nodiscard]] QString requestPath(const QString &uuid) const
    {
        return statePath(u"notary/requests/%1.json"_s.arg(uuid));
    }

    /// Makes a reviewed request's upload so many seconds later than now.
    void dateUpload(const QString &uuid, int seconds) const
    {
        QJsonObject request = QJsonDocument::fromJson(bundlebuilder::readFile(requestPath(uuid))).object();
        request.insert(u"uploaded"_s, QDateTime::currentDateTimeUtc().addSecs(seconds).toString(Qt::ISODate));
        bundlebuilder::writeFile(requestPath(uuid), QJsonDocument(request).toJson());
    }

    [[nodiscard]] std::unique_ptr<QProcess> startAltool(QStringList arguments) const
    {
        arguments << u"-u"_s << u"me"_s << u"-p"_s << u"@keychain:item"_s;
        return start(xcrun, QStringList{u"altool"_s} + arguments);
    }
};

} // namespace

TEST_F(NotaryState, keepsTheUploadsOfManyProcessesAtOnce)
{
    constexpr int count = 8;
    std::vector<std::unique_ptr<QProcess>> uploads;
    for (int index = 0; index < count; ++index)
        uploads.push_back(startAltool(
            {u"--notarize-app"_s, u"-f"_s, archive(), u"--primary-bundle-id"_s, u"com.example.app"_s}));
    for (const auto &process : uploads)
        EXPECT_EQ(finish(*process).status, 0);
    const ToolResult history = altool({u"--notarization-history"_s, u"0"_s});
    EXPECT_EQ(history.output.count(u'\n'), linesOfTableHead + count);
    EXPECT_EQ(history.error, QString());
}

TEST_F(NotaryState, countsTheQuestionsOfManyProcessesAtOnce)
{
    for (int round = 0; round < 5; ++round) { // a lost question shows in some rounds only
        const QString uuid = uuidIn(upload(archive()));
        waitForReview(uuid);
        dateUpload(uuid, secondsOfAnHour); // so that no time can decide it
        std::vector<std::unique_ptr<QProcess>> questions;
        for (int index = 0; index < 12; ++index)
            questions.push_back(startAltool({u"--notarization-info"_s, uuid}));
        const auto waiting = std::count_if(questions.begin(), questions.end(), [](const auto &process) {
            const ToolResult report = finish(*process);
            EXPECT_EQ(report.status, 0) << report.error.toStdString();
            return report.output.contains(u"Status: in progress"_s);
        });
        EXPECT_EQ(waiting, 1);
    }
}

TEST_F(NotaryState, aRequestOfTwoMinutesAgoIsDecidedWithoutQuestions)
{
    const QString uuid = uuidIn(upload(archive()));
    waitForReview(uuid);
    dateUpload(uuid, secondsOfAnHour);
    EXPECT_TRUE(info(uuid).output.contains(u"Status: in progress"_s));
    dateUpload(uuid, -121);
    EXPECT_TRUE(info(uuid).output.contains(u"Status: invalid"_s));
}

TEST_F(NotaryState, aDamagedRequestIsNotKnownAndLeftAlone)
{
    const QString uuid = uuidIn(upload(archive()));
    waitForReview(uuid); // which would write the record anew
    for (const QByteArray &garbage :
         {QByteArray(), QByteArray("{"), QByteArray("[]"), QByteArray("{\"RequestUUID\": 3}")}) {
        bundlebuilder::writeFile(requestPath(uuid), garbage);
        const ToolResult report = info(uuid);
        EXPECT_EQ(report.status, 239) << garbage.toStdString();
        EXPECT_EQ(bundlebuilder::readFile(requestPath(uuid)), garbage);
    }
}

TEST_F(NotaryState, garbageAmongTheRequestsDoesNotHideTheOthers)
{
    const QString uuid = uuidIn(upload(archive()));
    bundlebuilder::writeFile(statePath(u"notary/requests/garbage.json"_s), "garbage");
    bundlebuilder::writeFile(statePath(u"notary/requests/left over"_s), "garbage");
    const ToolResult history = altool({u"--notarization-history"_s, u"0"_s});
    EXPECT_EQ(history.status, 0);
    EXPECT_EQ(history.output.count(u'\n'), linesOfTableHead + 1);
    EXPECT_TRUE(history.output.contains(uuid));
    EXPECT_EQ(history.error, QString());
}

TEST_F(NotaryState, aStateThatCannotBeWrittenIsAnError)
{
    ASSERT_TRUE(QDir(statePath(u"notary"_s)).removeRecursively());
    bundlebuilder::writeFile(statePath(u"notary"_s), "a file in the folder's place");
    const ToolResult reply = upload(archive());
    EXPECT_EQ(reply.status, 1);
    EXPECT_TRUE(reply.error.contains(statePath(u"notary"_s))) << reply.error.toStdString();
    EXPECT_EQ(uuidIn(reply), QString());
}

TEST_F(NotaryState, belongsToItsOwnerAlone)
{
    const QString uuid = uuidIn(upload(archive()));
    const auto others = QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther;
    EXPECT_FALSE(QFileInfo(statePath(u"notary"_s)).permissions() & others);
    EXPECT_FALSE(QFileInfo(requestPath(uuid)).permissions() & others);
}

/// A process has one mask for new files, whatever its threads do.
TEST(StateFiles, ofManyThreadsAtOnceBelongToTheirOwnerAlone)
{
    constexpr int threads = 4;
    constexpr int rounds = 500;
    const QTemporaryDir folder;
    const mode_t before = umask(077);
    const auto work = [&folder](int thread) {
        for (int round = 0; round < rounds; ++round) {
            const QString place = folder.filePath(u"%1/%2"_s.arg(thread).arg(round));
            EXPECT_TRUE(toolchain::makePrivateFolder(place));
            EXPECT_TRUE(toolchain::writeFileAt((place + u"/usual"_s).toStdString(), "a"));
            EXPECT_TRUE(toolchain::writePrivateFile(place + u"/private"_s, "a"));
        }
    };
    std::vector<std::thread> workers;
    for (int thread = 0; thread < threads; ++thread)
        workers.emplace_back(work, thread);
    for (std::thread &worker : workers)
        worker.join();
    EXPECT_EQ(umask(before), 077U) << "the mask is what it was";
    const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther
        | QFile::WriteOther | QFile::ExeOther;
    int seen = 0;
    QDirIterator all(folder.path(), QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden,
                     QDirIterator::Subdirectories);
    while (all.hasNext()) {
        ++seen;
        EXPECT_FALSE(QFileInfo(all.next()).permissions() & others) << all.filePath().toStdString();
    }
    EXPECT_EQ(seen, threads * (1 + 3 * rounds));
}

TEST(StateFiles, haveTheModeThatTheMaskGivesUnlessTheyArePrivate)
{
    const QTemporaryDir folder;
    const mode_t before = umask(027);
    EXPECT_TRUE(toolchain::writeFileAt(folder.filePath(u"usual"_s).toStdString(), "a"));
    EXPECT_TRUE(toolchain::writePrivateFile(folder.filePath(u"private"_s), "a"));
    EXPECT_TRUE(toolchain::makePrivateFolder(folder.filePath(u"one/two/"_s)));
    umask(before);
    const auto modeOf = [&folder](const QString &name) {
        struct stat facts = {};
        EXPECT_EQ(stat(folder.filePath(name).toUtf8().constData(), &facts), 0);
        return facts.st_mode & 07777U;
    };
    EXPECT_EQ(modeOf(u"usual"_s), 0640U);
    EXPECT_EQ(modeOf(u"private"_s), 0600U);
    EXPECT_EQ(modeOf(u"one"_s), 0700U);
    EXPECT_EQ(modeOf(u"one/two"_s), 0700U);
    const auto behindFile = toolchain::makePrivateFolder(folder.filePath(u"usual/folder"_s));
    EXPECT_FALSE(behindFile);
    EXPECT_EQ(behindFile.error(), folder.filePath(u"usual/folder"_s) + u": Not a directory"_s);
    EXPECT_EQ(toolchain::makePrivateFolder(folder.filePath(u"usual"_s)).error(),
              folder.filePath(u"usual"_s) + u": Not a directory"_s);
}
