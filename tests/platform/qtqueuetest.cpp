#include "eventwait.h"
#include "platform/qt/qtmainqueue.h"
#include "platform/qt/qtworkerqueue.h"

#include <QList>
#include <QTimer>

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <optional>
#include <thread>

using namespace platform;

TEST(QtMainQueue, blocksOfAnyThreadRunOnTheMainThreadInTheOrderOfPosting)
{
    QtMainQueue queue;
    QList<int> order;
    std::thread::id thread;
    std::thread([&] {
        for (int i = 0; i < 100; ++i)
            queue.post([&, i] {
                order += i;
                thread = std::this_thread::get_id();
            });
    }).join();
    EXPECT_TRUE(order.isEmpty());
    ASSERT_TRUE(waitFor([&] { return order.size() == 100; }));
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    EXPECT_EQ(thread, std::this_thread::get_id());
}

TEST(QtMainQueue, aBlockPostedOnTheMainThreadRunsLaterToo)
{
    QtMainQueue queue;
    QList<int> order;
    queue.post([&] {
        queue.post([&] { order += 2; });
        order += 1;
    });
    EXPECT_TRUE(order.isEmpty());
    ASSERT_TRUE(waitFor([&] { return order.size() == 2; }));
    EXPECT_EQ(order, (QList<int>{1, 2}));
}

TEST(QtMainQueue, aFloodOfBlocksLetsTheEventLoopSeeToTheRest)
{
    QtMainQueue queue;
    bool isFlooding = true;
    std::function<void()> again = [&] {
        if (isFlooding)
            queue.post(again);
    };
    queue.post(again);
    QTimer::singleShot(std::chrono::milliseconds(1), [&] { isFlooding = false; });
    EXPECT_TRUE(waitFor([&] { return !isFlooding; }));
}

TEST(QtMainQueue, blocksAreServedWhileAnotherWaitsInAnEventLoopOfItsOwn)
{
    QtMainQueue queue;
    bool isServed = false;
    bool isServedInside = false;
    queue.post([&] { isServedInside = waitFor([&] { return isServed; }); });
    queue.post([&] { isServed = true; });
    ASSERT_TRUE(waitFor([&] { return isServed; }));
    EXPECT_TRUE(isServedInside);
}

TEST(QtMainQueue, onlyTheMainThreadIsTheMainThread)
{
    QtMainQueue queue;
    EXPECT_TRUE(queue.isMainThread());
    bool isMain = true;
    std::thread([&] { isMain = queue.isMainThread(); }).join();
    EXPECT_FALSE(isMain);
}

TEST(QtWorkerQueue, aJobRunsOnAThreadOfItsOwn)
{
    std::thread::id thread;
    {
        QtWorkerQueue queue;
        queue.post([&] { thread = std::this_thread::get_id(); });
    }
    EXPECT_NE(thread, std::thread::id());
    EXPECT_NE(thread, std::this_thread::get_id());
}

TEST(QtWorkerQueue, twoHundredBlockedJobsKeepNoOtherWaiting)
{
    std::latch all(200); // nobody gets on before the last one has started
    std::atomic<int> done = 0;
    {
        QtWorkerQueue queue;
        for (int i = 0; i < 200; ++i)
            queue.post([&] {
                all.arrive_and_wait();
                ++done;
            });
    }
    EXPECT_EQ(done, 200);
}

TEST(QtWorkerQueue, aJobMayPostAnotherAndTheEndWaitsForBoth)
{
    std::atomic<bool> isSecondDone = false;
    std::latch begun(1);
    {
        QtWorkerQueue queue;
        queue.post([&] {
            queue.post([&] { isSecondDone = true; });
            begun.count_down();
        });
        begun.wait();
    }
    EXPECT_TRUE(isSecondDone);
}
