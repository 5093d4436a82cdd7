// What scripts read and write on a window: its place in the order, its tabs, its bounds.

#include "scripting/NSWindow+Scripting.h"

#include "document/documentcommands.h"
#include "platform/scriptcommand.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr int separateWindow = 1; // tags of the items that make documents
constexpr int tab = 2;
constexpr qint64 least = std::numeric_limits<qint64>::min();
constexpr qint64 greatest = std::numeric_limits<qint64>::max();

class WindowScripting : public testing::Test {
protected:
    WindowScripting()
    {
        host.launch();
        host.window().setTitle(u"A"_s);
    }

    /// A new document in front of the others, as a window or as the last tab of the front window.
    FakeWindow &open(const QString &title, int tag)
    {
        host.application().newDocument(tag);
        host.window().setTitle(title);
        return host.window();
    }
    /// "C", "B" and "A" from front to back.
    void openThreeWindows()
    {
        open(u"B"_s, separateWindow);
        open(u"C"_s, separateWindow);
    }
    /// One window with the tabs "A", "B" and "C", of which one shows.
    void openThreeTabs(const QString &visible)
    {
        open(u"B"_s, tab);
        open(u"C"_s, tab);
        fake(u"A"_s).group->setSelectedWindow(fake(visible));
        host.applicationHost.arrangements.clear();
    }

    NSWindowScripting window(const QString &title)
    {
        for (const DocumentPtr &document : host.application().allControllers()) {
            if (document->window().title() == title)
                return NSWindowScripting(*document);
        }
        throw std::runtime_error("no such window");
    }
    FakeWindow &fake(const QString &title) { return TestHost::window(window(title).controller()); }

    /// Does the work as a script's command, and answers with the number and the text of its error; null
    /// without one.
    static QString error(const std::function<void()> &work)
    {
        ScriptReply ended;
        const auto command = std::make_shared<ScriptCommand>(
            QVariantMap(), [&ended](const ScriptReply &reply) { ended = reply; });
        command->execute([&work](const ScriptCommandPtr &) { work(); });
        return ended.isError() ? QString::number(ended.errorNumber) + u' ' + ended.errorText : QString();
    }
    QString setOrderedIndex(const QString &title, qint64 index)
    {
        return error([&] { window(title).setAEOrderedIndex(index); });
    }
    QString setTabOrderedIndex(const QString &title, qint64 index)
    {
        return error([&] { window(title).setAETabOrderedIndex(index); });
    }

    static QString titles(const QList<platform::Window *> &windows)
    {
        QStringList titles;
        for (const platform::Window *const window : windows)
            titles.append(window->title());
        return titles.join(u' ');
    }
    QString order() { return titles(host.applicationHost.windowsFrontToBack()); }
    QString tabsOf(const QString &title) { return titles(fake(title).group->windows()); }
    /// What was done to windows since the last call.
    QStringList arrangements() { return std::exchange(host.applicationHost.arrangements, {}); }

    TestHost host;
};

} // namespace

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
