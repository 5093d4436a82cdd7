// The list of a run's steps by itself, on a clock that a test sets.

#include "document/steplist.h"
#include "support/allsteps.h"

#include "support/fakehost.h"
#include "support/steprows.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

class StepListTest : public testing::Test {
protected:
    StepListTest()
    {
        QObject::connect(&steps, &Observable::changed, &steps, [this] { ++changes; });
        steps.plan({step::signMainFile, step::upload, step::awaitResult, step::staple});
        changes = 0;
    }

    void pass(int seconds) { clock.time = clock.time.addSecs(seconds); }
    qint64 duration(int row) { return steps.duration(steps.rows().at(row)); }

    ManualClock clock;
    StepList steps{clock};
    int changes = 0;
};

TEST_F(StepListTest, aPlannedStepWaits)
{
    EXPECT_EQ(stepRows(steps),
              (QStringList{u"Sign main file: waiting"_s, u"Upload to Apple: waiting"_s,
                           u"Wait for Apple's result: waiting"_s, u"Staple: waiting"_s}));
    EXPECT_EQ(steps.running(), nullptr);
    EXPECT_EQ(duration(0), 0);
    EXPECT_FALSE(steps.rows().first().began.isValid());
}

TEST_F(StepListTest, aStepThatBeginsRunsAndTheOneBeforeItIsDone)
{
    steps.begin(step::signMainFile);
    EXPECT_EQ(stepRows(steps).first(), u"Sign main file: running"_s);
    EXPECT_EQ(changes, 1);
    steps.begin(step::upload);
    EXPECT_EQ(stepRows(steps).mid(0, 3),
              (QStringList{u"Sign main file: done"_s, u"Upload to Apple: running"_s,
                           u"Wait for Apple's result: waiting"_s}));
    ASSERT_TRUE(steps.running());
    EXPECT_EQ(steps.running()->step, step::upload);
    EXPECT_EQ(changes, 2);
}

TEST_F(StepListTest, aStepTakesWhatTheClockSays)
{
    const QDateTime beginning = clock.time;
    steps.begin(step::signMainFile);
    EXPECT_EQ(duration(0), 0);
    pass(75);
    EXPECT_EQ(duration(0), 75) << "so far";
    steps.begin(step::upload);
    pass(5);
    EXPECT_EQ(duration(0), 75) << "for good";
    EXPECT_EQ(duration(1), 5);
    EXPECT_EQ(steps.rows().at(0).began, beginning);
    EXPECT_EQ(steps.rows().at(0).ended, beginning.addSecs(75));
    EXPECT_FALSE(steps.rows().at(1).ended.isValid());
}

TEST_F(StepListTest, aStepTakesNoLessThanNothingWhereTheClockIsSetBack)
{
    steps.begin(step::signMainFile);
    pass(-3600);
    EXPECT_EQ(duration(0), 0);
}

TEST_F(StepListTest, anEndThatWorkedLeavesTheRunningStepDone)
{
    steps.begin(step::staple);
    pass(3);
    steps.finish(StepState::done);
    EXPECT_EQ(stepRows(steps).last(), u"Staple: done"_s);
    EXPECT_EQ(duration(3), 3);
    EXPECT_EQ(steps.running(), nullptr);
}

TEST_F(StepListTest, aFailureIsTheRunningStepsAndWhatFollowsIsSkipped)
{
    steps.begin(step::signMainFile);
    steps.begin(step::upload);
    pass(9);
    steps.finish(StepState::failed);
    EXPECT_EQ(stepRows(steps),
              (QStringList{u"Sign main file: done"_s, u"Upload to Apple: failed"_s,
                           u"Wait for Apple's result: skipped"_s, u"Staple: skipped"_s}));
    EXPECT_EQ(duration(1), 9);
}

