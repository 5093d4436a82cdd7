// What is still in a tool's streams after its end.

#include "tools/runnerfixture.h"
#include "tools/scriptedlauncher.h"

#include <QElapsedTimer>

using namespace Qt::StringLiterals;

class LateBytes : public testing::Test {
protected:
    SLWTaskResponsePtr run(ScriptedRun wanted, const QStringList &arguments = {})
    {
        launcher.add(std::move(wanted));
        return runner.runTool(u"/usr/bin/xcrun"_s, arguments, u"owner"_s);
    }

    ScriptedLauncher launcher;
    SLWTaskMaster runner{launcher, RunnerPauses{.afterExit = 0, .altoolRetry = 0}};
};

TEST_F(LateBytes, aLoneByteOfOutputIsLost)
{
    EXPECT_EQ(run({.chunks = {"all", " of it"}, .lateOutput = {"x"}})->outputData(), "all of it");
}

TEST_F(LateBytes, twoBytesOfOutputAreKept)
{
    EXPECT_EQ(run({.chunks = {"all"}, .lateOutput = {"xy"}})->outputData(), "allxy");
}

TEST_F(LateBytes, aLoneByteOfErrorIsLost)
{
    EXPECT_EQ(run({.error = "wrong", .lateError = "x"})->errorData(), "wrong");
}

TEST_F(LateBytes, twoBytesOfErrorAreKept)
{
    EXPECT_EQ(run({.error = "wrong", .lateError = "xy"})->errorData(), "wrongxy");
}

TEST_F(LateBytes, aLoneByteThatCameInTimeIsKept)
{
    const auto response = run({.chunks = {"x"}, .error = "y"});
    EXPECT_EQ(response->outputData(), "x");
    EXPECT_EQ(response->errorData(), "y");
}

TEST_F(LateBytes, aSilentNotaryToolIsLookedAtTenTimesMore)
{
    const auto response = run({}, {u"altool"_s, u"-h"_s});
    EXPECT_EQ(response->status(), 0);
    EXPECT_TRUE(response->outputString().isNull());
    EXPECT_EQ(launcher.outputReads, 1 + 10);
}

TEST_F(LateBytes, theLooksEndWithTheFirstThatFindsSomething)
{
    const auto response = run({.lateOutput = {"", "", "report", "more"}}, {u"altool"_s});
    EXPECT_EQ(response->outputData(), "report");
    EXPECT_EQ(launcher.outputReads, 3);
}

TEST_F(LateBytes, aLoneByteIsNoEndOfTheLooks)
{
    const auto response = run({.lateOutput = {"", "x", "ok"}}, {u"altool"_s});
    EXPECT_EQ(response->outputData(), "ok");
    EXPECT_EQ(launcher.outputReads, 3);
}

TEST_F(LateBytes, theNotaryToolInTransporterIsLookedAtOnce)
{
    const auto response =
        runner.runAltoolAt(u"/Applications/Transporter.app/altool"_s, {u"-h"_s}, u"owner"_s);
    EXPECT_TRUE(response->outputString().isNull());
    EXPECT_EQ(launcher.outputReads, 1);
}

TEST_F(LateBytes, aSilentFailureIsLookedAtOnce)
{
    EXPECT_EQ(run({.status = 1}, {u"altool"_s})->status(), 1);
    EXPECT_EQ(launcher.outputReads, 1);
}

TEST_F(LateBytes, aNotaryToolThatHasPrintedIsLookedAtOnce)
{
    EXPECT_EQ(run({.chunks = {"x"}}, {u"altool"_s})->outputData(), "x");
    EXPECT_EQ(launcher.outputReads, 1);
}

TEST_F(LateBytes, anArgumentThatOnlyHoldsTheNameCountsForNothing)
{
    EXPECT_EQ(run({}, {u"/tmp/altool"_s, u"Altool"_s})->status(), 0);
    EXPECT_EQ(launcher.outputReads, 1);
}

TEST_F(LateBytes, aNotaryToolThatPrintsOnlyErrorsIsLookedAtTenTimesMore)
{
    EXPECT_EQ(run({.error = "usage"}, {u"altool"_s})->errorData(), "usage");
    EXPECT_EQ(launcher.outputReads, 1 + 10);
}

TEST(RunnerPausesTest, aSilentNotaryToolTakesAboutASecondLonger)
{
    platform::PosixProcessLauncher launcher([](const QString &) { return u"/bin/true"_s; });
    SLWTaskMaster runner(launcher);
    QElapsedTimer time;
    time.start();
    EXPECT_EQ(runner.runTool(u"/usr/bin/xcrun"_s, {u"stapler"_s}, u"owner"_s)->status(), 0);
    const qint64 ordinary = time.restart();
    EXPECT_GE(ordinary, 150);
    EXPECT_EQ(runner.runAltoolAt(u"/usr/bin/xcrun"_s, {u"-h"_s}, u"owner"_s)->status(), 0);
    const qint64 silent = time.elapsed();
    EXPECT_GE(silent, 150 + 10 * 100);
    EXPECT_LT(ordinary, 1000) << "only the notary tool is waited for";
}
