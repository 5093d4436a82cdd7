// An upload that is accepted, and the wait that it starts.

#include "notarization/uploadtest.h"
#include "run/credentials.h"

#include "app/appdelegate.h"
#include "app/preferencekeys.h"
#include "platform/itempath.h"
#include "platform/scriptcommand.h"

using namespace Qt::StringLiterals;

namespace {

const QString uploadingLine =
    u"Uploading file to Apple for notarizing. This can take a while, depending on file size, upload speed, and any other uploads in progress. Do not interrupt this process..."_s;
const QString waitingLine =
    u"Checking for the result of Apple's process. This usually takes several minutes, but could take even longer..."_s;

} // namespace

UploadTest::UploadTest()
{
    items::makeBundle(host.item(u"Foo.app"_s));
    items::makeFile(host.item(u"Bar.dmg"_s), "image");
    host.tools.answer(infoTool(), {.output = FakeTools::infoReport(u"in progress"_s)});
}

void UploadTest::prepareArchive()
{
    makeWorkingCopy(u"Foo.app"_s);
    items::makeFile(host.item(u"Foo - Working/Foo.zip"_s), "zip");
    document().submitFilePath.set(host.item(u"Foo - Working/Foo.zip"_s));
    document().isBusy.set(true);
    document().isSubmitting.set(true);
}

void UploadTest::prepareImage()
{
    makeWorkingCopy(u"Bar.dmg"_s);
    document().submitFilePath.set(copy());
}

bool UploadTest::upload(const Credentials &credentials)
{
    return run([&] { return steps().upload.uploadForNotarizing(credentials, u"com.example.foo"_s); });
}

void UploadTest::useToolOfItsOwn()
{
    const QString tool = u"/Applications/Transporter.app/Contents/itms/bin/altool"_s;
    host.tools.add(tool);
    document().altoolPath.set(tool);
}

TEST_F(UploadTest, isOneRunOfTheNotaryTool)
{
    prepareArchive();
    EXPECT_TRUE(upload({u"dev@example.com"_s, u"notary"_s, u"Team1"_s}));
    EXPECT_EQ(
        host.tools.calls(),
        (QList<ToolCall>{
            {uploadTool(),
             {u"altool"_s, u"--notarize-app"_s, u"-f"_s, host.item(u"Foo - Working/Foo.zip"_s),
              u"--primary-bundle-id"_s, u"com.example.foo"_s, u"-u"_s, u"dev@example.com"_s, u"-p"_s,
              u"@keychain:notary"_s, u"--asc-provider"_s, u"Team1"_s, u"--output-format"_s, u"xml"_s}}}));
    EXPECT_TRUE(host.text(u"Foo - Submitted/Submission Log.txt"_s)
                    .contains(u"Result for /usr/bin/xcrun altool --notarize-app -f "_s));
}

TEST_F(UploadTest, ofAnArchiveLeavesTheItemAndTheIdentifierInTheSubmittedFolder)
{
    prepareArchive();
    EXPECT_TRUE(upload());
    EXPECT_EQ(host.listing(), (QStringList{u"Bar.dmg"_s, u"Foo - Submitted"_s, u"Foo.app"_s}));
    EXPECT_EQ(host.listing(u"Foo - Submitted"_s),
              (QStringList{u"Foo.app"_s, u"RequestUUID.txt"_s, u"Submission Log.txt"_s}));
    EXPECT_EQ(host.text(u"Foo - Submitted/RequestUUID.txt"_s), u"1234-abcd"_s);
    EXPECT_EQ(copy(), host.item(u"Foo - Submitted/Foo.app"_s));
    EXPECT_EQ(document().submitFilePath(), host.item(u"Foo - Submitted/Foo.zip"_s));
    expectNoReport();
}

TEST_F(UploadTest, ofTheItemItselfDeletesNothing)
{
    prepareImage();
    EXPECT_TRUE(upload());
    EXPECT_EQ(host.listing(u"Bar - Submitted"_s),
              (QStringList{u"Bar.dmg"_s, u"RequestUUID.txt"_s, u"Submission Log.txt"_s}));
}

TEST_F(UploadTest, tellsWhatIsGoingOn)
{
    prepareArchive();
    EXPECT_TRUE(upload());
    EXPECT_EQ(host.log(LogStyle::bold).mid(1),
              (QStringList{uploadingLine, u"Upload result: No errors uploading."_s, waitingLine}));
}

TEST_F(UploadTest, withoutASuccessMessageTellsNoResult)
{
    prepareArchive();
    host.tools.answer(uploadTool(), {.output = "{ \"notarization-upload\" = { RequestUUID = abc; }; }"});
    EXPECT_TRUE(upload());
    EXPECT_EQ(host.log(LogStyle::bold).mid(1), (QStringList{uploadingLine, waitingLine}));
    EXPECT_EQ(host.text(u"Foo - Submitted/RequestUUID.txt"_s), u"abc"_s);
}

