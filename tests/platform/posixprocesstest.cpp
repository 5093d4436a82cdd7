#include "platform/posix/pipereader.h"
#include "platform/posix/posixprocesslauncher.h"
#include "temporaryfolder.h"

#include <QDir>
#include <QElapsedTimer>

#include <csignal>
#include <fcntl.h>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace platform;

namespace {

const QString shell = u"/bin/sh"_s;

/// A process with all that it hands over.
struct ToolRun {
    std::shared_ptr<Process> process;
    QByteArray output;
    QByteArray error;
    int errorPieces = 0;

    void wait()
    {
        process->waitUntilExit([this](const QByteArray &chunk) { output += chunk; },
                               [this](const QByteArray &all) {
                                   error += all;
                                   ++errorPieces;
                               });
    }
};

class PosixProcess : public testing::Test {
protected:
    /// A shell at work on the script; more arguments are $1 and so on.
    ToolRun launch(const QString &script, const QStringList &arguments = {})
    {
        ToolRun run{launcher.process(shell, QStringList{u"-c"_s, script, u"sh"_s} + arguments), {}, {}, 0};
        const Outcome launched = run.process->launch();
        EXPECT_TRUE(launched) << launched.error().toStdString();
        return run;
    }

    ToolRun finished(const QString &script, const QStringList &arguments = {})
    {
        ToolRun run = launch(script, arguments);
        run.wait();
        return run;
    }

