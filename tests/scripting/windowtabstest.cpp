// What scripts read and write on the tabs of a window: their order, and the group that they are in.

#include "scripting/windowscriptingtest.h"

using namespace Qt::StringLiterals;

// The order of tabs

TEST_F(WindowScripting, theTabIndexOfAWindowWithoutTabsTakesEveryValueAndDoesNothing)
{
    EXPECT_EQ(window(u"A"_s).AETabOrderedIndex(), 1);
    for (const qint64 index : {qint64(1), qint64(0), qint64(-5), qint64(99), least, greatest})
        EXPECT_EQ(setTabOrderedIndex(u"A"_s, index), QString());
    EXPECT_EQ(arrangements(), QStringList());
}

TEST_F(WindowScripting, aTabIsMovedToAnotherPlace)
{
    openThreeTabs(u"C"_s);
    EXPECT_EQ(setTabOrderedIndex(u"A"_s, 3), QString());
    EXPECT_EQ(arrangements(), (QStringList{u"remove A"_s, u"insert A at 0"_s, u"insert A at 2"_s}));
    EXPECT_EQ(tabsOf(u"A"_s), u"B C A"_s);
    EXPECT_EQ(window(u"A"_s).AETabOrderedIndex(), 3);
    EXPECT_EQ(order(), u"C"_s);
}

TEST_F(WindowScripting, aTabIsTakenOutAndPutBackWhereItIsAlready)
{
    openThreeTabs(u"C"_s);
    EXPECT_EQ(setTabOrderedIndex(u"B"_s, 2), QString());
    EXPECT_EQ(arrangements(), (QStringList{u"remove B"_s, u"insert B at 0"_s, u"insert B at 1"_s}));
    EXPECT_EQ(tabsOf(u"A"_s), u"A B C"_s);
}

TEST_F(WindowScripting, aTabIndexBeyondTheTabsIsRefusedAsItWasGiven)
{
    openThreeTabs(u"A"_s);
    for (const qint64 index : {qint64(0), qint64(-1), qint64(4), least, greatest})
        EXPECT_EQ(setTabOrderedIndex(u"B"_s, index),
                  u"6 Invalid index: %1; there are only 3 tabs in the window."_s.arg(index));
    EXPECT_EQ(arrangements(), QStringList());
}

TEST_F(WindowScripting, aLoneTabTakesTheTabIndexOneOnly)
{
    fake(u"A"_s).showsTabWhenAlone = true;
    for (const qint64 index : {qint64(2), qint64(0), qint64(-1)})
        EXPECT_EQ(setTabOrderedIndex(u"A"_s, index),
                  u"6 Invalid index: %1; there is only 1 tab in the window."_s.arg(index));
    EXPECT_EQ(setTabOrderedIndex(u"A"_s, 1), QString());
    EXPECT_EQ(tabsOf(u"A"_s), u"A"_s);
}

// Joining and leaving

TEST_F(WindowScripting, theOnlyWindowCannotBeTabbed)
{
    window(u"A"_s).setAEIsTabbed(true);
    EXPECT_FALSE(window(u"A"_s).AEIsTabbed());
    EXPECT_EQ(arrangements(), QStringList());
}

TEST_F(WindowScripting, theFrontOfTwoWindowsJoinsTheOtherInFrontOfItsTab)
{
    open(u"B"_s, separateWindow);
    window(u"B"_s).setAEIsTabbed(true);
    EXPECT_EQ(arrangements(), QStringList{u"insert B at 0"_s});
    EXPECT_EQ(tabsOf(u"A"_s), u"B A"_s);
    EXPECT_TRUE(window(u"B"_s).AEIsTabbed());
    EXPECT_EQ(order(), u"A"_s);
}

TEST_F(WindowScripting, theRearmostWindowJoinsTheOneInFrontOfIt)
{
    openThreeWindows();
    window(u"A"_s).setAEIsTabbed(true);
    EXPECT_EQ(tabsOf(u"B"_s), u"A B"_s);
    EXPECT_EQ(order(), u"C B"_s);
}

