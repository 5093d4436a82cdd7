// Programs that are launched, and what comes of their streams.

#include "platform/posixprocesstest.h"

#include <csignal>
#include <thread>

using namespace Qt::StringLiterals;
using namespace platform;

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
