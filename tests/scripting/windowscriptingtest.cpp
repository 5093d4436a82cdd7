// What scripts read and write on a window: its place in the order, whether it shows, its bounds.

#include "scripting/windowscriptingtest.h"

using namespace Qt::StringLiterals;

// Order

TEST_F(WindowScripting, theOnlyWindowHasTheIndexOneAndTakesNoOther)
{
    EXPECT_EQ(window(u"A"_s).AEOrderedIndex(), 1);
    EXPECT_EQ(setOrderedIndex(u"A"_s, 1), QString());
    for (const qint64 index : {qint64(2), qint64(0), qint64(-1), least, greatest})
        EXPECT_EQ(setOrderedIndex(u"A"_s, index),
                  u"6 Invalid index: %1; there is only 1 window."_s.arg(index));
    EXPECT_EQ(arrangements(), QStringList());
}

TEST_F(WindowScripting, theIndexIsThePlaceFrontToBack)
{
    openThreeWindows();
    EXPECT_EQ(window(u"C"_s).AEOrderedIndex(), 1);
    EXPECT_EQ(window(u"B"_s).AEOrderedIndex(), 2);
    EXPECT_EQ(window(u"A"_s).AEOrderedIndex(), 3);
}

TEST_F(WindowScripting, anIndexBeyondTheWindowsIsRefusedAsItWasGiven)
{
    openThreeWindows();
    for (const qint64 index : {qint64(0), qint64(-1), qint64(4), least, greatest})
        EXPECT_EQ(setOrderedIndex(u"B"_s, index),
                  u"6 Invalid index: %1; there are only 3 windows."_s.arg(index));
    EXPECT_EQ(arrangements(), QStringList());
    EXPECT_EQ(order(), u"C B A"_s);
}

TEST_F(WindowScripting, theIndexThatItHasAlreadyMovesNothing)
{
    openThreeWindows();
    for (const auto &[title, index] : {std::pair(u"C"_s, 1), std::pair(u"B"_s, 2), std::pair(u"A"_s, 3)})
        EXPECT_EQ(setOrderedIndex(title, index), QString());
    EXPECT_EQ(arrangements(), QStringList());
}

TEST_F(WindowScripting, theIndexOneOrdersAWindowToTheFront)
{
    openThreeWindows();
    EXPECT_EQ(setOrderedIndex(u"A"_s, 1), QString());
    EXPECT_EQ(arrangements(), QStringList{u"order A above 0"_s});
    EXPECT_EQ(order(), u"A C B"_s);
}

TEST_F(WindowScripting, anotherIndexIsGivenToTheHostAsIfItWereANumberOfAWindow)
{
    openThreeWindows();
    EXPECT_EQ(setOrderedIndex(u"C"_s, 3), QString());
    EXPECT_EQ(arrangements(), QStringList{u"order C above 2"_s});
    EXPECT_EQ(order(), u"C B A"_s);
}

TEST_F(WindowScripting, theIndexOfAHiddenTabMovesItsVisibleTab)
{
    openThreeTabs(u"B"_s);
    open(u"front"_s, separateWindow);
    EXPECT_EQ(window(u"A"_s).AEOrderedIndex(), 2);
    EXPECT_EQ(setOrderedIndex(u"A"_s, 1), QString());
    EXPECT_EQ(arrangements(), QStringList{u"order B above 0"_s});
    EXPECT_EQ(order(), u"B front"_s);
}

TEST_F(WindowScripting, aWindowThatIsNotOnScreenHasTheIndexZero)
{
    openThreeWindows();
    host.applicationHost.onScreen.removeAll(&fake(u"B"_s));
    EXPECT_EQ(window(u"B"_s).AEOrderedIndex(), 0);
    EXPECT_FALSE(window(u"B"_s).AEIsVisible());
    EXPECT_EQ(setOrderedIndex(u"B"_s, 1), QString());
    EXPECT_EQ(order(), u"B C A"_s);
}

// Visibility

TEST_F(WindowScripting, aHiddenTabSaysWhereItIs)
{
    openThreeTabs(u"C"_s);
    open(u"front"_s, separateWindow);
    NSWindowScripting hidden = window(u"B"_s);
    EXPECT_FALSE(hidden.AEIsVisible());
    EXPECT_TRUE(hidden.AETabbedWindows().isEmpty());
    EXPECT_EQ(hidden.AEOrderedIndex(), 2);
    EXPECT_EQ(hidden.AETabOrderedIndex(), 2);
    EXPECT_TRUE(hidden.AEIsTabbed());
    EXPECT_EQ(hidden.AEParentWindow(), &fake(u"C"_s));
}

