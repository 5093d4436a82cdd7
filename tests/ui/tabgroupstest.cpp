// Tabs between windows: taken out of their group, put into another one, and what has the focus then.

#include "tabstest.h"

#include <QAction>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>

using namespace Qt::StringLiterals;

TEST_F(Tabs, aWindowThatIsRemovedFromItsGroupComesOnScreenInFrontWhereTheGroupIs)
{
    openTwoMore();
    FrameWindow &group = frame();
    group.move(70, 40);
    group.removeWindow(at(1).window());
    EXPECT_EQ(order.frontToBack(), (QList<platform::Window *>{&at(1).window(), &at(2).window()}));
    until([this] { return frameOf(at(1)).isVisible(); });
    EXPECT_EQ(frameOf(at(1)).pos(), group.pos());
    EXPECT_EQ(frameOf(at(1)).size(), group.size());
    EXPECT_EQ(selectedTitle(group), u"Untitled-3"_s);
}

TEST_F(Tabs, aWindowThatIsPutElsewhereAtOnceShowsNoFrame)
{
    openTwoMore();
    FrameWindow &group = frame();
    group.removeWindow(at(0).window());
    const QPointer<FrameWindow> own(&frameOf(at(0)));
    group.insertWindow(at(0).window(), 2);
    EXPECT_EQ(titles(group), (QStringList{u"Untitled-2"_s, u"Untitled-3"_s, u"Untitled"_s}));
    until([&] {
        EXPECT_TRUE(own.isNull() || !own->isVisible());
        return own.isNull();
    });
    EXPECT_EQ(selectedTitle(group), u"Untitled-3"_s) << "to be inserted is not to be shown";
}

TEST_F(Tabs, aMinimisedGroupIsNotOnScreen)
{
    openTwoMore();
    frame().showMinimized();
    EXPECT_TRUE(order.frontToBack().isEmpty());
    at(0).window().show();
    EXPECT_EQ(order.frontToBack(), QList<platform::Window *>{&at(0).window()});
}

TEST_F(Tabs, allWindowsAreMergedIntoTheOneInFront)
{
    openTwoMore();
    host.application().newDocument(1);
    FrameWindow &front = frame();
    for (QAction *const item : front.findChild<QMenu *>(u"windowMenu"_s)->actions()) {
        if (item->text() == u"M&erge All Windows"_s)
            item->trigger();
    }
    EXPECT_EQ(titles(front), (QStringList{u"Untitled-4"_s, u"Untitled"_s, u"Untitled-2"_s, u"Untitled-3"_s}));
    EXPECT_EQ(selectedTitle(front), u"Untitled-4"_s);
    EXPECT_EQ(order.frontToBack().size(), 1);
}

TEST_F(Tabs, theTabOnShowIsMovedToAWindowOfItsOwnByTheMenu)
{
    openTwoMore();
    FrameWindow &group = frame();
    for (QAction *const item : group.actions()) {
        if (item->text() == u"&Move Tab to New Window"_s)
            item->trigger();
    }
    EXPECT_EQ(titles(group).size(), 2);
    EXPECT_EQ(order.frontToBack().first(), &at(2).window());
    EXPECT_GT(frameOf(at(2)).y(), group.y()) << "the one that it came out of is seen behind it";
}

TEST_F(Tabs, aScriptTakesATabOutALittleAside)
{
    openTwoMore();
    FrameWindow &group = frame();
    group.move(70, 40);
    const platform::QDRect before = window().boundsAsQDRect();
    NSWindowScripting(at(1)).setAEIsTabbed(false);
    until([this] { return frameOf(at(1)).isVisible(); });
    EXPECT_EQ(frameOf(at(1)).pos(), group.pos() + QPoint(21, 23)) << "downward on this screen";
    EXPECT_EQ(frameOf(at(1)).size(), group.size());
    EXPECT_EQ(window().boundsAsQDRect(), before);
    EXPECT_EQ(titles(group), (QStringList{u"Untitled"_s, u"Untitled-3"_s}));
    EXPECT_EQ(order.frontToBack(), (QList<platform::Window *>{&at(1).window(), &at(2).window()}));
}

TEST_F(Tabs, aScriptHasAWindowJoinTheOneBehindIt)
{
    openTwoMore();
    host.application().newDocument(1);
    FrameWindow &group = frameOf(at(0));
    NSWindowScripting(at(3)).setAEIsTabbed(true);
    EXPECT_EQ(titles(group), (QStringList{u"Untitled"_s, u"Untitled-2"_s, u"Untitled-4"_s, u"Untitled-3"_s}));
    EXPECT_EQ(tabTexts(group), titles(group));
    NSWindowScripting(at(3)).setAETabOrderedIndex(1);
    EXPECT_EQ(titles(group), (QStringList{u"Untitled-4"_s, u"Untitled"_s, u"Untitled-2"_s, u"Untitled-3"_s}));
    NSWindowScripting(at(3)).setAEIsVisible(true);
    EXPECT_EQ(selectedTitle(group), u"Untitled-4"_s);
    EXPECT_EQ(NSWindowScripting(at(0)).AEOrderedIndex(), 1);
    EXPECT_FALSE(NSWindowScripting(at(0)).AEIsVisible());
}

TEST_F(Tabs, aPageKeepsItsFocusOnItsWayThroughAFrameThatHidesIt)
{
    host.application().newDocument(1);
    FrameWindow &other = frameOf(at(0));
    other.insertWindow(at(1).window(), 0);
    ASSERT_FALSE(windowOf(at(1)).page().isVisible());
    other.removeWindow(at(1).window());
    FrameWindow &own = frameOf(at(1));
    until([&] { return own.isVisible(); });
    ASSERT_TRUE(own.focusWidget());
    EXPECT_EQ(own.focusWidget()->objectName(), u"appleIDField"_s);
}

TEST_F(Tabs, theFocusIsWhereItWasInEachTab)
{
    openTwoMore();
    auto &field = *windowOf(at(2)).page().findChild<QLineEdit *>(u"providerNameField"_s);
    field.setFocus();
    until([&] { return field.hasFocus(); });
    press(frame(), Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(QApplication::focusWidget()->objectName(), u"appleIDField"_s);
    press(frame(), Qt::Key_PageUp, Qt::ControlModifier);
    EXPECT_EQ(QApplication::focusWidget(), &field);
}

TEST_F(Tabs, aTabThatIsDraggedOutHasAPictureOfItselfBesideThePointer)
{
    const auto picture = [] {
        for (QWidget *const top : QApplication::topLevelWidgets()) {
            if (top->objectName() == "draggedTab"_L1)
                return top;
        }
        return static_cast<QWidget *>(nullptr);
    };
    openTwoMore();
    EXPECT_FALSE(picture());
    const QPoint away(200, 300);
    drag(frame(), 1, away);
    ASSERT_TRUE(picture());
    EXPECT_TRUE(picture()->isVisible());
    EXPECT_FALSE(picture()->isActiveWindow());
    letGo(frame(), away);
    EXPECT_FALSE(picture());
}

TEST_F(Tabs, theButtonThatClosesATabSaysSo)
{
    openTwoMore();
    for (int index = 0; index < bar(frame()).count(); ++index) {
        const QWidget *const left = bar(frame()).tabButton(index, QTabBar::LeftSide);
        const QWidget *const right = bar(frame()).tabButton(index, QTabBar::RightSide);
        ASSERT_TRUE(left || right);
        EXPECT_EQ((left ? left : right)->accessibleName(), u"Close Tab"_s);
    }
}
