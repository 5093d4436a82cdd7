// The wait for the verdict: what each reply leads to, and for how long failures are survived.

#include "support/items.h"
#include "support/testhost.h"

#include "app/preferencekeys.h"
#include "document/documentextensions.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString infoTool = u"altool--notarization-info"_s;
const QString workingItem = u"Foo - Submitted/Foo.app"_s;

ToolAnswer reply(const QByteArray &output)
{
    return {.output = output};
}

ToolAnswer inProgress()
{
    return reply(FakeTools::infoReport(u"in progress"_s));
}

} // namespace

class Polling : public testing::Test {
protected:
    Polling()
    {
        items::makeBundle(host.item(u"Foo.app"_s));
        original = items::fingerprint(host.item(u"Foo.app"_s));
        host.tools.answer(infoTool, inProgress());
    }

    /// Up to the armed timer of the first poll.
    void wait()
    {
        host.launch();
        host.submit(host.item(u"Foo.app"_s));
        ASSERT_EQ(host.timers.armed().size(), 1);
    }

    /// Fires the armed poll. Answers with the delay of the next one, or -1 if there is none.
    double poll()
    {
        host.timers.fireNext();
        host.settle();
        const auto armed = host.timers.armed();
        EXPECT_LE(armed.size(), 1);
        return armed.isEmpty() ? -1 : armed.first().interval;
    }

    void answerRuns(int from, int to, const ToolAnswer &answer)
    {
        for (int run = from; run <= to; ++run)
            host.tools.answerRun(infoTool, run, answer);
    }

    /// The lines of the log file whose message contains the text.
    QStringList fileLines(const QString &folder, const QString &part)
    {
        return host.text(folder + u"/Submission Log.txt"_s).split(u'\n').filter(part);
    }

    void expectFinalAlert(const QString &title)
    {
        ASSERT_TRUE(host.window().sheet);
        EXPECT_EQ(host.window().sheet->alert.messageText, title);
        EXPECT_EQ(host.window().sheet->alert.informativeText, u"See the log for details."_s);
        EXPECT_FALSE(host.document().isBusy());
    }

    TestHost host;
    QByteArray original;
};

TEST_F(Polling, anUploadIsFollowedByATimerOfThePollingDelay)
{
    wait();
    EXPECT_EQ(host.timers.armed().first().interval, 30.0);
    EXPECT_EQ(host.timers.armed().first().tolerance, 10.0);
    EXPECT_EQ(host.document().statusString(), u"waiting"_s);
    EXPECT_TRUE(host.document().isPolling());
    EXPECT_TRUE(host.document().canCancel());
    EXPECT_FALSE(host.document().isSubmitting());
}

TEST_F(Polling, theQueryNamesTheRequestAndTheCredentials)
{
    wait();
    poll();
    EXPECT_EQ(host.tools.callsOf(infoTool).first(),
              (QStringList{u"altool"_s, u"--notarization-info"_s, u"1234-abcd"_s, u"-u"_s,
                           u"dev@example.com"_s, u"-p"_s, u"@keychain:notary"_s}));
}

TEST_F(Polling, theQueryNamesTheProviderIfThereIsOne)
{
    host.preferences.setValue(key::providerNameValue, u"ExampleTeam"_s);
    wait();
    poll();
    EXPECT_EQ(host.tools.callsOf(infoTool).first().mid(7),
              (QStringList{u"--asc-provider"_s, u"ExampleTeam"_s}));
}

TEST_F(Polling, inProgressAsksAgainAfterTheNormalDelay)
{
    host.preferences.setValue(key::pollingDelay, 45.0);
    wait();
    EXPECT_EQ(poll(), 45.0);
    EXPECT_EQ(host.log(LogStyle::bold).last(), u"Awaiting result from Apple..."_s);
    EXPECT_EQ(host.document().infoFailureCount(), 0u);
}

TEST_F(Polling, aVerdictCountsInAnyLetterCaseAndWithBlanksAroundIt)
{
    host.tools.answerRun(infoTool, 1, reply("   Status:  In Progress \r\n"));
    host.tools.answerRun(infoTool, 2, reply("Status: SUCCESS  \n"));
    wait();
    EXPECT_EQ(poll(), 30.0);
    EXPECT_EQ(poll(), -1);
    EXPECT_EQ(host.listing(), QStringList{u"Foo - Notarized"_s});
}