TEST_F(WindowScripting, theVisibleTabHasTheTabsOfItsGroup)
{
    openThreeTabs(u"C"_s);
    NSWindowScripting visible = window(u"C"_s);
    EXPECT_TRUE(visible.AEIsVisible());
    EXPECT_EQ(titles(visible.AETabbedWindows()), u"A B C"_s);
    EXPECT_EQ(visible.AETabOrderedIndex(), 3);
    EXPECT_EQ(visible.AEParentWindow(), &fake(u"C"_s));
}

TEST_F(WindowScripting, aVisibleWindowCannotBeHidden)
{
    openThreeTabs(u"B"_s);
    window(u"B"_s).setAEIsVisible(false);
    window(u"B"_s).setAEIsVisible(true);
    EXPECT_EQ(arrangements(), QStringList());
}

TEST_F(WindowScripting, aHiddenTabIsMadeVisible)
{
    openThreeTabs(u"B"_s);
    window(u"A"_s).setAEIsVisible(true);
    EXPECT_EQ(arrangements(), QStringList{u"select A"_s});
    EXPECT_EQ(order(), u"A"_s);
}

TEST_F(WindowScripting, hidingAHiddenTabShowsTheTabAfterIt)
{
    openThreeTabs(u"A"_s);
    window(u"B"_s).setAEIsVisible(false);
    EXPECT_EQ(order(), u"C"_s) << "and not the one before it";
}

TEST_F(WindowScripting, hidingAHiddenTabThatIsTheLastShowsTheTabBeforeIt)
{
    openThreeTabs(u"A"_s);
    window(u"C"_s).setAEIsVisible(false);
    EXPECT_EQ(order(), u"B"_s);
}

TEST_F(WindowScripting, theVisibilityOfAWindowThatIsNotOnScreenStaysAsItIs)
{
    openThreeWindows();
    host.applicationHost.onScreen.removeAll(&fake(u"B"_s));
    window(u"B"_s).setAEIsVisible(true);
    window(u"B"_s).setAEIsVisible(false);
    EXPECT_EQ(arrangements(), QStringList());
    EXPECT_EQ(order(), u"C A"_s);
}

// Bounds

TEST_F(WindowScripting, theBoundsAreThoseOfTheWindow)
{
    const platform::QDRect bounds{10, 20, 710, 940};
    window(u"A"_s).setAEBoundsAsQDRect(bounds);
    EXPECT_EQ(fake(u"A"_s).bounds, bounds);
    EXPECT_EQ(window(u"A"_s).AEBoundsAsQDRect(), bounds);
}

TEST_F(WindowScripting, theBoundsOfAHiddenTabAreThoseOfTheVisibleOne)
{
    openThreeTabs(u"C"_s);
    const platform::QDRect bounds{10, 20, 710, 940};
    window(u"A"_s).setAEBoundsAsQDRect(bounds);
    EXPECT_EQ(fake(u"C"_s).bounds, bounds);
    EXPECT_EQ(fake(u"A"_s).bounds, platform::QDRect());
    EXPECT_EQ(window(u"B"_s).AEBoundsAsQDRect(), bounds);
}

TEST_F(WindowScripting, aWindowThatIsNotOnScreenHasNoBoundsAndTakesNone)
{
    open(u"B"_s, separateWindow);
    host.applicationHost.onScreen.removeAll(&fake(u"A"_s));
    EXPECT_EQ(window(u"A"_s).AEBoundsAsQDRect(), std::nullopt);
    window(u"A"_s).setAEBoundsAsQDRect({1, 2, 3, 4});
    EXPECT_EQ(fake(u"A"_s).bounds, platform::QDRect());
}

TEST_F(WindowScripting, aGroupThatIsNotOnScreenHasNoBounds)
{
    openThreeTabs(u"B"_s);
    host.applicationHost.onScreen.clear();
    EXPECT_EQ(window(u"A"_s).AEBoundsAsQDRect(), std::nullopt);
    EXPECT_EQ(window(u"A"_s).AEOrderedIndex(), 0);
}

TEST_F(WindowScripting, aBusyDocumentsWindowIsRearrangedAllTheSame)
{
    openThreeTabs(u"C"_s);
    window(u"A"_s).controller().isBusy.set(true);
    window(u"A"_s).controller().changeStatus(status::submitting);
    EXPECT_EQ(setTabOrderedIndex(u"A"_s, 2), QString());
    window(u"A"_s).setAEIsTabbed(false);
    EXPECT_FALSE(window(u"A"_s).AEIsTabbed());
}

TEST_F(WindowScripting, itIsDescribedByItsTitle)
{
    EXPECT_EQ(window(u"A"_s).description(), u"NSWindow 'A'"_s);
}
