// The two properties of the application that running workflows read.

#include "dbus/scriptedproperties.h"

#include "app/preferencekeys.h"

#include <cmath>

using namespace Qt::StringLiterals;

struct LimitRow {
    QVariant written;
    QVariant stored;
};

class PollingDelay : public ApplicationProperties, public testing::WithParamInterface<LimitRow> { };

TEST_P(PollingDelay, isStoredWithinItsLimits)
{
    expectTaken(u"PollingDelay"_s, GetParam().written);
    EXPECT_EQ(stored(key::pollingDelay), GetParam().stored);
    EXPECT_EQ(get(u"PollingDelay"_s), GetParam().stored);
}

INSTANTIATE_TEST_SUITE_P(Values, PollingDelay,
                         testing::Values(LimitRow{5, 20.0}, LimitRow{1000, 300.0}, LimitRow{45.5, 45.5},
                                         LimitRow{20, 20.0}, LimitRow{19.999, 20.0}, LimitRow{300.5, 300.0},
                                         LimitRow{-1.0, 20.0}, LimitRow{33.3, static_cast<double>(33.3F)},
                                         LimitRow{nothing, 20.0}, LimitRow{std::nan(""), 300.0},
                                         LimitRow{HUGE_VAL, 300.0}, LimitRow{-HUGE_VAL, 20.0},
                                         LimitRow{std::numeric_limits<qulonglong>::max(), 300.0},
                                         LimitRow{QVariant::fromValue<uchar>(60), 60.0}));

class RetryLimit : public ApplicationProperties, public testing::WithParamInterface<LimitRow> { };

TEST_P(RetryLimit, isStoredFromThreeOn)
{
    expectTaken(u"ErrorRetryLimit"_s, GetParam().written);
    EXPECT_EQ(stored(key::prefRetryLimitFor239Failure), GetParam().stored);
    EXPECT_EQ(get(u"ErrorRetryLimit"_s), GetParam().stored);
}

INSTANTIATE_TEST_SUITE_P(Values, RetryLimit,
                         testing::Values(LimitRow{0, 3LL}, LimitRow{2, 3LL}, LimitRow{3, 3LL},
                                         LimitRow{4, 4LL}, LimitRow{-7, 3LL}, LimitRow{nothing, 3LL},
                                         LimitRow{std::numeric_limits<qlonglong>::max(),
                                                  std::numeric_limits<qlonglong>::max()}));

TEST_F(ApplicationProperties, whatRunningWorkflowsReadHasItsDefaults)
{
    EXPECT_EQ(get(u"PollingDelay"_s), QVariant(30.0));
    EXPECT_EQ(get(u"ErrorRetryLimit"_s), QVariant(1000LL));
}

TEST_F(ApplicationProperties, whatAPersonTypedIntoTheFileIsReadAsANumber)
{
    host.preferences.setValue(key::pollingDelay, u"45.5"_s);
    host.preferences.setValue(key::prefRetryLimitFor239Failure, u"12"_s);
    EXPECT_EQ(get(u"PollingDelay"_s), QVariant(45.5));
    EXPECT_EQ(get(u"ErrorRetryLimit"_s), QVariant(12LL));
}

TEST_F(ApplicationProperties, whatRunningWorkflowsReadIsNotWrittenWhileTheApplicationAsksAPerson)
{
    host.application().changeStatus(status::interacting);
    for (const QString &name : {u"PollingDelay"_s, u"ErrorRetryLimit"_s}) {
        EXPECT_EQ(failureOf(set(name, 100)), u"N1199 Application is busy, status: interacting."_s);
        EXPECT_EQ(errorOf(set(name, u"100"_s)), buserror::invalidArgs);
    }
    host.application().changeStatus(status::loading);
    EXPECT_EQ(failureOf(set(u"PollingDelay"_s, 100)), u"N1199 Application is busy, status: loading."_s);
    EXPECT_TRUE(host.preferences.takeChanges().isEmpty());
    host.application().changeStatus(status::ready);
}

TEST_F(ApplicationProperties, whatRunningWorkflowsReadIsWrittenWhileEveryDocumentIsBusy)
{
    host.document().changeStatus(status::submitting);
    expectTaken(u"PollingDelay"_s, 100);
    expectTaken(u"ErrorRetryLimit"_s, 100);
    EXPECT_EQ(host.preferences.takeChanges(),
              (QStringList{key::pollingDelay, key::prefRetryLimitFor239Failure}));
}

TEST_F(ApplicationProperties, aRetryLimitIsAWholeNumber)
{
    for (const QVariant &value :
         {QVariant(5.0), QVariant(u"5"_s), QVariant(std::numeric_limits<qulonglong>::max())})
        EXPECT_EQ(errorOf(set(u"ErrorRetryLimit"_s, value)), buserror::invalidArgs);
    EXPECT_TRUE(host.preferences.takeChanges().isEmpty());
}

TEST_F(ApplicationProperties, aNewPollingDelayReachesTheSubmissionThatHasNotBeenUploaded)
{
    const QDBusPendingCall submission = beginEndlessSubmission();
    expectTaken(u"PollingDelay"_s, 200);
    host.tools.release(u"altool--notarization-history"_s, 1);
    host.runUntil([this] { return !host.timers.armed().isEmpty(); });
    EXPECT_EQ(host.timers.armed().first().interval, 200.0);
    cancel();
    client.end(submission);
    host.settle();
}

TEST_F(ApplicationProperties, aLowerRetryLimitEndsTheWaitOfASubmissionInFlight)
{
    host.tools.answer(u"altool--notarization-info"_s, {.status = 239});
    const QDBusPendingCall submission = client.beginSubmit({{u"at"_s, appURL()}}, documentPath());
    host.runUntil([this] { return !host.timers.armed().isEmpty(); });
    expectTaken(u"ErrorRetryLimit"_s, 3);
    host.runUntil([&] {
        host.timers.fireNext();
        return submission.isFinished();
    });
    EXPECT_TRUE(failureOf(submission.reply()).startsWith(u"N1116 Failed to Retrieve Info: "_s));
    EXPECT_EQ(host.tools.callsOf(u"altool--notarization-info"_s).size(), 5); // the limit and the last two
    host.settle();
}
