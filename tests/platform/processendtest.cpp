// How programs end or are ended, and what they have of the application.

#include "platform/posixprocesstest.h"

#include <QDir>
#include <QElapsedTimer>

#include <csignal>
#include <thread>

using namespace Qt::StringLiterals;
using namespace platform;

namespace {

/// What happens at once cannot be seen, so this looks for an end within ten seconds.
bool isGoneSoon(pid_t process)
{
    QElapsedTimer timer;
    timer.start();
    while (kill(process, 0) == 0 && timer.elapsed() < 10000)
        std::this_thread::yield();
    return kill(process, 0) < 0 && errno == ESRCH;
}

qsizetype openDescriptors()
{
    return QDir(u"/proc/self/fd"_s).entryList(QDir::Files | QDir::System | QDir::NoDotAndDotDot).size();
}

} // namespace

TEST_F(PosixProcess, terminateEndsAShellWithItsChild)
{
    ToolRun run = launch(u"sleep 600 & echo ready; wait"_s);
    QElapsedTimer timer;
    run.process->waitUntilExit(
        [&](const QByteArray &) {
            timer.start();
            std::thread([process = run.process] { process->terminate(); }).join();
        },
        [](const QByteArray &) {});
    EXPECT_EQ(run.process->terminationStatus(), SIGTERM);
    // The sleeping child would hold both streams open for ten minutes.
    EXPECT_TRUE(run.process->readOutputToEnd().isEmpty());
    EXPECT_TRUE(run.process->readErrorToEnd().isEmpty());
    EXPECT_LT(timer.elapsed(), 1000);
}

TEST_F(PosixProcess, outputOfATerminatedProgramIsKept)
{
    ToolRun run = launch(u"echo oops >&2; echo so far; sleep 600"_s);
    QByteArray output;
    QByteArray error;
    run.process->waitUntilExit(
        [&](const QByteArray &chunk) {
            output += chunk;
            run.process->terminate();
        },
        [&](const QByteArray &all) { error = all; });
    EXPECT_EQ(output, "so far\n");
    EXPECT_EQ(error + run.process->readErrorToEnd(), "oops\n");
}

TEST_F(PosixProcess, aTerminationAskedForBeforeTheLaunchIsCarriedOutRightAfterIt)
{
    ToolRun run{launcher.process(shell, {u"-c"_s, u"sleep 600"_s}), {}, {}, 0};
    run.process->terminate();
    ASSERT_TRUE(run.process->launch());
    run.wait();
    EXPECT_EQ(run.process->terminationStatus(), SIGTERM);
}

TEST_F(PosixProcess, terminateAfterTheEndLeavesWhatTheProgramLeftBehindAlone)
{
    const QString gate = folder.fifo(u"gate"_s);
    const ToolRun run = finished(u"(read x < \"$1\"; printf alive) & exit 0"_s, {gate});
    run.process->terminate();
    release(gate);
    EXPECT_EQ(run.process->readOutputToEnd(), "alive");
    EXPECT_EQ(run.process->terminationStatus(), 0);
}

TEST_F(PosixProcess, terminateMayComeFromManyThreadsWhileTheProgramEnds)
{
    for (int i = 0; i < 50; ++i) {
        ToolRun run = launch(u"exit 0"_s);
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t)
            threads.emplace_back([process = run.process] { process->terminate(); });
        run.wait();
        for (std::thread &thread : threads)
            thread.join();
        const int status = run.process->terminationStatus();
        EXPECT_TRUE(status == 0 || status == SIGTERM) << status;
    }
}

TEST_F(PosixProcess, aProcessDroppedWhileItRunsIsReapedAtItsEnd)
{
    const QString gate = folder.fifo(u"gate"_s);
    const QString answer = folder.fifo(u"answer"_s);
    ToolRun run = launch(u"echo $$ > \"$2\"; read x < \"$1\""_s, {gate, answer});
    const pid_t child = contentsOf(answer).toInt();
    run.process.reset();
    EXPECT_EQ(kill(child, 0), 0);
    release(gate);
    EXPECT_TRUE(isGoneSoon(child));
}