TEST_F(Polling, aReportWithoutAStatusLineIsFinalAndNotRetried)
{
    host.tools.answer(infoTool, reply("everything fine\n"));
    wait();
    EXPECT_EQ(poll(), -1);
    expectFinalAlert(u"Notarization Failed"_s);
    EXPECT_EQ(host.log(LogStyle::error), QStringList{u"everything fine\n"_s});
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Failed"_s, u"Foo.app"_s}));
    EXPECT_EQ(host.listing(u"Foo - Failed"_s),
              (QStringList{u"Entitlements.plist"_s, u"RequestUUID.txt"_s, u"Submission Log.txt"_s}));
}

TEST_F(Polling, anotherVerdictDeletesTheItemAndShowsTheServicesLog)
{
    const QString url = u"https://example.com/log.json"_s;
    host.urls.contents.insert(QUrl(url), "{\"issues\": []}");
    const QByteArray report = FakeTools::infoReport(u"invalid"_s, url);
    host.tools.answer(infoTool, reply(report));
    wait();
    EXPECT_EQ(poll(), -1);
    expectFinalAlert(u"Notarization Failed"_s);
    EXPECT_EQ(host.log(LogStyle::error), QStringList{QString::fromUtf8(report) + u"\n{\"issues\": []}"_s});
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
    EXPECT_FALSE(host.listing(u"Foo - Failed"_s).contains(u"Foo.app"_s));
}

TEST_F(Polling, anotherVerdictWithoutAReadableLogShowsTheReportAlone)
{
    const QByteArray report = FakeTools::infoReport(u"invalid"_s, u"https://example.com/gone.json"_s);
    host.tools.answer(infoTool, reply(report));
    wait();
    EXPECT_EQ(poll(), -1);
    EXPECT_EQ(host.log(LogStyle::error), QStringList{QString::fromUtf8(report)});
}

TEST_F(Polling, silenceOnBothStreamsPollsOnWithNoCounterMoving)
{
    host.preferences.setValue(key::preferXcodeAltool,
                              false); // a tool of its own is not asked twice when it is silent
    host.workspace.installed.insert(u"com.apple.TransporterApp"_s, host.item(u"Transporter"_s));
    const QString tool = host.item(
        u"Transporter/Contents/Frameworks/ITunesServices.framework/Frameworks/ITunesSoftwareService.framework/Support/altool"_s);
    items::makeLink(tool, host.tools.root() + u"/usr/bin/xcrun"_s);
    host.tools.answer(infoTool, {});
    wait();
    for (int round = 0; round < 5; ++round)
        EXPECT_EQ(poll(), 30.0);
    EXPECT_EQ(host.document().infoFailureCount(), 0u);
    EXPECT_EQ(host.document().info239FailureCount(), 0u);
}

TEST_F(Polling, aReportOnStandardErrorOnlyIsRead)
{
    host.tools.answer(infoTool, {.error = FakeTools::infoReport(u"success"_s)});
    wait();
    EXPECT_EQ(poll(), -1);
    EXPECT_EQ(host.listing(), QStringList{u"Foo - Notarized"_s});
}

TEST_F(Polling, aFailedQueryIsRetriedSoonAndShowsInTheLogFileOnly)
{
    host.tools.answerRun(infoTool, 1, {.status = 7, .error = "no network"});
    wait();
    const QStringList before = host.log();
    EXPECT_EQ(poll(), 15.0);
    EXPECT_EQ(host.log().mid(before.size()), QStringList{u"Awaiting result from Apple..."_s});
    EXPECT_EQ(fileLines(u"Foo - Submitted"_s, u"Error 7 fetching info: no network Will try again shortly."_s)
                  .size(),
              1);
    EXPECT_EQ(host.document().infoFailureCount(), 1u);
}

TEST_F(Polling, aFailedQueryThatPrintsNothingHasALineOfItsOwn)
{
    host.tools.answerRun(infoTool, 1, {.status = 9});
    wait();
    EXPECT_EQ(poll(), 15.0);
    EXPECT_EQ(fileLines(u"Foo - Submitted"_s, u"Error 9 fetching info. Will try again shortly."_s).size(), 1);
}

TEST_F(Polling, theFourthOrdinaryFailureEndsTheWaitHoweverManyGoodRepliesCameBetween)
{
    for (const int failing : {1, 30, 60, 90})
        host.tools.answerRun(infoTool, failing, {.status = 1, .error = "down"});
    wait();
    for (int query = 1; query < 90; ++query)
        ASSERT_GT(poll(), 0) << query;
    EXPECT_EQ(poll(), -1);
    expectFinalAlert(u"Failed to Retrieve Info"_s);
    EXPECT_EQ(host.log(LogStyle::error), QStringList{u"Error 1 fetching info: down"_s});
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Submitted"_s, u"Foo.app"_s}));
    EXPECT_TRUE(host.listing(u"Foo - Submitted"_s).contains(u"Foo.app"_s));
    EXPECT_TRUE(host.listing(u"Foo - Submitted"_s).contains(u"RequestUUID.txt"_s));
}