TEST_F(UploadTest, withASuccessMessageOfNoLettersTellsIt)
{
    prepareArchive();
    host.tools.answer(
        uploadTool(),
        {.output = "<plist version=\"1.0\"><dict><key>notarization-upload</key><dict><key>RequestUUID</key>"
                   "<string>abc</string></dict><key>success-message</key><string></string></dict></plist>"});
    EXPECT_TRUE(upload());
    EXPECT_EQ(host.log(LogStyle::bold).mid(1),
              (QStringList{uploadingLine, u"Upload result: "_s, waitingLine}));
}

TEST_F(UploadTest, givesTheFolderItsNameBeforeItWritesTheIdentifier)
{
    prepareArchive();
    QStringList operations;
    host.files.failure = [&](const QString &operation, const QString &path) {
        const bool isWanted = operation == "moveItem"_L1 || operation == "writeFileAtomically"_L1;
        if (isWanted && path.startsWith(host.item({})))
            operations.append(operation + u' ' + path);
        return QString();
    };
    EXPECT_TRUE(upload());
    EXPECT_EQ(operations,
              (QStringList{u"moveItem "_s + host.item(u"Foo - Submitted"_s),
                           u"writeFileAtomically "_s + host.item(u"Foo - Submitted/RequestUUID.txt"_s)}));
}

TEST_F(UploadTest, writesTheIdentifierExactlyAsItCame)
{
    prepareArchive();
    host.tools.answer(uploadTool(), {.output = FakeTools::uploadReply(u" ünique\nid "_s)});
    EXPECT_TRUE(upload());
    QFile file(host.item(u"Foo - Submitted/RequestUUID.txt"_s));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray(" \xc3\xbcnique\nid "));
}

TEST_F(UploadTest, turnsTheDocumentToWaitingAndForgetsAnEarlierCancel)
{
    prepareArchive();
    document().cancelPressed.set(true);
    document().changeStatus(status::submitting);
    EXPECT_TRUE(upload());
    EXPECT_FALSE(document().cancelPressed());
    EXPECT_TRUE(document().isBusy());
    EXPECT_FALSE(document().isSubmitting());
    EXPECT_TRUE(document().isPolling());
    EXPECT_EQ(document().statusString(), u"waiting"_s);
}

struct TimerRow {
    const char *situation;
    QVariant preference;
    double delay;
};

class UploadTimer : public UploadTest, public testing::WithParamInterface<TimerRow> { };

TEST_P(UploadTimer, keepsTheDelayWithinItsLimits)
{
    host.preferences.setValue(key::pollingDelay, GetParam().preference);
    prepareArchive();
    EXPECT_TRUE(upload());
    ASSERT_EQ(host.timers.armed().size(), 1);
    EXPECT_EQ(host.timers.armed().first().interval, GetParam().delay);
    EXPECT_EQ(host.timers.armed().first().tolerance, 10.0);
    EXPECT_TRUE(document().staplingTimer());
    // It travels with the wait, whatever becomes of the preference.
    host.preferences.setValue(key::pollingDelay, 77);
    host.timers.fireNext();
    host.settle();
    ASSERT_EQ(host.timers.armed().size(), 1);
    EXPECT_EQ(host.timers.armed().first().interval, GetParam().delay);
}

INSTANTIATE_TEST_SUITE_P(Rows, UploadTimer,
                         testing::Values(TimerRow{"zero", 0, 20}, TimerRow{"tooLong", 1000, 300},
                                         TimerRow{"ordinary", 45, 45}, TimerRow{"noNumber", u"soon"_s, 20}),
                         [](const auto &row) { return row.param.situation; });

TEST_F(UploadTest, handsTheCredentialsToTheWait)
{
    prepareArchive();
    EXPECT_TRUE(upload({u"dev@example.com"_s, u"notary"_s, u"Team1"_s}));
    host.timers.fireNext();
    host.settle();
    EXPECT_EQ(host.tools.callsOf(infoTool()),
              (QList<QStringList>{{u"altool"_s, u"--notarization-info"_s, u"1234-abcd"_s, u"-u"_s,
                                   u"dev@example.com"_s, u"-p"_s, u"@keychain:notary"_s, u"--asc-provider"_s,
                                   u"Team1"_s}}));
}