TEST_F(PosixProcess, theChildHasTheApplicationsEnvironmentDirectoryAndInput)
{
    qputenv("SEALWRIGHT_TEST_MARK", "a mark");
    const ToolRun run = finished(u"echo $SEALWRIGHT_TEST_MARK; pwd -P; readlink /proc/$$/fd/0; echo $PATH"_s);
    qunsetenv("SEALWRIGHT_TEST_MARK");
    const QList<QByteArray> lines = run.output.split('\n');
    ASSERT_EQ(lines.size(), 5);
    EXPECT_EQ(lines[0], "a mark");
    EXPECT_EQ(lines[1], QFile::encodeName(QDir(QDir::currentPath()).canonicalPath()));
    char input[256] = {};
    ASSERT_GT(readlink("/proc/self/fd/0", input, sizeof input - 1), 0);
    EXPECT_EQ(lines[2], input);
    EXPECT_EQ(lines[3], qgetenv("PATH"));
}

TEST_F(PosixProcess, theToolFoldersStandInFrontOfThePath)
{
    PosixProcessLauncher prefixed({}, {u"/first one"_s, u"/second"_s});
    ToolRun run{
        prefixed.process(shell, {u"-c"_s, u"printf %s \"$PATH\"; env | grep -c ^PATH= >&2"_s}), {}, {}, 0};
    ASSERT_TRUE(run.process->launch());
    run.wait();
    EXPECT_EQ(run.output, "/first one:/second:" + qgetenv("PATH"));
    EXPECT_EQ(run.error, "1\n");
}

TEST_F(PosixProcess, theChildStartsWithoutBlockedSignalsAndDiesOfABrokenPipe)
{
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &blocked, &before);
    const auto pipeHandler = std::signal(SIGPIPE, SIG_IGN);
    const ToolRun run = finished(u"exec grep -E '^Sig(Blk|Ign)' /proc/self/status"_s);
    std::signal(SIGPIPE, pipeHandler);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    const QList<QByteArray> lines = run.output.split('\n');
    ASSERT_GE(lines.size(), 2);
    EXPECT_EQ(lines[0].mid(8).trimmed().toULongLong(nullptr, 16), 0U);
    EXPECT_EQ(lines[1].mid(8).trimmed().toULongLong(nullptr, 16) & (1U << (SIGPIPE - 1)), 0U);
}

TEST_F(PosixProcess, runsOnManyThreadsAtOnceLeakNoDescriptors)
{
    // Pipes alone: a sanitizer opens files of its own whenever it likes.
    const QString list = u"ls -l /proc/self/fd | grep -c pipe: ; printf e >&2"_s;
    const QByteArray expected = finished(list).output;
    const qsizetype before = openDescriptors();
    std::vector<std::thread> threads;
    for (int t = 0; t < 16; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 13; ++i) {
                const ToolRun run = finished(list);
                EXPECT_EQ(run.output, expected); // nothing of the other children came along
                EXPECT_EQ(run.error, "e");
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(PosixProcess, aDetachedProgramRunsInASessionOfItsOwnAndIsReaped)
{
    const QString gate = folder.fifo(u"gate"_s);
    const QString answer = folder.fifo(u"answer"_s);
    ASSERT_TRUE(launcher.launchDetached(
        shell, {u"-c"_s, u"echo $$ > \"$2\"; read x < \"$1\""_s, u"sh"_s, gate, answer}));
    const pid_t child = contentsOf(answer).toInt();
    EXPECT_EQ(getsid(child), child);
    release(gate);
    EXPECT_TRUE(isGoneSoon(child));
}

TEST_F(PosixProcess, aMissingProgramCannotBeDetached)
{
    EXPECT_EQ(launcher.launchDetached(u"/no/such/tool"_s, {}).error(),
              u"Cannot launch '/no/such/tool': No such file or directory"_s);
}
