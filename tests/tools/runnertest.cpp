// One tool run, from the call to its response.

#include "tools/runnerfixture.h"
#include "tools/scriptedlauncher.h"

using namespace Qt::StringLiterals;

using Runner = RealRunner;

TEST_F(Runner, aNewOneIsIdle)
{
    EXPECT_TRUE(runner.ownerID().isNull());
    EXPECT_EQ(runner.currentTask(), nullptr);
    EXPECT_EQ(runner.lastStatus(), -1);
    EXPECT_TRUE(runner.outputString().isNull());
    EXPECT_TRUE(runner.errorString().isNull());
    EXPECT_EQ(
        runner.fileLogString(),
        u"Result for (null) (null)\nTermination status: -1\nStandardOut: (null)\nStandardError: (null)"_s);
}

TEST_F(Runner, aToolThatPrintsNothingHasNullTexts)
{
    const auto response = shell(u"exit 0"_s);
    EXPECT_EQ(response->status(), 0);
    EXPECT_TRUE(response->outputString().isNull());
    EXPECT_TRUE(response->errorString().isNull());
    EXPECT_TRUE(response->text().isNull());
    EXPECT_FALSE(response->outputData().isNull()) << "empty is not the same as a run that did not start";
}

TEST_F(Runner, theDataOfASilentRunAfterAnotherAreEmptyAndNotNull)
{
    EXPECT_EQ(shell(u"echo out; echo wrong >&2"_s)->status(), 0);
    const auto response = shell(u"exit 0"_s);
    EXPECT_TRUE(response->outputData().isEmpty());
    EXPECT_FALSE(response->outputData().isNull());
    EXPECT_FALSE(response->errorData().isNull());
}

TEST_F(Runner, bothStreamsAndTheStatusComeBack)
{
    const auto response = shell(u"echo out; echo wrong >&2; exit 3"_s);
    EXPECT_EQ(response->status(), 3);
    EXPECT_EQ(response->outputString(), u"out\n"_s);
    EXPECT_EQ(response->errorString(), u"wrong\n"_s);
    EXPECT_EQ(response->path, u"/bin/sh"_s);
    EXPECT_EQ(response->args, (QStringList{u"-c"_s, u"echo out; echo wrong >&2; exit 3"_s}));
    EXPECT_EQ(
        response->fileLogString(),
        u"Result for /bin/sh -c echo out; echo wrong >&2; exit 3\nTermination status: 3\nStandardOut: out\n\nStandardError: wrong\n"_s);
}

TEST_F(Runner, argumentsReachTheToolAsTheyAre)
{
    const auto response = runner.runTool(
        u"/bin/sh"_s, {u"-c"_s, u"printf '<%s>' \"$@\""_s, u"sh"_s, u"a b"_s, u"$HOME"_s, u""_s, u"ü\n'\""_s},
        u"owner"_s);
    EXPECT_EQ(response->outputString(), u"<a b><$HOME><><ü\n'\">"_s);
}

TEST_F(Runner, longOutputOnBothStreamsIsCollectedWhole)
{
    const auto response =
        shell(u"head -c 3000000 /dev/zero | tr '\\0' x; head -c 2000000 /dev/zero | tr '\\0' y >&2"_s);
    EXPECT_EQ(response->outputData(), QByteArray(3000000, 'x'));
    EXPECT_EQ(response->errorData(), QByteArray(2000000, 'y'));
}

TEST_F(Runner, outputOfManyMebibytesIsCollectedAsItWas)
{
    const QByteArray output = shell(u"seq 1000001 6000000"_s)->outputData();
    ASSERT_EQ(output.size(), 8 * 5'000'000);
    for (int row = 0; row < 5'000'000; row += 4099)
        EXPECT_EQ(output.mid(8LL * row, 8), QByteArray::number(1'000'001 + row) + '\n');
}

TEST_F(Runner, aListenerHearsTheOutputWhileTheToolRuns)
{
    QByteArray heard;
    bool wasRunning = false;
    {
        const std::scoped_lock turn(runner.monitor());
        runner.setListener([&](const QByteArray &output) {
            heard += output;
            wasRunning = runner.currentTask() != nullptr;
        });
        EXPECT_EQ(shell(u"echo out; echo wrong >&2"_s)->outputString(), u"out\n"_s);
        runner.setListener({});
    }
    EXPECT_EQ(heard, "out\n");
    EXPECT_TRUE(wasRunning);
    EXPECT_EQ(shell(u"echo more"_s)->outputString(), u"more\n"_s);
    EXPECT_EQ(heard, "out\n");
}

TEST_F(Runner, aToolThatDiesOfASignalHasItsNumberAsTheStatus)
{
    const auto response = shell(u"echo out; kill -SEGV $$"_s);
    EXPECT_EQ(response->status(), 11);
    EXPECT_EQ(response->outputString(), u"out\n"_s);
}

