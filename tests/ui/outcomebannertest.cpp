#include "ui/outcomebanner.h"
#include "support/allsteps.h"
#include "windowtest.h"

#include "support/fakehost.h"

#include <QLabel>
#include <QPushButton>

using namespace Qt::StringLiterals;
using Kind = RunOutcome::Kind;

namespace {

class OutcomeOfARun : public testing::Test {
protected:
    OutcomeOfARun() { steps.plan({step::makeWorkingCopy, step::awaitResult, step::staple}); }

    ManualClock clock;
    StepList steps{clock};
    LastWords words{u"Foo.app"_s, {}, {}, {}};
};

class OutcomeBannerTest : public WindowTest {
protected:
    OutcomeBanner &banner() { return page().banner(); }
    QString title() { return part<QLabel>(u"outcomeTitle"_s).text(); }
    QString sentence() { return part<QLabel>(u"outcomeSentence"_s).text(); }
};

} // namespace

TEST_F(OutcomeOfARun, isNoneBeforeAndWhileItRuns)
{
    EXPECT_EQ(outcomeOf(StepList{clock}, words).kind, Kind::none);
    EXPECT_EQ(outcomeOf(steps, words).kind, Kind::none);
    steps.begin(step::makeWorkingCopy);
    EXPECT_EQ(outcomeOf(steps, words).kind, Kind::none);
}

TEST_F(OutcomeOfARun, isTheWaitWithItsNextCheck)
{
    steps.begin(step::awaitResult);
    steps.pollIn(30, 0);
    const RunOutcome outcome = outcomeOf(steps, words);
    EXPECT_EQ(outcome.kind, Kind::waiting);
    EXPECT_TRUE(outcome.sentence.startsWith(u"Next check at "_s));
}

TEST_F(OutcomeOfARun, isNotarizedAfterTheTicket)
{
    steps.begin(step::staple);
    steps.finish(StepState::done);
    EXPECT_EQ(outcomeOf(steps, words),
              (RunOutcome{Kind::notarized, u"Notarized"_s, u"Foo.app is notarized and stapled."_s}));
}

TEST_F(OutcomeOfARun, isSignedWhereNothingIsStapled)
{
    steps.plan({step::makeWorkingCopy, step::signMainFile});
    steps.begin(step::signMainFile);
    steps.finish(StepState::done);
    EXPECT_EQ(outcomeOf(steps, words).kind, Kind::isSigned);
}

TEST_F(OutcomeOfARun, tellsTheErrorOfTheLogWhereTheSheetLeadsThere)
{
    steps.begin(step::makeWorkingCopy);
    steps.finish(StepState::failed);
    words.alertTitle = u"Error Signing Code"_s;
    words.alertText = u"See the log for details."_s;
    words.errorLine = u"Error 1 in codesign: no identity"_s;
    EXPECT_EQ(outcomeOf(steps, words),
              (RunOutcome{Kind::failed, u"Error Signing Code"_s, u"Error 1 in codesign: no identity"_s}));
}

TEST_F(OutcomeOfARun, tellsNoNumberThatNamesARecordOfTheLog)
{
    steps.begin(step::makeWorkingCopy);
    steps.finish(StepState::failed);
    words.errorLine = u"Error 140113510154400 in codesign: no identity"_s;
    EXPECT_EQ(outcomeOf(steps, words).sentence, u"Error in codesign: no identity"_s);
}

TEST_F(OutcomeOfARun, tellsTheStepWhereNoSheetCame)
{
    steps.begin(step::makeWorkingCopy);
    steps.finish(StepState::failed);
    EXPECT_EQ(outcomeOf(steps, words).title, stepName(step::makeWorkingCopy));
}

TEST_F(OutcomeOfARun, isARefusalWhenTheServiceSaysSo)
{
    steps.begin(step::awaitResult);
    steps.finish(StepState::failed);
    words.errorLine = u"The submission has been rejected"_s;
    EXPECT_EQ(outcomeOf(steps, words).kind, Kind::refused);
}

TEST_F(OutcomeOfARun, ofAScriptIsARefusalByTheReport)
{
    steps.begin(step::awaitResult);
    steps.finish(StepState::failed);
    words.errorLine = QString::fromUtf8(FakeTools::infoReport(u"invalid"_s));
    words.finding = u"helper: Not signed."_s;
    EXPECT_EQ(outcomeOf(steps, words),
              (RunOutcome{Kind::refused, u"Notarization Failed"_s, u"helper: Not signed."_s}));
    words.errorLine = QString::fromUtf8(FakeTools::infoReport(u"no word that anybody knows"_s));
    EXPECT_EQ(outcomeOf(steps, words).kind, Kind::failed);
}

TEST_F(OutcomeOfARun, isCancelled)
{
    steps.begin(step::makeWorkingCopy);
    steps.finish(StepState::cancelled);
    EXPECT_EQ(outcomeOf(steps, words).kind, Kind::cancelled);
}

TEST(TimeOfALine, isToldFromTheRest)
{
    EXPECT_EQ(lengthOfTime(u"14:03:22.123: Creating"), 14);
    EXPECT_EQ(lengthOfTime(u"Creating"), 0);
    EXPECT_EQ(withoutTime(u"14:03:22.123: Creating\n"), u"Creating"_s);
}

TEST_F(OutcomeBannerTest, isNotThereBeforeARun)
{
    EXPECT_FALSE(banner().isVisible());
}

TEST_F(OutcomeBannerTest, staysAfterTheSheetHasGoneUntilTheNextRun)
{
    document().stepList.plan({step::makeWorkingCopy, step::signMainFile});
    document().stepList.begin(step::makeWorkingCopy);
    document().stepList.finish(StepState::failed);
    window().beginSheet({u"Error Copying"_s, u"No room."_s, {}}, [](int) {});
    answer(u"OK"_s);
    EXPECT_TRUE(banner().isVisible());
    EXPECT_EQ(title(), u"Error Copying"_s);
    EXPECT_EQ(sentence(), u"No room."_s);
    document().stepList.plan({step::makeWorkingCopy});
    document().stepList.begin(step::makeWorkingCopy);
    EXPECT_FALSE(banner().isVisible());
}

TEST_F(OutcomeBannerTest, offersToTryAgainWhatWentWrong)
{
    document().lastAction.set(signAction);
    document().stepList.plan({step::makeWorkingCopy});
    document().stepList.begin(step::makeWorkingCopy);
    document().stepList.finish(StepState::failed);
    EXPECT_TRUE(part<QPushButton>(u"outcomeTryAgain"_s).isVisible());
    EXPECT_FALSE(part<QPushButton>(u"outcomeCopyIdentifier"_s).isVisible()) << "nothing has been uploaded";
}
