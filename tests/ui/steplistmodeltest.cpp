// The list of steps as rows of text.

#include "ui/steplistmodel.h"
#include "support/allsteps.h"

#include "support/fakehost.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

class StepListModelTest : public testing::Test {
protected:
    StepListModelTest() { steps.plan({step::signMainFile, step::upload, step::awaitResult, step::staple}); }

    QStringList texts(int role = Qt::DisplayRole)
    {
        QStringList lines;
        for (int row = 0; row < model.rowCount(); ++row)
            lines.append(model.index(row).data(role).toString());
        return lines;
    }

    void wait(qint64 polls, quint64 failures)
    {
        steps.begin(step::awaitResult);
        steps.pollIn(30, 0);
        for (qint64 poll = 0; poll < polls; ++poll) {
            steps.pollNow();
            steps.pollIn(30, failures);
        }
    }

    ManualClock clock;
    StepList steps{clock};
    StepListModel model{steps};
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(StepListModelTest, namesEachStepInItsOrder)
{
    EXPECT_EQ(
        texts(),
        (QStringList{u"Sign main file"_s, u"Upload to Apple"_s, u"Wait for Apple's result"_s, u"Staple"_s}));
}

TEST_F(StepListModelTest, tellsAssistiveSoftwareTheStateAndTheTime)
{
    steps.begin(step::signMainFile);
    clock.time = clock.time.addSecs(75);
    steps.begin(step::upload);
    clock.time = clock.time.addSecs(4);
    EXPECT_EQ(texts(Qt::AccessibleTextRole),
              (QStringList{u"Sign main file: done, 1:15"_s, u"Upload to Apple: running, 0:04"_s,
                           u"Wait for Apple's result: waiting"_s, u"Staple: waiting"_s}));
    steps.finish(StepState::failed);
    EXPECT_EQ(texts(Qt::AccessibleTextRole).mid(1, 2),
              (QStringList{u"Upload to Apple: failed, 0:04"_s, u"Wait for Apple's result: skipped"_s}));
    steps.begin(step::awaitResult);
    steps.finish(StepState::cancelled);
    EXPECT_EQ(texts(Qt::AccessibleTextRole).at(2), u"Wait for Apple's result: cancelled, 0:00"_s);
}

TEST_F(StepListModelTest, hasNoTimeForAStepThatHasNotBegun)
{
    steps.begin(step::signMainFile);
    EXPECT_EQ(texts(StepListModel::durationRole), (QStringList{u"0:00"_s, {}, {}, {}}));
}

TEST_F(StepListModelTest, changesTheRowsThatChangeAndNoOthers)
{
    steps.begin(step::signMainFile);
    const QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    const QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
    steps.begin(step::upload);
    ASSERT_EQ(changed.size(), 2);
    EXPECT_EQ(changed.at(0).at(0).toModelIndex().row(), 0);
    EXPECT_EQ(changed.at(1).at(0).toModelIndex().row(), 1);
    EXPECT_TRUE(reset.isEmpty());
}

TEST_F(StepListModelTest, beginsAnewWithANewRun)
{
    wait(0, 0);
    const QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
    steps.plan({step::checkSignature, step::staple});
    EXPECT_EQ(texts(), (QStringList{u"Check code signature"_s, u"Staple"_s}));
    EXPECT_EQ(reset.size(), 1);
}

TEST_F(StepListModelTest, knowsTheStepThatRuns)
{
    EXPECT_FALSE(model.running().isValid());
    steps.begin(step::upload);
    EXPECT_EQ(model.running().row(), 1);
}

TEST_F(StepListModelTest, hasALastLineWhileItWaits)
{
    wait(7, 1);
    EXPECT_EQ(model.rowCount(), 5);
    EXPECT_EQ(texts().last(), u"Next check at 14:03:52 · 7 checks, 1 failed"_s);
    EXPECT_EQ(texts(Qt::AccessibleTextRole).last(), texts().last());
    EXPECT_FALSE(model.index(4).data(StepListModel::stateRole).isValid());
    steps.begin(step::staple);
    EXPECT_EQ(model.rowCount(), 4);
}

TEST_F(StepListModelTest, keepsTheLastLineUpToDate)
{
    wait(0, 0);
    EXPECT_EQ(texts().last(), u"Next check at 14:03:52"_s);
    steps.pollNow();
    EXPECT_EQ(texts().last(), u"Checking now · 1 check"_s);
    steps.pollIn(15, 1);
    EXPECT_EQ(texts().last(), u"Next check at 14:03:37 · 1 check, 1 failed"_s);
}

TEST_F(StepListModelTest, outlivesTheList)
{
    auto shortLived = std::make_unique<StepList>(clock);
    shortLived->plan({step::staple});
    shortLived->begin(step::staple);
    const StepListModel orphan(*shortLived);
    shortLived.reset();
    EXPECT_EQ(orphan.index(0).data(Qt::AccessibleTextRole).toString(), u"Staple: running"_s);
}

TEST(StepDuration, isMinutesAndSecondsAndHoursWhereThereAreAny)
{
    EXPECT_EQ(durationText(0), u"0:00"_s);
    EXPECT_EQ(durationText(7), u"0:07"_s);
    EXPECT_EQ(durationText(252), u"4:12"_s);
    EXPECT_EQ(durationText(3599), u"59:59"_s);
    EXPECT_EQ(durationText(3600), u"1:00:00"_s);
    EXPECT_EQ(durationText(3723), u"1:02:03"_s);
}