TEST_F(UploadTest, withoutAProviderHandsNoneToTheWait)
{
    prepareArchive();
    EXPECT_TRUE(upload());
    EXPECT_EQ(host.tools.callsOf(uploadTool()).first().size(), 1 + 11); // xcrun's own and the tool's
    host.timers.fireNext();
    host.settle();
    EXPECT_FALSE(host.tools.callsOf(infoTool()).first().contains(u"--asc-provider"_s));
}

TEST_F(UploadTest, isNotHeldUpByAnIdentifierThatCannotBeWritten)
{
    prepareArchive();
    host.files.failure = [](const QString &operation, const QString &) {
        return operation == "writeFileAtomically"_L1 || operation == "removeItem"_L1 ? u"disk full"_s
                                                                                     : QString();
    };
    EXPECT_TRUE(upload());
    EXPECT_EQ(document().statusString(), u"waiting"_s);
    EXPECT_EQ(host.listing(u"Foo - Submitted"_s),
              (QStringList{u"Foo.app"_s, u"Foo.zip"_s, u"Submission Log.txt"_s}));
    expectNoReport();
}

TEST_F(UploadTest, runsBesideOtherToolsWhereTheRunnersAreShared)
{
    host.tools.answer(u"altool-h"_s, {.output = "Version 3.9.9 (1)\n"});
    prepareArchive();
    host.tools.answer(uploadTool(), {.hangs = true});
    onWorker(document(), [this] {
        EXPECT_FALSE(steps().upload.uploadForNotarizing({u"a@b.c"_s, u"k"_s, {}}, u"com.example.foo"_s));
    });
    host.runUntil([this] { return !host.tools.callsOf(uploadTool()).isEmpty(); });
    EXPECT_TRUE(host.application().uploadTaskMaster()->currentTask());
    EXPECT_FALSE(host.application().taskMaster()->currentTask());
    EXPECT_TRUE(host.application().uploadTaskMaster()->terminateTaskFor(document().uniqueID));
    host.settle();
}

// Scripts

class ScriptedUpload : public UploadTest {
protected:
    void startScript(bool skippingStapling)
    {
        prepareArchive();
        command = std::make_shared<ScriptCommand>(QVariantMap{{argument::skippingStapling, skippingStapling}},
                                                  [this](const ScriptReply &given) { reply = given; });
        document().currentCommand.set(command);
        document().isScripted.set(true);
    }

    ScriptCommandPtr command;
    std::optional<ScriptReply> reply;
};

TEST_F(ScriptedUpload, thatSkipsStaplingEndsWithTheItemInTheSubmittedFolder)
{
    startScript(true);
    document().suppressDialogs.set(false); // there is none all the same
    document().canCancel.set(true);
    EXPECT_FALSE(upload());
    ASSERT_TRUE(reply);
    EXPECT_FALSE(reply->isError());
    EXPECT_EQ(reply->result.toUrl(), itempath::toUrl(host.item(u"Foo - Submitted/Foo.app"_s)));
    EXPECT_EQ(host.text(u"Foo - Submitted/RequestUUID.txt"_s), u"1234-abcd"_s);
    EXPECT_EQ(document().statusString(), u"ready"_s);
    EXPECT_TRUE(host.timers.armed().isEmpty());
    for (const bool flag :
         {document().isBusy(), document().isSubmitting(), document().isPolling(), document().canCancel(),
          document().isScripted(), document().suppressDialogs(), document().progressIndicator.isAnimating()})
        EXPECT_FALSE(flag);
    expectNoReport();
    EXPECT_EQ(host.log(LogStyle::bold).last(), u"Upload result: No errors uploading."_s);
}

TEST_F(ScriptedUpload, thatSkipsStaplingOfADiskImageMadeOnTheWayStillNamesTheItem)
{
    startScript(true);
    document().useDiskImage.set(true); // other endings would then name the uploaded file
    EXPECT_FALSE(upload());
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->result.toUrl(), itempath::toUrl(host.item(u"Foo - Submitted/Foo.app"_s)));
}

TEST_F(ScriptedUpload, thatDoesNotSkipStaplingWaits)
{
    startScript(false);
    EXPECT_TRUE(upload());
    EXPECT_FALSE(reply);
    EXPECT_EQ(host.timers.armed().size(), 1);
}

TEST_F(ScriptedUpload, aCommandOfAnEarlierScriptDoesNotSkipAPersonsStapling)
{
    startScript(true);
    document().isScripted.set(false);
    EXPECT_TRUE(upload());
    EXPECT_FALSE(reply);
}

TEST_F(ScriptedUpload, aLaterFailureNamesTheItem)
{
    startScript(false);
    EXPECT_TRUE(upload());
    command->setScriptErrorNumber(7);
    command->resumeExecutionWithResult({});
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->offendingObject.toUrl(), itempath::toUrl(host.item(u"Foo - Submitted/Foo.app"_s)));
}