    PosixProcessLauncher launcher;
    TemporaryFolder folder;
};

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

TEST_F(PosixProcess, aSilentProgramHasStatusZeroAndNoOutput)
{
    const ToolRun run = finished(u"exit 0"_s);
    EXPECT_EQ(run.process->terminationStatus(), 0);
    EXPECT_TRUE(run.output.isEmpty());
    EXPECT_EQ(run.errorPieces, 0);
    EXPECT_TRUE(run.process->readOutputToEnd().isEmpty());
    EXPECT_TRUE(run.process->readErrorToEnd().isEmpty());
}

TEST_F(PosixProcess, theStatusIsWhatTheProgramReturns)
{
    EXPECT_EQ(finished(u"exit 42"_s).process->terminationStatus(), 42);
    EXPECT_EQ(finished(u"exit 255"_s).process->terminationStatus(), 255);
}

TEST_F(PosixProcess, theStatusOfAProgramEndedByASignalIsTheSignalsNumber)
{
    EXPECT_EQ(finished(u"kill -KILL $$"_s).process->terminationStatus(), SIGKILL);
    EXPECT_EQ(finished(u"kill -USR1 $$"_s).process->terminationStatus(), SIGUSR1);
}

#ifdef F_SETPIPE_SZ
TEST_F(PosixProcess, theOutputPipeHoldsAsMuchAsIsReadAtOnceWhereTheHostAllowsIt)
{
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const int most = fcntl(ends[1], F_SETPIPE_SZ, static_cast<int>(PipeReader::capacity));
    const QByteArray expected = QByteArray::number(most > 0 ? most : fcntl(ends[1], F_GETPIPE_SZ));
    close(ends[0]);
    close(ends[1]);
    const ToolRun run = finished(u"perl -e 'print fcntl(STDOUT, %1, 0)'"_s.arg(F_GETPIPE_SZ));
    EXPECT_EQ(run.output, expected);
}
#endif

TEST_F(PosixProcess, aMissingProgramIsNamedWithTheReason)
{
    const Outcome launched = launcher.process(u"/no/such tool"_s, {})->launch();
    EXPECT_EQ(launched.error(), u"Cannot launch '/no/such tool': No such file or directory"_s);
}

TEST_F(PosixProcess, aFileWithoutAnExecuteBitCannotBeLaunched)
{
    const QString file = folder.file(u"plain"_s, "#!/bin/sh\n");
    EXPECT_EQ(launcher.process(file, {})->launch().error(),
              u"Cannot launch '%1': Permission denied"_s.arg(file));
}

TEST_F(PosixProcess, aFolderCannotBeLaunched)
{
    EXPECT_FALSE(launcher.process(folder.path(), {})->launch());
}

TEST_F(PosixProcess, theErrorNamesTheNamedPathAndWhereTheHostKeepsIt)
{
    PosixProcessLauncher elsewhere([](const QString &path) { return u"/root of tools"_s + path; });
    EXPECT_EQ(elsewhere.process(u"/usr/bin/tool"_s, {})->launch().error(),
              u"Cannot launch '/usr/bin/tool' (found at '/root of tools/usr/bin/tool'): "
              "No such file or directory"_s);
}

TEST_F(PosixProcess, theFileThatTheLocatorNamesIsLaunched)
{
    PosixProcessLauncher elsewhere([](const QString &path) { return path == u"/tool"_s ? shell : path; });
    ToolRun run{elsewhere.process(u"/tool"_s, {u"-c"_s, u"printf here"_s}), {}, {}, 0};
    ASSERT_TRUE(run.process->launch());
    run.wait();
    EXPECT_EQ(run.output, "here");
}

TEST_F(PosixProcess, aProcessThatCouldNotBeLaunchedHasNothingToWaitForOrRead)
{
    ToolRun run{launcher.process(u"/no/such/tool"_s, {}), {}, {}, 0};
    ASSERT_FALSE(run.process->launch());
    run.wait();
    run.process->terminate();
    EXPECT_TRUE(run.output.isEmpty());
    EXPECT_TRUE(run.process->readOutputToEnd().isEmpty());
    EXPECT_TRUE(run.process->readErrorToEnd().isEmpty());
}

TEST_F(PosixProcess, argumentsArriveUnchanged)
{
    const QStringList arguments{u"two words"_s, u""_s, u"it's \"quoted\" $HOME *"_s, u"Größe ‘’"_s,
                                u"a\nb"_s};
    const ToolRun run = finished(u"for a in \"$@\"; do printf '%s|' \"$a\"; done"_s, arguments);
    EXPECT_EQ(run.output, (arguments.join(u'|') + u'|').toUtf8());
}

TEST_F(PosixProcess, outputIsHandedOverWhileTheProgramRuns)
{
    const QString gate = folder.fifo(u"gate"_s);
    ToolRun run = launch(u"printf first; read x < \"$1\"; printf second"_s, {gate});
    QList<QByteArray> chunks;
    run.process->waitUntilExit(
        [&](const QByteArray &chunk) {
            chunks += chunk;
            if (chunks.size() == 1)
                release(gate); // the program goes on only after its first output has been seen
        },
        [](const QByteArray &) {});
    EXPECT_EQ(chunks, (QList<QByteArray>{"first", "second"}));
}

TEST_F(PosixProcess, errorIsHandedOverInOnePieceAtItsEnd)
{
    const QString gate = folder.fifo(u"gate"_s);
    ToolRun run = launch(u"printf one >&2; printf x; read x < \"$1\"; printf two >&2"_s, {gate});
    QList<QByteArray> pieces;
    run.process->waitUntilExit([&](const QByteArray &) { release(gate); },
                               [&](const QByteArray &all) { pieces += all; });
    EXPECT_EQ(pieces, QList<QByteArray>{"onetwo"});
    EXPECT_TRUE(run.process->readErrorToEnd().isEmpty());
}

TEST_F(PosixProcess, errorIsHandedOverAtItsEndThoughTheProgramRunsOn)
{
    const QString gate = folder.fifo(u"gate"_s);
    ToolRun run = launch(u"printf gone >&2; exec 2>&-; read x < \"$1\""_s, {gate});
    QByteArray error;
    run.process->waitUntilExit([](const QByteArray &) {},
                               [&](const QByteArray &all) {
                                   error = all;
                                   release(gate);
                               });
    EXPECT_EQ(error, "gone");
}

TEST_F(PosixProcess, whatTheProgramWroteBeforeItsEndIsNeverLeftForLater)
{
    for (int i = 0; i < 200; ++i) {
        const ToolRun run = finished(u"printf o; printf e >&2"_s);
        ASSERT_EQ(run.output, "o");
        ASSERT_EQ(run.error, "e");
    }
}

TEST_F(PosixProcess, handlersAreCalledOnTheWaitingThread)
{
    ToolRun run = launch(u"printf o; printf e >&2"_s);
    std::thread::id outputThread;
    std::thread::id errorThread;
    std::thread waiting([&] {
        run.process->waitUntilExit([&](const QByteArray &) { outputThread = std::this_thread::get_id(); },
                                   [&](const QByteArray &) { errorThread = std::this_thread::get_id(); });
    });
    const std::thread::id expected = waiting.get_id();
    waiting.join();
    EXPECT_EQ(outputThread, expected);
    EXPECT_EQ(errorThread, expected);
}

TEST_F(PosixProcess, manyMebibytesArriveWhole)
{
    const ToolRun run = finished(u"head -c 67108864 /dev/zero | tr '\\0' x"_s);
    EXPECT_EQ(run.output.size(), 64 * 1024 * 1024);
    EXPECT_EQ(run.output.count('x'), run.output.size());
}

TEST_F(PosixProcess, bothStreamsAreDrainedSideBySideAndKeptApart)
{
    const ToolRun run =
        finished(u"i=0; while [ $i -lt 20000 ]; do echo output $i; echo error $i >&2; i=$((i+1)); done"_s);
    EXPECT_EQ(run.output.count('\n'), 20000);
    EXPECT_EQ(run.error.count('\n'), 20000);
    EXPECT_EQ(run.output.count("output"), 20000);
    EXPECT_EQ(run.error.count("error"), 20000);
    EXPECT_TRUE(run.output.endsWith("output 19999\n"));
}

TEST_F(PosixProcess, aByteWrittenByAGrandchildAfterTheEndIsLeftForTheRead)
{
    const QString gate = folder.fifo(u"gate"_s);
    const ToolRun run = finished(u"printf early; (read x < \"$1\"; printf z) & exit 3"_s, {gate});
    EXPECT_EQ(run.output, "early");
    EXPECT_EQ(run.process->terminationStatus(), 3);
    release(gate);
    EXPECT_EQ(run.process->readOutputToEnd(), "z");
    EXPECT_TRUE(run.process->readOutputToEnd().isEmpty());
}

TEST_F(PosixProcess, errorWithoutAnEndAtTheProgramsEndIsLeftForTheReadAsAWhole)
{
    const QString gate = folder.fifo(u"gate"_s);
    const ToolRun run = finished(u"printf a >&2; (read x < \"$1\"; printf b >&2) & exit 0"_s, {gate});
    EXPECT_EQ(run.errorPieces, 0);
    release(gate);
    EXPECT_EQ(run.process->readErrorToEnd(), "ab");
    EXPECT_TRUE(run.process->readErrorToEnd().isEmpty());
}

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

// Its input

TEST_F(PosixProcess, readsTheInputThatItWasGivenUpToItsEnd)
{
    ToolRun run{launcher.process(u"/bin/cat"_s, {}), {}, {}, 0};
    const QByteArray most(Process::mostInput, 'x');
    run.process->setInput(most);
    ASSERT_TRUE(run.process->launch());
    run.wait();
    EXPECT_EQ(run.output + run.process->readOutputToEnd(), most);
    EXPECT_EQ(run.process->terminationStatus(), 0);
}

TEST_F(PosixProcess, readsNothingFromAnEmptyInput)
{
    ToolRun run{launcher.process(u"/bin/cat"_s, {}), {}, {}, 0};
    run.process->setInput({});
    ASSERT_TRUE(run.process->launch());
    run.wait();
    EXPECT_EQ(run.process->terminationStatus(), 0) << "it does not wait for the application's own input";
}

TEST_F(PosixProcess, isNotLaunchedWithAnInputThatIsTooLong)
{
    const auto process = launcher.process(u"/bin/cat"_s, {});
    process->setInput(QByteArray(Process::mostInput + 1, 'x'));
    const Outcome launched = process->launch();
    ASSERT_FALSE(launched);
    EXPECT_EQ(launched.error(), u"Cannot launch '/bin/cat': its input is longer than 4096 bytes"_s);
}
