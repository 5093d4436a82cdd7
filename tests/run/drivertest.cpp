// The one driver of all workflows, with steps that do nothing but answer.

#include "run/workflow.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// What has happened, in its order. Steps are plain functions, so this is where they tell of themselves.
QStringList events;
/// What the next steps answer; beyond the list each has worked.
QList<StepResult> answers;

StepResult work(Run &)
{
    events.append(u"works"_s);
    return answers.isEmpty() ? StepResult(Done()) : answers.takeFirst();
}

class Watcher : public LiveChoices, public Progress {
public:
    ArchiveKind archiveKind() const override { return kind; }
    QString dropDMGConfiguration() const override { return {}; }
    bool cancelPressed() const override { return isCancelled; }
    void uploadAccepted() override { }
    bool skipsStapling() const override { return false; }

    void began(const Step &step) override { events.append(u"begins "_s + step.name.toString()); }
    void advanced(qsizetype, qsizetype) override { }
    void stopped() override { events.append(u"stopped"_s); }
    void failed(const Failure &failure) override { events.append(u"failed "_s + failure.title); }
    void leftBehind() override { beforeItIsLeft = events; }
    void ended(Run &) override { events.append(u"ended"_s); }
    void endedWithUpload() override { events.append(u"ended with the upload"_s); }
    void moved(const Places &places) override { events.append(u"moved to "_s + places.item); }
    void claimed(std::shared_ptr<platform::FolderClaim>) override { }
    void changedStatus(QStringView status) override { events.append(u"status "_s + status.toString()); }
    void offersCancel(CancelOffer offer) override
    {
        events.append(offer == CancelOffer::made ? u"cancel offered"_s : u"cancel withdrawn"_s);
    }
    void awaitsVerdict(const QString &) override { }
    void countsFailures(quint64, quint64) override { }
    void waits(const std::shared_ptr<platform::Timer> &, double seconds) override
    {
        events.append(u"waits %1"_s.arg(seconds));
    }
    void polls() override { events.append(u"polls"_s); }
    void verdictHasCome() override { }
    void serviceSaid(const QString &) override { }

    std::atomic<bool> isCancelled = false;
    ArchiveKind kind = ArchiveKind::zip;
    QStringList beforeItIsLeft; ///< what had happened when a failed run was left behind
};

class Drive : public testing::Test {
protected:
    Drive()
    {
        events.clear();
        answers.clear();
    }

    RunPtr runOf()
    {
        RunInputs inputs;
        inputs.places = {.original = u"/items/Foo.app"_s,
                         .fileName = u"Foo.app"_s,
                         .item = u"/items/Foo - Working/Foo.app"_s,
                         .upload = {}};
        const ToolSession::Setup tools{
            .runner = nullptr, .uploadRunner = nullptr, .owner = {}, .altoolPath = {}};
        return std::make_shared<::Run>(services, inputs, log, tools, watcher, watcher);
    }

    /// Goes on as far as it gets, on this thread.
    Driver::State drive(const Workflow &workflow)
    {
        return std::make_shared<Driver>(runOf(), workflow)->proceed();
    }

    TestHost host;
    const platform::Host services = host.host();
    RunLog log{host.clock, host.files, [](const QString &, LogStyle) {}};
    std::shared_ptr<Watcher> watcher = std::make_shared<Watcher>();
};

constexpr Step first{.name = u"first", .work = &work};
constexpr Step second{.name = u"second", .work = &work};
constexpr Step nameless{.name = {}, .work = &work};
constexpr Step hidden{.name = u"hidden", .work = &work, .inPlan = InPlan::hidden};
constexpr Step withoutTest{.name = u"untested", .work = &work, .cancelTest = CancelTest::isLeftOut};
constexpr Step unwanted{.name = u"unwanted", .work = &work, .isWanted = [](Run &) { return false; }};

const Step &chosenByArchive(const LiveChoices &live)
{
    return live.archiveKind() == ArchiveKind::zip ? first : second;
}
constexpr Step chosen{.name = u"either", .work = nullptr, .chosen = &chosenByArchive};

Failure cancelled()
{
    return {u"Cancelled"_s, u"line"_s, FolderFate::keepsItsName};
}
constexpr Wait aWait{.begin = [](Run &) { return 30.0; }, .line = u"again", .whenCancelled = &cancelled};
constexpr Step waiting{.name = u"wait", .work = &work, .wait = &aWait, .cancelOffer = CancelOffer::made};

} // namespace

// The plan

TEST_F(Drive, showsTheRowsThatHaveANameAndAreNotHidden)
{
    EXPECT_EQ(planOf({first, nameless, hidden, second}), (QList<Step>{first, second}));
}

// The road

TEST_F(Drive, takesStepAfterStepAndTellsTheEnd)
{
    EXPECT_EQ(drive({first, nameless, second}), Driver::State::ended);
    EXPECT_EQ(
        events,
        (QStringList{u"begins first"_s, u"works"_s, u"works"_s, u"begins second"_s, u"works"_s, u"ended"_s}));
}

TEST_F(Drive, passesOverAStepThatIsNotWanted)
{
    EXPECT_EQ(drive({unwanted, second}), Driver::State::ended);
    EXPECT_EQ(events, (QStringList{u"begins second"_s, u"works"_s, u"ended"_s}));
}