TEST_F(Runner, aMissingToolCannotBeLaunched)
{
    const auto response = runner.runTool(u"/nowhere/tool"_s, {u"-v"_s}, u"owner"_s);
    EXPECT_EQ(response->status(), 11000);
    EXPECT_EQ(response->errorString(), u"Cannot launch '/nowhere/tool': No such file or directory"_s);
    EXPECT_TRUE(response->outputString().isNull());
    EXPECT_EQ(response->path, u"/nowhere/tool"_s);
    EXPECT_EQ(response->args, QStringList{u"-v"_s});
    EXPECT_TRUE(runner.ownerID().isNull());
}

TEST_F(Runner, aFolderInAToolsPlaceCannotBeLaunched)
{
    const auto response = runner.runTool(u"/usr"_s, {}, u"owner"_s);
    EXPECT_EQ(response->status(), 11000);
    EXPECT_EQ(response->errorString(), u"Cannot launch '/usr': Permission denied"_s);
}

TEST_F(Runner, aRunWorksAfterAFailedLaunch)
{
    EXPECT_EQ(runner.runTool(u"/nowhere/tool"_s, {}, u"owner"_s)->status(), 11000);
    const auto response = shell(u"echo out"_s);
    EXPECT_EQ(response->status(), 0);
    EXPECT_EQ(response->outputString(), u"out\n"_s);
    EXPECT_TRUE(response->errorString().isNull());
}

TEST_F(Runner, theNextRunEmptiesTheDataOfAResponse)
{
    const auto first = shell(u"echo first; echo wrong >&2"_s);
    const auto second = shell(u"echo second"_s);
    EXPECT_EQ(first->outputString(), u"second\n"_s);
    EXPECT_TRUE(first->errorString().isNull());
    EXPECT_EQ(runner.outputString(), u"second\n"_s);
}

TEST_F(Runner, keptDataSurvivesTheNextRun)
{
    const auto first = shell(u"echo first; echo wrong >&2"_s);
    first->keepData();
    const auto second = shell(u"echo second"_s);
    EXPECT_EQ(first->outputString(), u"first\n"_s);
    EXPECT_EQ(first->errorString(), u"wrong\n"_s);
}

TEST_F(Runner, anIdleOneHasNeitherOwnerNorTask)
{
    EXPECT_EQ(shell(u"exit 1"_s)->status(), 1);
    EXPECT_TRUE(runner.ownerID().isNull());
    EXPECT_EQ(runner.currentTask(), nullptr);
}

TEST_F(Runner, noFieldOfTheLastRunIsEverFilled)
{
    EXPECT_EQ(shell(u"exit 1"_s)->status(), 1);
    EXPECT_EQ(runner.lastStatus(), -1);
    EXPECT_TRUE(runner.lastPath().isNull());
    EXPECT_TRUE(runner.lastArgsString().isNull());
}

TEST(RunnerOfTheNotaryTool, putsItsNameBeforeTheArgumentsForXcrunAlone)
{
    ScriptedLauncher launcher;
    launcher.add({.chunks = {"help"}});
    SLWTaskMaster runner(launcher, {0, 0});
    const auto response = runner.runAltoolAt(u"/usr/bin/xcrun"_s, {u"-h"_s}, u"0"_s);
    EXPECT_EQ(response->path, u"/usr/bin/xcrun"_s);
    EXPECT_EQ(response->args, (QStringList{u"altool"_s, u"-h"_s}));
    const QString own = u"/Applications/Transporter.app/Contents/altool"_s;
    EXPECT_EQ(runner.runAltoolAt(own, {u"-h"_s}, u"0"_s)->args, QStringList{u"-h"_s});
    EXPECT_EQ(launcher.commands,
              (QList<QStringList>{{u"/usr/bin/xcrun"_s, u"altool"_s, u"-h"_s}, {own, u"-h"_s}}));
}

TEST(RunnerOfTheNotaryTool, comparesThePathOfXcrunExactly)
{
    ScriptedLauncher launcher;
    SLWTaskMaster runner(launcher, {0, 0});
    EXPECT_EQ(runner.runAltoolAt(u"/usr/bin/../bin/xcrun"_s, {u"-h"_s}, u"0"_s)->args, QStringList{u"-h"_s});
}

TEST(RunnerLock, isLetGoWhenARunThrows)
{
    ScriptedLauncher launcher;
    launcher.add({.throws = true});
    SLWTaskMaster runner(launcher, {0, 0});
    EXPECT_THROW((void)runner.runTool(u"/bin/tool"_s, {}, u"A"_s), std::runtime_error);
    std::thread([&runner] { EXPECT_EQ(runner.runTool(u"/bin/tool"_s, {}, u"B"_s)->status(), 0); }).join();
}

TEST_F(Runner, aHolderOfTheMonitorMayRunTools)
{
    const std::scoped_lock turn(runner.monitor());
    EXPECT_EQ(shell(u"exit 4"_s)->status(), 4);
}