TEST_F(WindowScripting, aWindowJoinsTheOneBehindItBeforeTheLastTab)
{
    openThreeTabs(u"B"_s);
    open(u"front"_s, separateWindow);
    window(u"front"_s).setAEIsTabbed(true);
    EXPECT_EQ(tabsOf(u"A"_s), u"A B front C"_s);
}

TEST_F(WindowScripting, aWindowThatIsNotOnScreenJoinsTheFrontmost)
{
    openThreeWindows();
    host.applicationHost.onScreen.removeAll(&fake(u"A"_s));
    window(u"A"_s).setAEIsTabbed(true);
    EXPECT_EQ(tabsOf(u"C"_s), u"A C"_s);
}

TEST_F(WindowScripting, whatIsTabbedAlreadyOrIsNotStaysSo)
{
    openThreeTabs(u"B"_s);
    window(u"A"_s).setAEIsTabbed(true);
    open(u"front"_s, separateWindow);
    window(u"front"_s).setAEIsTabbed(false);
    EXPECT_EQ(arrangements(), QStringList());
}

TEST_F(WindowScripting, aTabMovesOutALittleAsideAndLeavesTheOthersAsTheyWere)
{
    openThreeTabs(u"C"_s);
    fake(u"B"_s).place = QRect(100, 200, 920, 700);
    window(u"B"_s).setAEIsTabbed(false);
    EXPECT_EQ(fake(u"B"_s).place, QRect(121, 177, 920, 700));
    EXPECT_EQ(tabsOf(u"A"_s), u"A C"_s);
    EXPECT_FALSE(window(u"B"_s).AEIsTabbed());
    EXPECT_EQ(order(), u"B C"_s);
    EXPECT_EQ(fake(u"A"_s).place, QRect(100, 200, 920, 700));
}

TEST_F(WindowScripting, theVisibleTabThatMovesOutLeavesItsNeighbourOnShow)
{
    openThreeTabs(u"B"_s);
    window(u"B"_s).setAEIsTabbed(false);
    EXPECT_EQ(order(), u"B C"_s);
}

// The parent

TEST_F(WindowScripting, aWindowWithoutTabsIsItsOwnParent)
{
    EXPECT_EQ(window(u"A"_s).AEParentWindow(), &fake(u"A"_s));
}

TEST_F(WindowScripting, aWindowOfAnotherGroupAsParentTakesTheWindowAsItsLastTab)
{
    openThreeTabs(u"A"_s);
    open(u"front"_s, separateWindow);
    open(u"second"_s, tab);
    window(u"second"_s).setAEParentWindow(fake(u"B"_s));
    EXPECT_EQ(tabsOf(u"A"_s), u"A B C second"_s);
    EXPECT_EQ(tabsOf(u"front"_s), u"front"_s);
    EXPECT_EQ(arrangements(),
              (QStringList{u"remove second"_s, u"insert second at 0"_s, u"insert second at 3"_s}));
}

TEST_F(WindowScripting, aParentOfALoneWindowTakesItWithoutARemoval)
{
    openThreeWindows();
    window(u"C"_s).setAEParentWindow(fake(u"A"_s));
    EXPECT_EQ(arrangements(), QStringList{u"insert C at 1"_s});
    EXPECT_EQ(tabsOf(u"A"_s), u"A C"_s);
    EXPECT_EQ(order(), u"B A"_s);
}

TEST_F(WindowScripting, aParentOfItsOwnGroupChangesNothing)
{
    openThreeTabs(u"B"_s);
    window(u"A"_s).setAEParentWindow(fake(u"C"_s));
    window(u"A"_s).setAEParentWindow(fake(u"A"_s));
    EXPECT_EQ(arrangements(), QStringList());
}