TEST_F(Polling, aKilledOrSkippedQueryCountsAsAnOrdinaryFailure)
{
    host.tools.answerRun(infoTool, 1, {.signal = 15});
    wait();
    EXPECT_EQ(poll(), 15.0);
    EXPECT_EQ(host.document().infoFailureCount(), 1u);
}

namespace {

QString servers239Text(int minutes)
{
    return u"Apple's servers are responding incorrectly, claiming they don't recognize the UUID they have provided. Typically they correct themselves in time, but it can take a while — potentially several hours. Sealwright will keep polling for about %1 more minutes."_s
        .arg(minutes);
}

} // namespace

TEST_F(Polling, status239CountsMinutesDownAndWaits30And30AndThen60Seconds)
{
    host.tools.answer(infoTool, {.status = 239, .error = "unknown"});
    wait();
    const double delays[] = {30.0, 30.0, 60.0, 60.0};
    for (int failure = 0; failure < 4; ++failure) {
        EXPECT_EQ(poll(), delays[failure]);
        const QStringList bold = host.log(LogStyle::bold);
        EXPECT_EQ(bold.at(bold.size() - 2), servers239Text(1000 - failure));
    }
    EXPECT_EQ(fileLines(u"Foo - Submitted"_s,
                        u"Error 239 fetching info: unknown Will try again in 30.000000 seconds."_s)
                  .size(),
              2);
    EXPECT_EQ(fileLines(u"Foo - Submitted"_s,
                        u"Error 239 fetching info: unknown Will try again in 60.000000 seconds."_s)
                  .size(),
              2);
}

TEST_F(Polling, a239LimitOfZeroRetriesOnceAndShowsZeroMinutes)
{
    host.preferences.setValue(key::prefRetryLimitFor239Failure, 0);
    host.tools.answer(infoTool, {.status = 239, .error = "unknown"});
    wait();
    EXPECT_EQ(poll(), 30.0);
    EXPECT_TRUE(host.log(LogStyle::bold).contains(servers239Text(0)));
    EXPECT_EQ(poll(), -1);
    expectFinalAlert(u"Failed to Retrieve Info"_s);
    EXPECT_EQ(host.log(LogStyle::error), QStringList{u"Error 239 fetching info: unknown"_s});
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Submitted"_s, u"Foo.app"_s}));
}

TEST_F(Polling, aNegative239LimitNeverEndsTheWait)
{
    host.preferences.setValue(key::prefRetryLimitFor239Failure, -1);
    host.tools.answer(infoTool, {.status = 239});
    wait();
    for (int failure = 0; failure < 5; ++failure)
        EXPECT_GT(poll(), 0);
}

TEST_F(Polling, the239LimitIsReadAfreshAtEachFailure)
{
    host.tools.answer(infoTool, {.status = 239});
    wait();
    EXPECT_GT(poll(), 0);
    host.preferences.setValue(key::prefRetryLimitFor239Failure, 0);
    EXPECT_EQ(poll(), -1);
}

TEST_F(Polling, a239FailureAndAnOrdinaryOneDoNotMeet)
{
    answerRuns(1, 3, {.status = 1});
    answerRuns(4, 13, {.status = 239});
    wait();
    for (int failure = 0; failure < 13; ++failure)
        EXPECT_GT(poll(), 0) << failure;
    EXPECT_EQ(host.document().infoFailureCount(), 3u);
    EXPECT_EQ(host.document().info239FailureCount(), 10u);
    EXPECT_EQ(poll(), 30.0); // in progress
}

TEST(DelayAfter239, addsUpToAThousandMinutesForTheDefaultLimit)
{
    double seconds = 0;
    for (quint64 failure = 1; failure <= 1001; ++failure)
        seconds += delayAfter239(failure);
    EXPECT_EQ(seconds, 60000.0);
}

TEST_F(Polling, aNewSubmissionStartsWithBothCountersAtZero)
{
    host.tools.answerRun(infoTool, 1, {.status = 1});
    host.tools.answerRun(infoTool, 2, {.status = 239});
    host.tools.answerRun(infoTool, 3, reply(FakeTools::infoReport(u"success"_s)));
    wait();
    host.firePolls();
    EXPECT_EQ(host.document().infoFailureCount(), 1u);
    items::makeBundle(host.item(u"Foo.app"_s));
    host.window().answerSheet();
    host.submit(host.item(u"Foo.app"_s));
    EXPECT_EQ(host.document().infoFailureCount(), 0u);
    EXPECT_EQ(host.document().info239FailureCount(), 0u);
}

