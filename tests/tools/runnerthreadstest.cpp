// Threads that run tools and cancel them at once, as documents with shared runners do.

#include "tools/runnerfixture.h"

#include <QFile>
#include <QTemporaryDir>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

constexpr int owners = 4;
constexpr int runsOfEach = 25;

QString ownerName(int number)
{
    return u"owner "_s + QString::number(number);
}

class RunnerThreads : public RealRunner {
protected:
    /// Has each owner do its work that often on a thread of its own.
    template <class Work>
    void runAll(Work work)
    {
        std::vector<std::thread> threads;
        for (int number = 0; number < owners; ++number) {
            threads.emplace_back([work, owner = ownerName(number)] {
                for (int run = 0; run < runsOfEach; ++run)
                    work(owner);
            });
        }
        for (std::thread &thread : threads)
            thread.join();
    }

    /// Runs the script with the owner's name as "$0".
    SLWTaskResponsePtr run(const QString &script, const QString &owner)
    {
        return runner.runTool(u"/bin/sh"_s, {u"-c"_s, script, owner}, owner);
    }
};

} // namespace

TEST_F(RunnerThreads, oneToolRunsAtATime)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"order"_s);
    const QString script = u"echo begin >> '%1'; echo end >> '%1'"_s.arg(path);
    runAll([&](const QString &owner) { EXPECT_EQ(run(script, owner)->status(), 0); });
    QFile order(path);
    ASSERT_TRUE(order.open(QIODevice::ReadOnly));
    EXPECT_EQ(order.readAll(), QByteArray("begin\nend\n").repeated(owners * runsOfEach));
}

TEST_F(RunnerThreads, everyOwnerGetsItsOwnOutput)
{
    runAll([this](const QString &owner) {
        const std::scoped_lock turn(runner.monitor()); // the next run would empty what is read here
        EXPECT_EQ(run(u"echo \"$0\""_s, owner)->outputString(), owner + u'\n');
    });
}

TEST_F(RunnerThreads, cancelsFromEverywhereLeaveEachRunOneDefinedEnd)
{
    std::atomic<bool> isOver = false;
    std::vector<std::thread> cancellers;
    for (int number = 0; number < 2; ++number) {
        cancellers.emplace_back([this, &isOver, number] {
            for (int next = number; !isOver; ++next)
                runner.terminateTaskFor(ownerName(next % owners));
        });
    }
    runAll([this](const QString &owner) {
        const std::scoped_lock turn(runner.monitor());
        const auto response = run(u"echo out"_s, owner);
        const qint64 status = response->status();
        EXPECT_TRUE(status == 0 || status == SIGTERM || status == statusSkipped) << status;
        if (status == 0) {
            EXPECT_EQ(response->outputString(), u"out\n"_s);
        }
        EXPECT_EQ(response->outputData().isNull(), status == statusSkipped);
    });
    isOver = true;
    for (std::thread &thread : cancellers)
        thread.join();

    EXPECT_EQ(runner.currentTask(), nullptr);
    EXPECT_FALSE(runner.terminateTaskFor(ownerName(0)));
    for (int number = 0; number < owners; ++number) {
        const bool wasCancelled = runner.cancelledOwners().contains(ownerName(number));
        EXPECT_EQ(shell(u"echo out"_s, ownerName(number))->status(), wasCancelled ? statusSkipped : 0);
        EXPECT_EQ(shell(u"echo out"_s, ownerName(number))->status(), 0);
    }
}

TEST_F(RunnerThreads, aCancelAtAnyMomentOfARunEndsItOrComesTooLateOrTooEarly)
{
    for (int run = 0; run < runsOfEach; ++run) {
        std::thread canceller([this] { runner.terminateTaskFor(u"A"_s); });
        const qint64 status = shell(u"exit 0"_s, u"A"_s)->status();
        canceller.join();
        EXPECT_TRUE(status == 0 || status == SIGTERM) << status;
        EXPECT_TRUE(runner.cancelledOwners().size() <= 1);
        // Between the end of the task and the end of the run the cancel takes the owner for another's.
        runner.cancelledOwners.set({});
    }
}

TEST_F(RunnerThreads, othersMayReadTheStreamsWhileAToolFillsThem)
{
    std::atomic<bool> isOver = false;
    std::thread reader([this, &isOver] {
        qsizetype seen = 0;
        while (!isOver) {
            const qsizetype size = runner.outputString().size();
            EXPECT_GE(size, seen);
            seen = size;
        }
    });
    EXPECT_EQ(shell(u"for i in 1 2 3 4 5 6 7 8; do head -c 20000 /dev/zero | tr '\\0' x; done"_s)
                  ->outputData()
                  .size(),
              160000);
    isOver = true;
    reader.join();
}
