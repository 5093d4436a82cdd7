// A wait for a verdict: what is on record of it, for another run to go on with.

#include "notarization/resumetest.h"

using namespace Qt::StringLiterals;

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
