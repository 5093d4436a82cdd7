#include "platform/qt/qttimerservice.h"
#include "eventwait.h"
#include "platform/qt/systemclock.h"

#include <QList>
#include <QTimer>

#include <gtest/gtest.h>

#include <thread>

using namespace platform;

namespace {

class QtTimers : public testing::Test {
protected:
    std::function<void()> counting()
    {
        return [this] {
            ++fired;
            thread = std::this_thread::get_id();
        };
    }

    QtTimerService timers;
    int fired = 0;
    std::thread::id thread;
};

} // namespace

TEST_F(QtTimers, aTimerFiresOnceOnTheMainThreadAndNotEarly)
{
    QElapsedTimer clock;
    clock.start();
    const auto timer = timers.schedule(0.05, 0, counting());
    EXPECT_EQ(fired, 0);
    ASSERT_TRUE(waitFor([&] { return fired > 0; }));
    EXPECT_GE(clock.nsecsElapsed(), 50'000'000);
    EXPECT_EQ(thread, std::this_thread::get_id());
    int later = 0;
    const auto other = timers.schedule(0.1, 0, [&] { ++later; });
    ASSERT_TRUE(waitFor([&] { return later == 1; }));
    EXPECT_EQ(fired, 1);
}

TEST_F(QtTimers, aToleranceNeverMakesATimerFireEarly)
{
    QList<qint64> early;
    int all = 0;
    QElapsedTimer clock;
    clock.start();
    for (int i = 1; i <= 40; ++i) {
        const qint64 due = 20'000'000 + i * 7'300'000;
        timers
            .schedule(static_cast<double>(due) / 1e9, 1,
                      [&, due] {
                          ++all;
                          if (clock.nsecsElapsed() < due)
                              early += due;
                      })
            .reset();
    }
    ASSERT_TRUE(waitFor([&] { return all == 40; }));
    EXPECT_TRUE(early.isEmpty());
}

TEST_F(QtTimers, aTimerArmedOnAnotherThreadFiresOnTheMainThread)
{
    std::thread([&] { timers.schedule(0.001, 0, counting()).reset(); }).join();
    ASSERT_TRUE(waitFor([&] { return fired == 1; }));
    EXPECT_EQ(thread, std::this_thread::get_id());
}

TEST_F(QtTimers, anIntervalOfNothingOrLessFiresFromTheEventLoop)
{
    timers.schedule(0, 0, counting()).reset();
    timers.schedule(-5, 10, counting()).reset();
    EXPECT_EQ(fired, 0);
    EXPECT_TRUE(waitFor([&] { return fired == 2; }));
}

TEST_F(QtTimers, aTimerThatIsOverdueButInvalidatedInTimeDoesNotFire)
{
    const auto timer = timers.schedule(0.001, 0, counting());
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 5) { } // overdue now, with the event loop not served
    timer->invalidate();
    int later = 0;
    timers.schedule(0.02, 0, [&] { ++later; }).reset();
    ASSERT_TRUE(waitFor([&] { return later == 1; }));
    EXPECT_EQ(fired, 0);
}

TEST_F(QtTimers, aTimerArmedOnAnotherThreadCanBeInvalidatedBeforeTheMainThreadHasSeenIt)
{
    std::shared_ptr<Timer> timer;
    std::thread([&] { timer = timers.schedule(0, 0, counting()); }).join();
    timer->invalidate();
    int later = 0;
    timers.schedule(0.02, 0, [&] { ++later; }).reset();
    ASSERT_TRUE(waitFor([&] { return later == 1; }));
    EXPECT_EQ(fired, 0);
}

TEST_F(QtTimers, aTimerCanBeInvalidatedFromAnotherThread)
{
    const auto timer = timers.schedule(0.02, 0, counting());
    std::thread([&] { timer->invalidate(); }).join();
    int later = 0;
    timers.schedule(0.04, 0, [&] { ++later; }).reset();
    ASSERT_TRUE(waitFor([&] { return later == 1; }));
    EXPECT_EQ(fired, 0);
}

TEST_F(QtTimers, invalidatingTwiceOrAfterTheFiringDoesNothing)
{
    const auto unfired = timers.schedule(100, 0, counting());
    unfired->invalidate();
    unfired->invalidate();
    const auto timer = timers.schedule(0, 0, counting());
    ASSERT_TRUE(waitFor([&] { return fired == 1; }));
    timer->invalidate();
    timer->invalidate();
    serveEvents();
    EXPECT_EQ(fired, 1);
}

TEST_F(QtTimers, aTimerMayInvalidateItselfWhileItFires)
{
    std::shared_ptr<Timer> timer;
    timer = timers.schedule(0, 0, [&] {
        timer->invalidate();
        ++fired;
    });
    EXPECT_TRUE(waitFor([&] { return fired == 1; }));
}

TEST_F(QtTimers, theBlockIsDroppedAtTheInvalidationAndAfterTheFiring)
{
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = held;
    const auto timer = timers.schedule(100, 0, [held] {});
    held.reset();
    EXPECT_FALSE(watched.expired());
    timer->invalidate();
    EXPECT_TRUE(watched.expired());

    auto used = std::make_shared<int>(1);
    const std::weak_ptr<int> watchedUse = used;
    const auto firing = timers.schedule(0, 0, [this, used] { fired += *used; });
    used.reset();
    ASSERT_TRUE(waitFor([&] { return fired == 1; }));
    EXPECT_TRUE(watchedUse.expired());
}

TEST_F(QtTimers, aBlockInvalidatedFromAnotherThreadIsDroppedOnTheMainThread)
{
    std::thread::id dropper;
    std::shared_ptr<int> held(new int(1), [&](int *value) {
        delete value;
        dropper = std::this_thread::get_id();
    });
    const auto timer = timers.schedule(100, 0, [held] {});
    held.reset();
    std::thread([&] { timer->invalidate(); }).join();
    EXPECT_EQ(dropper, std::thread::id());
    EXPECT_TRUE(waitFor([&] { return dropper == std::this_thread::get_id(); }));
}

TEST_F(QtTimers, aTimerFiresInsideANestedEventLoop)
{
    QEventLoop sheet;
    timers
        .schedule(0.001, 0,
                  [&] {
                      ++fired;
                      sheet.quit();
                  })
        .reset();
    QTimer::singleShot(10000, &sheet, &QEventLoop::quit);
    sheet.exec();
    EXPECT_EQ(fired, 1);
}

TEST(SystemClock, tellsThePresentTimeInTheSystemsZone)
{
    const QDateTime before = QDateTime::currentDateTime();
    const QDateTime now = SystemClock().now();
    EXPECT_GE(now, before);
    EXPECT_LE(now, QDateTime::currentDateTime());
    EXPECT_EQ(now.timeSpec(), Qt::LocalTime);
}
