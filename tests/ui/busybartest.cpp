#include "ui/busybar.h"

#include <QTest>

#include <gtest/gtest.h>

namespace {

QImage picture(BusyBar &bar)
{
    return bar.grab().toImage();
}

} // namespace

TEST(BusyBar, itMovesInTheActiveWindow)
{
    QWidget window;
    BusyBar bar(&window);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    const QImage before = picture(bar);
    EXPECT_TRUE(QTest::qWaitFor([&] { return picture(bar) != before; }));
}

TEST(BusyBar, itStandsStillInAWindowBehindAnother)
{
    QWidget window;
    BusyBar bar(&window);
    window.show();
    QWidget front;
    BusyBar moving(&front);
    front.show();
    front.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&front));
    const QImage before = picture(bar);
    const QImage beforeOfFront = picture(moving);
    EXPECT_TRUE(QTest::qWaitFor([&] { return picture(moving) != beforeOfFront; }));
    EXPECT_EQ(picture(bar), before);
}

TEST(BusyBar, assistiveSoftwareFindsABarWithoutAnEnd)
{
    const BusyBar bar;
    EXPECT_EQ(bar.minimum(), bar.maximum());
    EXPECT_FALSE(bar.isTextVisible());
}
