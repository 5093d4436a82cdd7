// How long failed queries are survived.

#include "notarization/pollingsteps.h"
#include "notarization/pollingtest.h"
#include "support/singlesteps.h"

#include "app/preferencekeys.h"

using namespace Qt::StringLiterals;

class PollingFailure : public Polling {
protected:
    void answerRuns(int from, int to, const ToolAnswer &answer)
    {
        for (int run = from; run <= to; ++run)
            host.tools.answerRun(infoTool, run, answer);
    }
};

TEST_F(PollingFailure, aFailedQueryIsRetriedSoonAndShowsInTheLogFileOnly)
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

TEST_F(PollingFailure, aFailedQueryThatPrintsNothingHasALineOfItsOwn)
{
    host.tools.answerRun(infoTool, 1, {.status = 9});
    wait();
    EXPECT_EQ(poll(), 15.0);
    EXPECT_EQ(fileLines(u"Foo - Submitted"_s, u"Error 9 fetching info. Will try again shortly."_s).size(), 1);
}

TEST_F(PollingFailure, theFourthOrdinaryFailureEndsTheWaitHoweverManyGoodRepliesCameBetween)
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

TEST_F(PollingFailure, aKilledQueryCountsAsAnOrdinaryFailure)
{
    host.tools.answerRun(infoTool, 1, {.signal = 15});
    wait();
    EXPECT_EQ(poll(), 15.0);
    EXPECT_EQ(host.document().infoFailureCount(), 1u);
}

TEST_F(PollingFailure, aQueryThatTheSharedRunnerSkipsCountsAsAnOrdinaryFailure)
{
    host.tools.answer(u"altool-h"_s, {.output = "Copyright (c) 2019, Apple Inc. Version 3.1.2\n"});
    wait();
    MainWinController &document = host.document();
    host.tools.answer(u"xattr"_s, {.hangs = true});
    host.tools.forgetCalls();
    const DocumentPtr other = host.application().addedDocument();
    onWorker(*other,
             [&other] { EXPECT_EQ(SingleSteps(*other).tools.run(u"/usr/bin/xattr"_s, {})->status(), 0); });
    host.runUntil([this] { return !host.tools.callsOf(u"xattr"_s).isEmpty(); });
    ASSERT_TRUE(document.taskRunner()->terminateTaskFor(document.uniqueID)); // it is the other one's tool
    host.tools.release(u"xattr"_s);
    host.settle();

    EXPECT_EQ(poll(), 15.0);
    EXPECT_TRUE(host.tools.callsOf(infoTool).isEmpty());
    EXPECT_EQ(document.infoFailureCount(), 1u);
    EXPECT_EQ(fileLines(u"Foo - Submitted"_s, u"Error 1001 fetching info. Will try again shortly."_s).size(),
              1);
    EXPECT_EQ(poll(), 30.0);
}

namespace {

QString servers239Text(quint64 minutes)
{
    return u"Apple's servers are responding incorrectly, claiming they don't recognize the UUID they have provided. Typically they correct themselves in time, but it can take a while — potentially several hours. Sealwright will keep polling for about %1 more minutes."_s
        .arg(minutes);
}

} // namespace

TEST_F(PollingFailure, status239CountsMinutesDownAndWaits30And30AndThen60Seconds)
{
    host.tools.answer(infoTool, {.status = 239, .error = "unknown"});
    wait();
    const double delays[] = {30.0, 30.0, 60.0, 60.0};
    for (unsigned failure = 0; failure < 4; ++failure) {
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

TEST_F(PollingFailure, a239LimitOfZeroRetriesOnceAndShowsZeroMinutes)
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

TEST_F(PollingFailure, aNegative239LimitNeverEndsTheWait)
{
    host.preferences.setValue(key::prefRetryLimitFor239Failure, -1);
    host.tools.answer(infoTool, {.status = 239});
    wait();
    for (quint64 failure = 0; failure < 5; ++failure) {
        EXPECT_GT(poll(), 0);
        EXPECT_TRUE(host.log(LogStyle::bold).contains(servers239Text(18446744073709551615u - failure)));
    }
}

TEST_F(PollingFailure, aFailure239ThatPrintsNothingHasALineOfItsOwn)
{
    host.tools.answerRun(infoTool, 1, {.status = 239});
    wait();
    EXPECT_EQ(poll(), 30.0);
    EXPECT_EQ(
        fileLines(u"Foo - Submitted"_s, u"Error 239 fetching info. Will try again in 30.000000 seconds."_s)
            .size(),
        1);
}

TEST_F(PollingFailure, the239LimitIsReadAfreshAtEachFailure)
{
    host.tools.answer(infoTool, {.status = 239});
    wait();
    EXPECT_GT(poll(), 0);
    host.preferences.setValue(key::prefRetryLimitFor239Failure, 0);
    EXPECT_EQ(poll(), -1);
}

TEST_F(PollingFailure, a239FailureAndAnOrdinaryOneDoNotMeet)
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

TEST_F(PollingFailure, aNewSubmissionStartsWithBothCountersAtZero)
{
    host.tools.answerRun(infoTool, 1, {.status = 1});
    host.tools.answerRun(infoTool, 2, {.status = 239});
    host.tools.answerRun(infoTool, 3, success());
    wait();
    host.firePolls();
    EXPECT_EQ(host.document().infoFailureCount(), 1u);
    items::makeBundle(host.item(u"Foo.app"_s));
    host.window().answerSheet();
    host.submit(host.item(u"Foo.app"_s));
    EXPECT_EQ(host.document().infoFailureCount(), 0u);
    EXPECT_EQ(host.document().info239FailureCount(), 0u);
}
