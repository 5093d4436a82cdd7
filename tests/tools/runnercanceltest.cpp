// Cancels: of the owner's own run, of another's, of none.

#include "tools/runnerfixture.h"
#include "tools/scriptedlauncher.h"

#include <QFile>
#include <QTemporaryDir>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

const QString runsUntilEnded = u"echo wrong >&2; echo started; exec sleep 1000"_s;

class RunnerCancel : public RealRunner {
protected:
    /// Runs the script on another thread and returns when it has printed that it has started.
    void startShell(const QString &script, const QString &owner)
    {
        m_thread = std::thread([this, script, owner] { m_response = shell(script, owner); });
        ASSERT_TRUE(hasPrinted(u"started\n"_s));
    }

    SLWTaskResponsePtr endOfShell()
    {
        m_thread.join();
        return m_response;
    }

private:
    std::thread m_thread;
    SLWTaskResponsePtr m_response;
};

} // namespace

TEST_F(RunnerCancel, theOwnersRunningToolIsEnded)
{
    startShell(runsUntilEnded, u"A"_s);
    EXPECT_EQ(runner.ownerID(), u"A"_s);
    EXPECT_NE(runner.currentTask(), nullptr);
    EXPECT_TRUE(runner.terminateTaskFor(u"A"_s));
    const auto response = endOfShell();
    EXPECT_EQ(response->status(), SIGTERM);
    EXPECT_EQ(response->outputString(), u"started\n"_s);
    EXPECT_EQ(response->errorString(), u"wrong\n"_s);
}

TEST_F(RunnerCancel, theRunAfterAnEndedOneGoesThrough)
{
    startShell(runsUntilEnded, u"A"_s);
    EXPECT_TRUE(runner.terminateTaskFor(u"A"_s));
    EXPECT_TRUE(runner.terminateTaskFor(u"A"_s) || runner.currentTask() == nullptr);
    EXPECT_NE(endOfShell()->status(), 0);
    EXPECT_TRUE(runner.cancelledOwners().isEmpty());
    EXPECT_EQ(shell(u"exit 0"_s, u"A"_s)->status(), 0);
}

TEST_F(RunnerCancel, theStatusOfAToolThatHandlesTheRequestComesBack)
{
    startShell(u"trap 'echo cleaned up; exit 9' TERM; echo started; while :; do sleep 0.01; done"_s, u"A"_s);
    EXPECT_TRUE(runner.terminateTaskFor(u"A"_s));
    const auto response = endOfShell();
    EXPECT_EQ(response->status(), 9);
    EXPECT_EQ(response->outputString(), u"started\ncleaned up\n"_s);
}

TEST_F(RunnerCancel, aToolThatIgnoresTheRequestRunsToItsEnd)
{
    const QTemporaryDir folder;
    const QString flag = folder.filePath(u"flag"_s);
    startShell(u"trap '' TERM; echo started; until [ -e '%1' ]; do sleep 0.01; done; echo done"_s.arg(flag),
               u"A"_s);
    EXPECT_TRUE(runner.terminateTaskFor(u"A"_s));
    QFile file(flag);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const auto response = endOfShell();
    EXPECT_EQ(response->status(), 0);
    EXPECT_EQ(response->outputString(), u"started\ndone\n"_s);
}

TEST_F(RunnerCancel, aForeignCancelLetsTheRunGoOnAndSkipsTheForeignersNextRun)
{
    const QTemporaryDir folder;
    const QString flag = folder.filePath(u"flag"_s);
    startShell(u"echo started; until [ -e '%1' ]; do sleep 0.01; done; echo done"_s.arg(flag), u"A"_s);
    EXPECT_TRUE(runner.terminateTaskFor(u"B"_s));
    QFile file(flag);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const auto first = endOfShell();
    EXPECT_EQ(first->status(), 0);
    EXPECT_EQ(first->outputString(), u"started\ndone\n"_s);

    const auto skipped = shell(u"echo out"_s, u"B"_s);
    EXPECT_EQ(skipped->status(), 1001);
    EXPECT_TRUE(skipped->outputData().isNull());
    EXPECT_TRUE(skipped->errorData().isNull());
    EXPECT_TRUE(skipped->outputString().isNull());
    EXPECT_EQ(skipped->args, (QStringList{u"-c"_s, u"echo out"_s}));
    EXPECT_EQ(runner.ownerID(), u"B"_s) << "a skipped run leaves its owner behind";
    EXPECT_EQ(runner.currentTask(), nullptr);

    EXPECT_EQ(shell(u"echo out"_s, u"B"_s)->outputString(), u"out\n"_s);
}

TEST_F(RunnerCancel, whileIdleHasNoLaterEffect)
{
    EXPECT_FALSE(runner.terminateTaskFor(u"A"_s));
    EXPECT_TRUE(runner.cancelledOwners().isEmpty());
    EXPECT_EQ(shell(u"exit 0"_s, u"A"_s)->status(), 0);
    EXPECT_FALSE(runner.terminateTaskFor(u"A"_s));
    EXPECT_EQ(shell(u"exit 0"_s, u"A"_s)->status(), 0);
}

TEST(RunnerSkip, anyNumberOfCancelsSkipsOneRun)
{
    ScriptedLauncher launcher;
    SLWTaskMaster runner(launcher, {0, 0});
    runner.cancelledOwners.set({u"B"_s, u"A"_s, u"B"_s});
    EXPECT_EQ(runner.runTool(u"/bin/tool"_s, {}, u"B"_s)->status(), 1001);
    EXPECT_EQ(runner.cancelledOwners(), QStringList{u"A"_s});
    EXPECT_TRUE(launcher.commands.isEmpty()) << "the tool was started";
    EXPECT_EQ(runner.runTool(u"/bin/tool"_s, {}, u"B"_s)->status(), 0);
}

TEST(RunnerSkip, theOldBuffersAreEmptiedAllTheSame)
{
    ScriptedLauncher launcher;
    launcher.add({.chunks = {"out"}, .error = "wrong"});
    SLWTaskMaster runner(launcher, {0, 0});
    EXPECT_EQ(runner.runTool(u"/bin/tool"_s, {}, u"A"_s)->outputData(), "out");
    runner.cancelledOwners.set({u"A"_s});
    EXPECT_EQ(runner.runTool(u"/bin/tool"_s, {}, u"A"_s)->status(), 1001);
    EXPECT_TRUE(runner.outputString().isNull());
    EXPECT_TRUE(runner.errorString().isNull());
}

TEST(RunnerSkip, aCancelAfterAFailedLaunchIsRemembered)
{
    ScriptedLauncher launcher;
    launcher.add({.launchError = u"no such tool"_s});
    SLWTaskMaster runner(launcher, {0, 0});
    const auto failed = runner.runTool(u"/bin/tool"_s, {}, u"A"_s);
    EXPECT_EQ(failed->status(), 11000);
    EXPECT_EQ(failed->errorString(), u"no such tool"_s);
    EXPECT_NE(runner.currentTask(), nullptr) << "what never ran stays until the next run";
    EXPECT_TRUE(runner.ownerID().isNull());
    EXPECT_TRUE(runner.terminateTaskFor(u"A"_s));
    EXPECT_EQ(runner.runTool(u"/bin/tool"_s, {}, u"A"_s)->status(), 1001);
    EXPECT_EQ(runner.runTool(u"/bin/tool"_s, {}, u"A"_s)->status(), 0);
    EXPECT_EQ(runner.currentTask(), nullptr);
    EXPECT_FALSE(runner.terminateTaskFor(u"A"_s));
}