TEST_F(Polling, theStatusAndTheFlagsFollowTheVerdict)
{
    host.tools.answerRun(infoTool, 1, reply(FakeTools::infoReport(u"success"_s)));
    host.tools.answer(u"stapler"_s, {.hangs = true});
    wait();
    host.timers.fireNext();
    EXPECT_EQ(host.document().staplingTimer(), nullptr);
    host.runUntil([this] { return !host.tools.callsOf(u"stapler"_s).isEmpty() && host.mainQueue.isEmpty(); });
    EXPECT_EQ(host.document().statusString(), u"stapling"_s);
    EXPECT_FALSE(host.document().isPolling());
    EXPECT_TRUE(host.document().isBusy());
    EXPECT_TRUE(host.document().canCancel());
    host.document().doCancel();
    host.settle();
}

TEST_F(Polling, theOneNotificationGoesOutWhenStaplingBegins)
{
    host.preferences.setValue(key::userInfoShowWhenActive, false);
    host.tools.answer(infoTool, reply(FakeTools::infoReport(u"success"_s)));
    wait();
    poll();
    ASSERT_EQ(host.userNotifications.delivered.size(), 1);
    const auto &notification = host.userNotifications.delivered.first();
    EXPECT_EQ(notification.title, u"Notarization Successful"_s);
    EXPECT_EQ(notification.informativeText, u"Now stapling the submission"_s);
    EXPECT_EQ(notification.userInfo, (QVariantMap{{u"userInfoShowWhenActiveKey"_s, false}}));
    EXPECT_FALSE(host.userNotifications.shouldPresent(notification));
}

// Issues in the service's log

class Issues : public Polling {
protected:
    /// The log of a submission whose service log has these bytes.
    void finishWithLog(const QByteArray &serviceLog)
    {
        const QString url = u"https://example.com/log.json"_s;
        host.urls.contents.insert(QUrl(url), serviceLog);
        host.tools.answer(infoTool, reply(FakeTools::infoReport(u"success"_s, url)));
        wait();
        poll();
        EXPECT_EQ(host.listing(), QStringList{u"Foo - Notarized"_s});
    }

    const QString heading =
        u"Apple's servers reported one or more issues with this submission, which may or may not affect how it is treated by Gatekeeper. It will still be notarized, but you should check the result carefully before distributing it. Here is a summary of the issues:"_s;
};

TEST_F(Issues, areSummedUpUnderTheirHeading)
{
    finishWithLog(R"({"issues": [{"severity": "warning", "path": "Foo.app", "code": 7},
                                 {"message": "unsigned"}]})");
    EXPECT_TRUE(host.log(LogStyle::bold).contains(heading));
    EXPECT_EQ(
        host.log(LogStyle::error),
        QStringList{u"\npath: Foo.app\nseverity: warning\n----------\nmessage: unsigned\n----------"_s});
}

TEST_F(Issues, asAnEmptyArrayLogTheHeadingAndAnEmptyEntry)
{
    finishWithLog(R"({"issues": []})");
    EXPECT_TRUE(host.log(LogStyle::bold).contains(heading));
    EXPECT_EQ(host.log(LogStyle::error), QStringList{u""_s});
}

TEST_F(Issues, asNullLogNothing)
{
    finishWithLog(R"({"issues": null})");
    EXPECT_FALSE(host.log(LogStyle::bold).contains(heading));
    EXPECT_TRUE(host.log(LogStyle::error).isEmpty());
}

TEST_F(Issues, withNumbersAndNestedObjectsAloneGiveTheSeparatorLineAlone)
{
    finishWithLog(R"({"issues": [{"code": 7, "inner": {"a": "b"}}]})");
    EXPECT_EQ(host.log(LogStyle::error), QStringList{u"\n----------"_s});
}

TEST_F(Issues, inALogThatIsNoJsonAreNone)
{
    finishWithLog("<html>");
    EXPECT_TRUE(host.log(LogStyle::error).isEmpty());
}

TEST_F(Issues, logsTheFullContentsToTheFileAndNeverToTheWindow)
{
    finishWithLog(R"({"issues": null})");
    EXPECT_EQ(fileLines(u"Foo - Notarized"_s, u"LogFileURL full contents: {\"issues\": null}"_s).size(), 1);
    EXPECT_TRUE(host.log().filter(u"LogFileURL"_s).isEmpty());
}

