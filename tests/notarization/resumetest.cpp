// A wait for a verdict that is gone on with by another run: what is on record of it, and how it ends.

#include "notarization/pollingtest.h"

#include "app/preferencekeys.h"
#include "platform/itempath.h"
#include "run/waitrecords.h"
#include "run/waits.h"
#include "scripting/NSApplication+Scripting.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

class Resuming : public Polling {
protected:
    Resuming()
    {
        host.stateFolder = host.item(u"../state"_s);
        host.preferences.setValue(key::providerNameValue, u"ExampleTeam"_s);
    }

    /// Uploads, and has the run end as with its process: it says no more, and what it holds is let go of.
    void waitAndEnd()
    {
        wait();
        closeWindow();
    }
    void closeWindow()
    {
        host.document().staplingTimer()->invalidate();
        host.document().window().close();
        host.settle();
    }
    /// In a new document, as a person's.
    void goOn(const QString &name = u"Foo - Submitted"_s)
    {
        host.application().addedDocument()->commands().resume.goOnInFolder(host.item(name));
        host.settle();
    }
    void goOnToTheEnd(const QString &name = u"Foo - Submitted"_s)
    {
        goOn(name);
        host.firePolls();
    }

    QString recordsFolder() const { return host.stateFolder + u"/waiting"_s; }
    QStringList records() const
    {
        return QDir(recordsFolder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    QString recordFile() const { return recordsFolder() + u"/1234-abcd.json"_s; }
    QByteArray record() const
    {
        QFile file(recordFile());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QString in(const QString &key) const
    {
        return QJsonDocument::fromJson(record()).object().value(key).toString();
    }
    QStringList waiting() { return host.application().scripting().waiting(); }

    void expectFinished(const QStringList &more = {})
    {
        EXPECT_EQ(host.listing(), QStringList{u"Foo - Notarized"_s} + more);
        EXPECT_EQ(items::fingerprint(host.item(u"Foo - Notarized/Foo - Unmodified Original/Foo.app"_s)),
                  original);
        EXPECT_EQ(records(), QStringList());
        ASSERT_TRUE(host.window().sheet);
        EXPECT_EQ(host.window().sheet->alert.messageText, u"Stapling Successful"_s);
    }
};

// The record

TEST_F(Resuming, aWaitIsOnRecordUntilItHasEnded)
{
    wait();
    EXPECT_EQ(records(), QStringList{u"1234-abcd.json"_s});
    EXPECT_EQ(waiting(), QStringList{host.item(u"Foo - Submitted"_s)});
    host.tools.answer(infoTool, success());
    poll();
    EXPECT_EQ(records(), QStringList());
    EXPECT_EQ(waiting(), QStringList());
}

TEST_F(Resuming, theRecordHasWhatTheEndNeedsAndIsForTheUserAlone)
{
    wait();
    EXPECT_EQ(in(u"identifier"_s), u"1234-abcd"_s);
    EXPECT_EQ(in(u"folder"_s), host.item(u"Foo - Submitted"_s));
    EXPECT_EQ(in(u"item"_s), u"Foo.app"_s);
    EXPECT_EQ(in(u"original"_s), u"Foo.app"_s);
    EXPECT_EQ(in(u"kind"_s), u"app"_s);
    EXPECT_EQ(in(u"packing"_s), u"zip"_s);
    EXPECT_EQ(QDateTime::fromString(in(u"since"_s), Qt::ISODate),
              QDateTime(QDate(2026, 11, 20), QTime(14, 3, 22)));
    EXPECT_TRUE(in(u"since"_s).endsWith(u'Z'));
    EXPECT_EQ(QFile::permissions(recordFile()) & ~(QFile::ReadUser | QFile::WriteUser),
              QFile::ReadOwner | QFile::WriteOwner);
    EXPECT_EQ(QFile::permissions(recordsFolder()) & (QFile::ReadGroup | QFile::ReadOther | QFile::ExeOther),
              QFile::Permissions());
}

TEST_F(Resuming, theRecordIsThereBeforeTheNotaryToolHasEnded)
{
    host.tools.answerRun(u"altool--notarize-app"_s, 1, {.output = FakeTools::uploadReply(), .hangs = true});
    host.launch();
    host.document().commands().submit.submitURL(itempath::toUrl(host.item(u"Foo.app"_s)));
    host.runUntil([this] { return !record().isEmpty(); });
    EXPECT_EQ(in(u"folder"_s), host.item(u"Foo - Working"_s));
    EXPECT_EQ(waiting(), QStringList{host.item(u"Foo - Working"_s)});
    EXPECT_TRUE(waits::isAttended(host.host(), waits::all(host.host()).first()));
    host.tools.release(u"altool--notarize-app"_s, 1);
    host.settle();
    EXPECT_EQ(in(u"folder"_s), host.item(u"Foo - Submitted"_s));
}

TEST_F(Resuming, anUploadThatFailsAfterItsReceiptIsNotOnRecord)
{
    host.tools.answer(u"altool--notarize-app"_s, {.status = 1, .output = FakeTools::uploadReply()});
    host.launch();
    host.submit(host.item(u"Foo.app"_s));
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Failed"_s, u"Foo.app"_s}));
    EXPECT_EQ(records(), QStringList());
}

TEST_F(Resuming, aRefusalEndsTheRecordToo)
{
    waitAndEnd();
    host.tools.answer(infoTool, reply(FakeTools::infoReport(u"invalid"_s)));
    goOnToTheEnd();
    EXPECT_EQ(records(), QStringList());
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Failed"_s, u"Foo.app"_s}));
    EXPECT_EQ(host.listing(u"Foo - Failed"_s),
              (QStringList{u"Entitlements.plist"_s, u"RequestUUID.txt"_s, u"Submission Log.txt"_s}));
}

TEST_F(Resuming, whoCancelsWaitsNoMoreAndCanGoOnByTheFolder)
{
    wait();
    host.document().doCancel();
    host.settle();
    EXPECT_EQ(records(), QStringList());
    host.tools.answer(infoTool, success());
    goOnToTheEnd();
    expectFinished();
}

TEST_F(Resuming, aWaitThatIsGivenUpStaysOnRecordAndBeginsAnewWithItsBudgets)
{
    host.tools.answer(infoTool, {.status = 1, .error = "no network"});
    wait();
    for (int failure = 1; failure <= 3; ++failure)
        EXPECT_EQ(poll(), 15.0);
    EXPECT_EQ(poll(), -1);
    expectFinalAlert(u"Failed to Retrieve Info"_s);
    EXPECT_EQ(waiting(), QStringList{host.item(u"Foo - Submitted"_s)});
    goOn();
    for (int failure = 1; failure <= 3; ++failure)
        EXPECT_EQ(poll(), 15.0);
    host.tools.answer(infoTool, success());
    EXPECT_EQ(poll(), -1);
    expectFinished();
}

TEST_F(Resuming, aClockThatIsSetMeanwhileCostsNoWait)
{
    wait();
    const QDateTime began = host.clock.time;
    for (const int days : {400, -400}) { // a machine that wakes up late, and one whose battery was empty
        host.clock.time = began.addDays(days);
        EXPECT_EQ(poll(), 30.0);
        EXPECT_EQ(waiting(), QStringList{host.item(u"Foo - Submitted"_s)});
    }
    closeWindow();
    host.tools.answer(infoTool, success());
    goOnToTheEnd();
    expectFinished();
}

TEST_F(Resuming, whatAScriptDoesNotWaitForIsNotOnRecord)
{
    host.launch();
    const auto command =
        std::make_shared<ScriptCommand>(QVariantMap{{argument::at, itempath::toUrl(host.item(u"Foo.app"_s))},
                                                    {argument::skippingStapling, true}},
                                        [](const ScriptReply &) {});
    command->execute([this](const ScriptCommandPtr &executing) {
        host.application().scripting().AESubmitForNotarizing(executing);
    });
    host.settle();
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Submitted"_s, u"Foo.app"_s}));
    EXPECT_EQ(records(), QStringList());
    host.tools.answer(infoTool, success());
    goOnToTheEnd();
    expectFinished();
}

TEST_F(Resuming, aRecordThatCannotBeWrittenStopsNothing)
{
    host.files.failure = [](const QString &operation, const QString &path) {
        return operation == "createDirectory"_L1 && path.endsWith(u"waiting"_s) ? u"full"_s : QString();
    };
    host.tools.answer(infoTool, success());
    wait();
    EXPECT_EQ(host.log().filter(u"not on record"_s).size(), 2);
    poll();
    expectFinished();
}

TEST_F(Resuming, damagedRecordsArePassedOver)
{
    wait();
    items::makeFile(recordsFolder() + u"/other.json"_s, "{\"identifier\": \"x\", \"folder\": \"relative\"}");
    items::makeFile(recordsFolder() + u"/half.json"_s, record().first(40));
    items::makeFile(recordsFolder() + u"/way.json"_s,
                    "{\"identifier\":\"x\",\"folder\":\"/tmp\",\"item\":\"../x\",\"original\":\"x\"}");
    EXPECT_EQ(waiting(), QStringList{host.item(u"Foo - Submitted"_s)});
}

TEST_F(Resuming, anIdentifierLeadsToNoOtherFolder)
{
    host.tools.answer(u"altool--notarize-app"_s, reply(FakeTools::uploadReply(u"../../x y"_s)));
    wait();
    EXPECT_EQ(records(), QStringList{u"%2E.%2F..%2Fx%20y.json"_s});
    EXPECT_EQ(waiting(), QStringList{host.item(u"Foo - Submitted"_s)});
    host.tools.answer(infoTool, success());
    poll();
    EXPECT_EQ(records(), QStringList());
}

TEST_F(Resuming, aRecordWhoseRunHadFinishedIsTidiedAway)
{
    wait();
    const QByteArray kept = record();
    host.tools.answer(infoTool, success());
    poll();
    items::makeFile(recordFile(), kept); // the process ended before it could take it away
    EXPECT_EQ(waiting(), QStringList());
    EXPECT_EQ(records(), QStringList());
}

TEST_F(Resuming, aRecordOfAFolderThatIsNotThereWaitsUnseen)
{
    waitAndEnd();
    ASSERT_TRUE(QFile::rename(host.item(u"Foo - Submitted"_s), host.item(u"away"_s))); // or is not mounted
    EXPECT_EQ(waiting(), QStringList());
    ASSERT_TRUE(QFile::rename(host.item(u"away"_s), host.item(u"Foo - Submitted"_s)));
    EXPECT_EQ(waiting(), QStringList{host.item(u"Foo - Submitted"_s)});
    ASSERT_TRUE(QFile::rename(host.item(u"Foo - Submitted"_s), host.item(u"away"_s)));
    host.clock.time = host.clock.time.addDays(40); // and in the end nobody will look for it
    EXPECT_EQ(waiting(), QStringList());
    EXPECT_EQ(records(), QStringList());
}

// Going on

TEST_F(Resuming, anotherRunEndsAsTheFirstWouldHave)
{
    waitAndEnd();
    host.tools.forgetCalls();
    host.tools.answer(infoTool, success());
    goOn();
    EXPECT_EQ(host.document().statusString(), u"waiting"_s);
    EXPECT_TRUE(host.document().isPolling());
    EXPECT_TRUE(host.document().canCancel());
    host.firePolls();
    EXPECT_EQ(host.tools.order(), (QStringList{infoTool, u"stapler"_s}));
    EXPECT_EQ(host.tools.callsOf(infoTool).first().mid(1),
              (QStringList{u"--notarization-info"_s, u"1234-abcd"_s, u"-u"_s, u"dev@example.com"_s, u"-p"_s,
                           u"@keychain:notary"_s, u"--asc-provider"_s, u"ExampleTeam"_s}));
    expectFinished();
    EXPECT_EQ(host.listing(u"Foo - Notarized"_s),
              (QStringList{u"Entitlements.plist"_s, u"Foo - Unmodified Original"_s, u"Foo.app"_s,
                           u"RequestUUID.txt"_s, u"Submission Log.txt"_s}));
    EXPECT_TRUE(host.text(u"Foo - Notarized/Submission Log.txt"_s).contains(u"Going on with the wait"_s));
    EXPECT_EQ(host.userNotifications.delivered.size(), 1);
}

TEST_F(Resuming, theServiceIsAskedAtOnceAndThenAtTheUsualDelay)
{
    waitAndEnd();
    goOn();
    ASSERT_EQ(host.timers.armed().size(), 1);
    EXPECT_EQ(host.timers.armed().first().interval, 0.0);
    EXPECT_EQ(poll(), 30.0);
}

TEST_F(Resuming, theFolderAloneIsEnough)
{
    waitAndEnd();
    ASSERT_TRUE(QFile::remove(recordFile()));
    host.tools.answer(infoTool, success());
    goOn();
    EXPECT_EQ(records().size(), 1); // it may be ended again
    host.firePolls();
    expectFinished();
}

TEST_F(Resuming, somethingInTheFolderOrTheItemBesideItStandsForIt)
{
    waitAndEnd();
    for (const QString &name : {u"Foo - Submitted/Foo.app"_s, u"Foo - Submitted/RequestUUID.txt"_s,
                                u"Foo - Submitted"_s, u"Foo.app"_s}) {
        const auto wait = waits::at(host.host(), host.item(name));
        ASSERT_TRUE(wait) << wait.error().toStdString();
        EXPECT_EQ(wait->folder, host.item(u"Foo - Submitted"_s));
        EXPECT_EQ(wait->identifier, u"1234-abcd"_s);
    }
}

TEST_F(Resuming, aDiskImageLeadsBackToItsAppWithAndWithoutTheRecord)
{
    host.preferences.setValue(key::createDiskImage, true);
    host.tools.answer(u"hdiutil"_s,
                      {.content = "image", .target = host.item(u"My Foo - Working/My_Foo.dmg"_s)});
    items::makeBundle(host.item(u"My Foo.app"_s));
    host.launch();
    host.submit(host.item(u"My Foo.app"_s));
    ASSERT_TRUE(host.document().isPolling());
    EXPECT_EQ(in(u"item"_s), u"My_Foo.dmg"_s);
    EXPECT_EQ(in(u"original"_s), u"My Foo.app"_s);
    EXPECT_EQ(in(u"packing"_s), u"dmg"_s);
    closeWindow();
    ASSERT_TRUE(QFile::remove(recordFile()));
    items::makeFile(host.item(u"My Foo.dmg"_s), "another"); // another one of the person's
    host.tools.answer(infoTool, success());
    goOnToTheEnd(u"My Foo - Submitted"_s);
    EXPECT_EQ(host.listing(), (QStringList{u"Foo.app"_s, u"My Foo - Notarized"_s, u"My Foo.dmg"_s}));
    EXPECT_EQ(host.listing(u"My Foo - Notarized/My Foo - Unmodified Original"_s),
              QStringList{u"My Foo.app"_s});
    EXPECT_EQ(host.document().appletURL(), itempath::toUrl(host.item(u"My Foo - Notarized/My_Foo.dmg"_s)));
}

TEST_F(Resuming, anItemThatHasChangedSinceTheUploadIsToldOfAcrossRuns)
{
    waitAndEnd();
    items::makeFile(host.item(u"Foo - Submitted/Foo.app/Contents/new"_s), "new");
    host.tools.answer(infoTool, success());
    goOnToTheEnd();
    EXPECT_EQ(host.log(LogStyle::error).filter(u"has changed since it was uploaded"_s).size(), 1);
}

TEST_F(Resuming, whatTheStaplerItselfHasChangedIsNoChange)
{
    host.tools.answerRun(u"stapler"_s, 1, {.hangs = true});
    host.tools.answer(infoTool, success());
    wait();
    pollUpTo(u"stapler"_s);
    EXPECT_EQ(in(u"itemState"_s), QString());
    host.tools.release(u"stapler"_s, 1);
    host.settle();
}

TEST_F(Resuming, aRunThatEndedBeforeTheFolderGotItsNameIsBroughtToItsEnd)
{
    waitAndEnd();
    const QByteArray kept = record();
    ASSERT_TRUE(QFile::rename(host.item(u"Foo - Submitted"_s), host.item(u"Foo - Working"_s)));
    ASSERT_TRUE(QFile::remove(host.item(u"Foo - Working/RequestUUID.txt"_s)));
    items::makeFile(host.item(u"Foo - Working/Foo.zip"_s), "zip");
    items::makeFile(recordFile(), QByteArray(kept).replace("Foo - Submitted", "Foo - Working"));
    ASSERT_EQ(waiting(), QStringList{host.item(u"Foo - Working"_s)});
    host.tools.answer(infoTool, success());
    host.application().goOnWaiting();
    host.settle();
    EXPECT_EQ(host.text(u"Foo - Submitted/RequestUUID.txt"_s), u"1234-abcd"_s);
    EXPECT_FALSE(host.listing(u"Foo - Submitted"_s).contains(u"Foo.zip"_s));
    EXPECT_EQ(in(u"folder"_s), host.item(u"Foo - Submitted"_s));
    host.firePolls();
    expectFinished();
}

TEST_F(Resuming, aWorkingFolderOfALaterRunIsNotTakenForTheOneOnRecord)
{
    waitAndEnd();
    const QByteArray kept = record();
    items::makeFile(host.item(u"Foo - Working/Foo.app/Contents/other"_s), "other");
    items::makeFile(recordFile(), QByteArray(kept).replace("Foo - Submitted", "Foo - Working"));
    EXPECT_EQ(waiting(), QStringList{host.item(u"Foo - Submitted"_s)});
}

// Who goes on

TEST_F(Resuming, oneGoesOnAndTheOtherSaysWhyNot)
{
    waitAndEnd();
    goOn();
    const DocumentPtr first = host.application().allControllers().last();
    goOn();
    ASSERT_TRUE(host.window().sheet);
    EXPECT_EQ(host.window().sheet->alert.messageText, u"Cannot Go On Waiting"_s);
    EXPECT_TRUE(host.log(LogStyle::error)
                    .last()
                    .contains(u"Another run works in '%1'."_s.arg(host.item(u"Foo - Submitted"_s))));
    EXPECT_FALSE(host.document().isBusy());
    EXPECT_EQ(records().size(), 1);
    host.tools.answer(infoTool, success());
    host.firePolls();
    EXPECT_EQ(TestHost::window(*first).sheet->alert.messageText, u"Stapling Successful"_s);
    EXPECT_EQ(host.listing(), QStringList{u"Foo - Notarized"_s});
    EXPECT_EQ(host.tools.callsOf(u"stapler"_s).size(), 1);
}

TEST_F(Resuming, launchGoesOnByItselfOnlyWhereThePreferenceSaysSo)
{
    waitAndEnd();
    host.launch();
    host.settle();
    EXPECT_TRUE(host.timers.armed().isEmpty());
    host.preferences.setValue(key::resumeWaiting, true);
    host.tools.answer(infoTool, success());
    host.launch();
    host.settle();
    host.firePolls();
    EXPECT_EQ(host.application().allControllers().size(), 2);
    expectFinished();
}

TEST_F(Resuming, withoutCredentialsOnRecordThoseOfTheDocumentAreChecked)
{
    waitAndEnd();
    ASSERT_TRUE(QFile::remove(recordFile()));
    host.preferences.setValue(key::appleIDValue, u""_s);
    goOn();
    ASSERT_TRUE(host.window().sheet);
    EXPECT_EQ(host.window().sheet->alert.messageText, u"Missing Apple ID"_s);
    EXPECT_TRUE(host.timers.armed().isEmpty());
}

struct NoWait {
    const char *name;
    const char16_t *path;
    const char *file; ///< what RequestUUID.txt has in it; null for no such file
    const char16_t *reason;
};

class NoSubmission : public Resuming, public testing::WithParamInterface<NoWait> { };

TEST_P(NoSubmission, isRefusedWithTheReason)
{
    host.launch();
    items::makeBundle(host.item(u"Bar - Submitted/Bar.app"_s));
    items::makeFolder(host.item(u"Empty - Submitted"_s));
    items::makeFile(host.item(u"Empty - Submitted/RequestUUID.txt"_s), "1234");
    items::makeFolder(host.item(u"Folder"_s));
    if (GetParam().file)
        items::makeFile(host.item(u"Bar - Submitted/RequestUUID.txt"_s), GetParam().file);
    const auto wait = waits::at(host.host(), host.item(QString::fromUtf16(GetParam().path)));
    ASSERT_FALSE(wait);
    EXPECT_TRUE(wait.error().contains(QString::fromUtf16(GetParam().reason))) << wait.error().toStdString();
    goOn(QString::fromUtf16(GetParam().path));
    ASSERT_TRUE(host.window().sheet);
    EXPECT_EQ(host.window().sheet->alert.messageText, u"Cannot Go On Waiting"_s);
    EXPECT_TRUE(host.tools.calls().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Of, NoSubmission,
    testing::Values(NoWait{"nothing", u"gone", nullptr, u"There is no item"},
                    NoWait{"aPlainFolder", u"Folder", nullptr, u"no folder that an upload has left"},
                    NoWait{"aFolderWithoutIdentifier", u"Bar - Submitted", nullptr, u"no RequestUUID.txt"},
                    NoWait{"anEmptyIdentifier", u"Bar - Submitted", " \n", u"no RequestUUID.txt"},
                    NoWait{"anOption", u"Bar - Submitted", "--help", u"no RequestUUID.txt"},
                    NoWait{"twoLines", u"Bar - Submitted", "12\n34", u"no RequestUUID.txt"},
                    NoWait{"aFolderWithoutItem", u"Empty - Submitted", nullptr, u"holds no item"}),
    [](const auto &row) { return row.param.name; });