TEST_F(Drive, takesTheStepThatIsChosenWhenItsTurnComes)
{
    watcher->kind = ArchiveKind::diskImage;
    EXPECT_EQ(drive({chosen}), Driver::State::ended);
    EXPECT_EQ(events.first(), u"begins second"_s);
}

TEST_F(Drive, endsBeforeItsLastStepWhereAStepSaysSo)
{
    answers = {EndsHere()};
    EXPECT_EQ(drive({first, second}), Driver::State::ended);
    EXPECT_EQ(events, (QStringList{u"begins first"_s, u"works"_s, u"ended with the upload"_s}));
}

TEST_F(Drive, takesARunThatIsOverNoFurther)
{
    const auto run = runOf();
    const auto driver = std::make_shared<Driver>(run, Workflow{first});
    EXPECT_EQ(driver->proceed(), Driver::State::ended);
    events.clear();
    EXPECT_EQ(driver->proceed(), Driver::State::ended);
    EXPECT_EQ(events, QStringList());
}

// Failures

TEST_F(Drive, reportsAFailureBeforeItNamesTheFolder)
{
    answers = {Failure{u"Title"_s, u"line"_s}};
    EXPECT_EQ(drive({first, second}), Driver::State::failed);
    EXPECT_EQ(events,
              (QStringList{u"begins first"_s, u"works"_s, u"failed Title"_s,
                           u"moved to /items/Foo - Failed/Foo.app"_s}));
}

TEST_F(Drive, leavesAFailedRunBehindWhenItsFolderHasItsLastName)
{
    answers = {Failure{u"Title"_s, u"line"_s}};
    EXPECT_EQ(drive({first, second}), Driver::State::failed);
    EXPECT_EQ(watcher->beforeItIsLeft.value(watcher->beforeItIsLeft.size() - 1),
              u"moved to /items/Foo - Failed/Foo.app"_s);
    EXPECT_EQ(watcher->beforeItIsLeft, events) << "and nothing comes after";
}

TEST_F(Drive, leavesTheFolderItsNameWhereTheFailureSaysSo)
{
    answers = {Failure{u"Title"_s, u"line"_s, FolderFate::keepsItsName}};
    EXPECT_EQ(drive({first}), Driver::State::failed);
    EXPECT_EQ(events.last(), u"failed Title"_s);
}

// Cancels

TEST_F(Drive, stopsBehindTheStepDuringWhichACancelCame)
{
    watcher->isCancelled = true;
    EXPECT_EQ(drive({first, second}), Driver::State::stopped);
    EXPECT_EQ(events, (QStringList{u"begins first"_s, u"works"_s, u"stopped"_s}));
}

TEST_F(Drive, looksForNoCancelBehindAStepThatLeavesItOut)
{
    watcher->isCancelled = true;
    EXPECT_EQ(drive({withoutTest, first, second}), Driver::State::stopped);
    EXPECT_EQ(events,
              (QStringList{u"begins untested"_s, u"works"_s, u"begins first"_s, u"works"_s, u"stopped"_s}));
}

TEST_F(Drive, looksForACancelBehindAStepThatIsNotWanted)
{
    watcher->isCancelled = true;
    EXPECT_EQ(drive({unwanted, first}), Driver::State::stopped);
    EXPECT_EQ(events, QStringList{u"stopped"_s});
}

// Waits

TEST_F(Drive, waitsBeforeAStepThatWaitsAndGoesOnWhenTheTimerFires)
{
    EXPECT_EQ(drive({waiting, second}), Driver::State::waits);
    EXPECT_EQ(events,
              (QStringList{u"begins wait"_s, u"waits 30"_s, u"status waiting"_s, u"cancel offered"_s}));
    events.clear();
    answers = {Again{15}};
    host.timers.fireNext();
    host.settle();
    EXPECT_EQ(events, (QStringList{u"polls"_s, u"works"_s, u"waits 15"_s}));
    events.clear();
    host.timers.fireNext();
    host.settle();
    EXPECT_EQ(events, (QStringList{u"polls"_s, u"works"_s, u"begins second"_s, u"works"_s, u"ended"_s}));
    EXPECT_TRUE(host.timers.armed().isEmpty());
}

TEST_F(Drive, armsTheTimerOfAWaitThoughACancelCameBefore)
{
    watcher->isCancelled = true;
    EXPECT_EQ(drive({waiting}), Driver::State::waits);
    EXPECT_EQ(events, (QStringList{u"begins wait"_s, u"waits 30"_s, u"status waiting"_s, u"stopped"_s}));
    EXPECT_EQ(host.timers.armed().size(), 1);
}

TEST_F(Drive, endsAWaitDuringWhichACancelCame)
{
    EXPECT_EQ(drive({waiting, second}), Driver::State::waits);
    events.clear();
    watcher->isCancelled = true;
    answers = {Again{15}};
    host.timers.fireNext();
    host.settle();
    EXPECT_EQ(events, (QStringList{u"polls"_s, u"works"_s, u"failed Cancelled"_s}));
    EXPECT_TRUE(host.timers.armed().isEmpty());
}
