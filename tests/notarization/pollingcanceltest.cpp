// A cancel and a closed window during the wait for the verdict.

#include "notarization/pollingtest.h"

using namespace Qt::StringLiterals;

class PollingCancel : public Polling { };

namespace {

const QString cancelText =
    u"The app has been uploaded, but notarizing has not been confirmed. Once you get a confirmation email on your Apple ID email account, you can staple the app using the Staple Only button."_s;

} // namespace

TEST_F(PollingCancel, aCancelWhileWaitingEndsTheWaitWithOneReport)
{
    wait();
    host.document().doCancel();
    host.settle();
    EXPECT_TRUE(host.timers.armed().isEmpty());
    EXPECT_EQ(host.window().sheets.size(), 1);
    EXPECT_EQ(host.window().sheets.first().messageText, u"Process Cancelled"_s);
    EXPECT_EQ(host.window().sheets.first().informativeText, cancelText);
    EXPECT_TRUE(host.tools.callsOf(infoTool).isEmpty());
    EXPECT_TRUE(host.document().cancelPressed()); // nobody was there to swallow a report
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Submitted"_s, u"Foo.app"_s}));
}

TEST_F(PollingCancel, aCancelDuringAQueryEndsTheToolAndIsReportedOnce)
{
    host.tools.answer(infoTool, {.hangs = true});
    wait();
    pollUpTo(infoTool);
    host.document().doCancel();
    host.settle();
    EXPECT_TRUE(host.timers.armed().isEmpty());
    EXPECT_EQ(host.window().sheets.size(), 1);
    EXPECT_FALSE(host.document().cancelPressed());
    EXPECT_EQ(host.log(LogStyle::bold).count(u"Process cancelled..."_s), 2);
    EXPECT_TRUE(host.listing(u"Foo - Submitted"_s).contains(u"Foo.app"_s));
}

TEST_F(PollingCancel, aCancelThatFindsTheBudgetUsedUpSwallowsTheLastReport)
{
    for (int run = 1; run <= 3; ++run)
        host.tools.answerRun(infoTool, run, {.status = 1});
    host.tools.answerRun(infoTool, 4, {.hangs = true});
    wait();
    for (int failure = 0; failure < 3; ++failure)
        poll();
    pollUpTo(infoTool, 4);
    host.document().doCancel();
    host.settle();
    EXPECT_EQ(host.window().sheets.size(), 1);
    EXPECT_FALSE(host.document().cancelPressed());
}

TEST_F(PollingCancel, aCancelAfterAReplyInProgressEndsInPollOrCancel)
{
    wait();
    host.document().cancelPressed.set(true);
    EXPECT_EQ(poll(), -1);
    EXPECT_TRUE(host.window().sheets.isEmpty()); // the report of the step is the one that is dropped
    EXPECT_EQ(host.log(LogStyle::bold).last(), u"Process cancelled..."_s);
    EXPECT_FALSE(host.document().cancelPressed());
}

TEST_F(PollingCancel, aCancelAfterASuccessGoesOnToStapling)
{
    host.tools.answer(infoTool, success());
    wait();
    host.document().cancelPressed.set(true);
    EXPECT_EQ(poll(), -1);
    EXPECT_EQ(host.listing(), QStringList{u"Foo - Notarized"_s});
}

TEST_F(PollingCancel, aCancelWhileStaplingOnASharedRunnerLetsTheStaplerRunToItsEnd)
{
    host.tools.answer(u"altool-h"_s, {.output = "Copyright (c) 2019, Apple Inc. Version 3.1.2\n"});
    host.tools.answer(infoTool, success());
    host.tools.answer(u"stapler"_s, {.hangs = true});
    wait();
    pollUpTo(u"stapler"_s);
    host.document().doCancel();
    EXPECT_TRUE(host.document().taskRunner()->currentTask());
    host.tools.release(u"stapler"_s);
    host.settle();
    EXPECT_EQ(host.listing(), QStringList{u"Foo - Notarized"_s});
    ASSERT_EQ(host.window().sheets.size(), 2);
    EXPECT_EQ(host.window().sheets.first().informativeText,
              u"Uploading of the app may not have been completed."_s);
    EXPECT_EQ(host.window().sheets.last().messageText, u"Stapling Successful"_s);
    EXPECT_TRUE(host.document().cancelPressed()); // no report came to swallow
}

TEST_F(PollingCancel, closingTheWindowThroughItsSheetEndsTheWaitWithoutAWord)
{
    wait();
    FakeWindow &window = host.window();
    window.performClose();
    ASSERT_TRUE(window.sheet);
    EXPECT_EQ(window.sheet->alert.informativeText, u"The app is not yet approved and stapled."_s);
    window.answerSheet(platform::alertSecondButton);
    host.settle();
    EXPECT_TRUE(host.timers.armed().isEmpty());
    EXPECT_TRUE(host.application().allControllers().isEmpty());
    EXPECT_TRUE(host.tools.callsOf(infoTool).isEmpty());
}

TEST_F(PollingCancel, keepingTheWindowOpenBringsTheStatusBackToWaiting)
{
    wait();
    host.window().performClose();
    EXPECT_EQ(host.document().statusString(), u"interacting"_s);
    host.window().answerSheet(platform::alertFirstButton);
    EXPECT_EQ(host.document().statusString(), u"waiting"_s);
    EXPECT_EQ(host.timers.armed().size(), 1);
}

TEST_F(PollingCancel, aQueryInFlightAtTheCloseMayArmATimerForTheClosedDocument)
{
    host.tools.answer(infoTool, {.hangs = true});
    wait();
    const DocumentPtr document = host.application().allControllers().first();
    pollUpTo(infoTool);
    host.window().performClose();
    host.window().answerSheet(platform::alertSecondButton);
    document->taskRunner()->terminateTaskFor(document->uniqueID); // the reply comes: a failure
    host.settle();
    EXPECT_EQ(host.timers.armed().size(), 1);
}