TEST_F(StepListTest, ofTheEndingsOfOneRunTheFirstCounts)
{
    steps.begin(step::upload);
    steps.finish(StepState::cancelled);
    pass(4);
    steps.finish(StepState::failed);
    steps.finish(StepState::done);
    EXPECT_EQ(stepRows(steps).at(1), u"Upload to Apple: cancelled"_s);
    EXPECT_EQ(duration(1), 0);
}

TEST_F(StepListTest, aStepThatTheRunPassesByIsSkipped)
{
    steps.begin(step::upload);
    EXPECT_EQ(stepRows(steps).first(), u"Sign main file: skipped"_s);
}

TEST_F(StepListTest, aStepThatBeginsThoughTheRunWasCancelledRunsAllTheSame)
{
    steps.begin(step::signMainFile);
    steps.finish(StepState::cancelled);
    steps.begin(step::upload);
    EXPECT_EQ(stepRows(steps).mid(0, 2),
              (QStringList{u"Sign main file: cancelled"_s, u"Upload to Apple: running"_s}));
    steps.finish(StepState::done);
    EXPECT_EQ(stepRows(steps).mid(1, 2),
              (QStringList{u"Upload to Apple: done"_s, u"Wait for Apple's result: skipped"_s}));
}

TEST_F(StepListTest, aStepThatWasNotPlannedIsPutWhereTheRunStands)
{
    steps.begin(step::signMainFile);
    steps.begin(step::checkSignature);
    EXPECT_EQ(stepRows(steps).mid(0, 3),
              (QStringList{u"Sign main file: done"_s, u"Check code signature: running"_s,
                           u"Upload to Apple: waiting"_s}));
    steps.begin(step::upload);
    steps.finish(StepState::done);
    steps.begin(step::findIdentifier);
    EXPECT_EQ(stepRows(steps).last(), u"Find bundle identifier: running"_s);
}

TEST_F(StepListTest, aNewRunBeginsANewList)
{
    steps.begin(step::signMainFile);
    steps.pollIn(30, 0);
    steps.plan({step::checkSignature, step::staple});
    EXPECT_EQ(stepRows(steps), (QStringList{u"Check code signature: waiting"_s, u"Staple: waiting"_s}));
    EXPECT_FALSE(steps.wait());
    EXPECT_EQ(changes, 3);
}

TEST_F(StepListTest, theWaitTellsTheNextPollAndWhatTheOnesBeforeItBrought)
{
    steps.begin(step::awaitResult);
    EXPECT_FALSE(steps.wait());
    steps.pollIn(30, 0);
    ASSERT_TRUE(steps.wait());
    EXPECT_EQ(steps.wait()->nextPoll, clock.time.addSecs(30));
    EXPECT_EQ(steps.wait()->polls, 0U);
    pass(30);
    steps.pollNow();
    EXPECT_FALSE(steps.wait()->nextPoll.isValid());
    EXPECT_EQ(steps.wait()->polls, 1U);
    steps.pollIn(15, 1);
    EXPECT_EQ(steps.wait()->nextPoll, clock.time.addSecs(15));
    EXPECT_EQ(steps.wait()->polls, 1U);
    EXPECT_EQ(steps.wait()->failures, 1U);
    EXPECT_EQ(changes, 4);
}

TEST_F(StepListTest, theWaitEndsWithItsStep)
{
    steps.begin(step::awaitResult);
    steps.pollIn(30, 0);
    steps.begin(step::staple);
    EXPECT_FALSE(steps.wait());
    steps.begin(step::awaitResult);
    steps.pollIn(30, 0);
    steps.finish(StepState::cancelled);
    EXPECT_FALSE(steps.wait());
}

TEST_F(StepListTest, aPollOfARunThatIsOverIsNotWaitedFor)
{
    steps.begin(step::awaitResult);
    steps.finish(StepState::cancelled);
    changes = 0;
    steps.pollIn(30, 0);
    steps.pollNow();
    EXPECT_FALSE(steps.wait());
    EXPECT_EQ(changes, 0);
}
