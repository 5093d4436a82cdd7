// A wait for a verdict that is gone on with by another run.

#include "notarization/resumetest.h"

using namespace Qt::StringLiterals;

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