TEST_F(Polling, aLogThatFailsToLoadDoesNotStopStaplingAndSaysNothing)
{
    host.tools.answer(infoTool,
                      reply(FakeTools::infoReport(u"success"_s, u"https://example.com/gone.json"_s)));
    wait();
    poll();
    EXPECT_EQ(host.urls.asked, QList<QUrl>{QUrl(u"https://example.com/gone.json"_s)});
    EXPECT_EQ(host.listing(), QStringList{u"Foo - Notarized"_s});
    EXPECT_TRUE(host.log(LogStyle::error).isEmpty());
    EXPECT_EQ(host.log(LogStyle::bold).mid(host.log(LogStyle::bold).size() - 2),
              (QStringList{u"The submission has been notarized and will now be stapled..."_s,
                           u"Stapling succeeded."_s}));
}

// Cancel and close

namespace {

const QString cancelText =
    u"The app has been uploaded, but notarizing has not been confirmed. Once you get a confirmation email on your Apple ID email account, you can staple the app using the Staple Only button."_s;

} // namespace

TEST_F(Polling, aCancelWhileWaitingEndsTheWaitWithOneReport)
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

TEST_F(Polling, aCancelDuringAQueryEndsTheToolAndIsReportedOnce)
{
    host.tools.answer(infoTool, {.hangs = true});
    wait();
    host.timers.fireNext();
    host.runUntil([this] { return !host.tools.callsOf(infoTool).isEmpty(); });
    host.document().doCancel();
    host.settle();
    EXPECT_TRUE(host.timers.armed().isEmpty());
    EXPECT_EQ(host.window().sheets.size(), 1);
    EXPECT_FALSE(host.document().cancelPressed());
    EXPECT_EQ(host.log(LogStyle::bold).count(u"Process cancelled..."_s), 2);
    EXPECT_TRUE(host.listing(u"Foo - Submitted"_s).contains(u"Foo.app"_s));
}

TEST_F(Polling, aCancelThatFindsTheBudgetUsedUpSwallowsTheLastReport)
{
    answerRuns(1, 3, {.status = 1});
    host.tools.answerRun(infoTool, 4, {.hangs = true});
    wait();
    for (int failure = 0; failure < 3; ++failure)
        poll();
    host.timers.fireNext();
    host.runUntil([this] { return host.tools.callsOf(infoTool).size() == 4; });
    host.document().doCancel();
    host.settle();
    EXPECT_EQ(host.window().sheets.size(), 1);
    EXPECT_FALSE(host.document().cancelPressed());
}

TEST_F(Polling, aCancelAfterAReplyInProgressEndsInPollOrCancel)
{
    wait();
    host.document().cancelPressed.set(true);
    EXPECT_EQ(poll(), -1);
    EXPECT_TRUE(host.window().sheets.isEmpty()); // the report of the step is the one that is dropped
    EXPECT_EQ(host.log(LogStyle::bold).last(), u"Process cancelled..."_s);
    EXPECT_FALSE(host.document().cancelPressed());
}

TEST_F(Polling, aCancelAfterASuccessGoesOnToStapling)
{
    host.tools.answer(infoTool, reply(FakeTools::infoReport(u"success"_s)));
    wait();
    host.document().cancelPressed.set(true);
    EXPECT_EQ(poll(), -1);
    EXPECT_EQ(host.listing(), QStringList{u"Foo - Notarized"_s});
}

TEST_F(Polling, closingTheWindowThroughItsSheetEndsTheWaitWithoutAWord)
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

TEST_F(Polling, keepingTheWindowOpenBringsTheStatusBackToWaiting)
{
    wait();
    host.window().performClose();
    EXPECT_EQ(host.document().statusString(), u"interacting"_s);
    host.window().answerSheet(platform::alertFirstButton);
    EXPECT_EQ(host.document().statusString(), u"waiting"_s);
    EXPECT_EQ(host.timers.armed().size(), 1);
}

TEST_F(Polling, aQueryInFlightAtTheCloseMayArmATimerForTheClosedDocument)
{
    host.tools.answer(infoTool, {.hangs = true});
    wait();
    const DocumentPtr document = host.application().allControllers().first();
    host.timers.fireNext();
    host.runUntil([this] { return !host.tools.callsOf(infoTool).isEmpty(); });
    host.window().performClose();
    host.window().answerSheet(platform::alertSecondButton);
    document->taskRunner()->terminateTaskFor(document->uniqueID); // the reply comes: a failure
    host.settle();
    EXPECT_EQ(host.timers.armed().size(), 1);
}
