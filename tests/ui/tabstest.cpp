// Windows as tabs: opened, switched and moved, by mouse and keyboard.

#include "tabstest.h"

#include <QAction>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>

using namespace Qt::StringLiterals;

TEST_F(Tabs, aLoneDocumentHasNoTabToSee)
{
    EXPECT_FALSE(bar(frame()).isVisible());
    EXPECT_TRUE(window().tabbedWindows().isEmpty());
    EXPECT_EQ(titles(window().tabGroup()), QStringList{u"Untitled"_s});
    EXPECT_EQ(window().tabGroup().selectedWindow(), &window());
}

TEST_F(Tabs, newTabOpensTheLastTabOfTheFrontWindowAndShowsIt)
{
    openTwoMore();
    EXPECT_EQ(tabTexts(frame()), (QStringList{u"Untitled"_s, u"Untitled-2"_s, u"Untitled-3"_s}));
    EXPECT_EQ(titles(frame()), tabTexts(frame()));
    EXPECT_TRUE(bar(frame()).isVisible());
    EXPECT_EQ(frame().windowTitle(), u"Untitled-3"_s);
    EXPECT_EQ(order.frontToBack(), QList<platform::Window *>{&window()});
    EXPECT_EQ(window().tabbedWindows().size(), 3);
}

TEST_F(Tabs, onlyTheSelectedPageIsKeptUpToDate)
{
    openTwoMore();
    const auto isKept = [this](int index) { return windowOf(at(index)).page().updatesEnabled(); };
    EXPECT_EQ((QList<bool>{isKept(0), isKept(1), isKept(2)}), (QList<bool>{false, false, true}));
    at(0).window().show();
    EXPECT_EQ((QList<bool>{isKept(0), isKept(1), isKept(2)}), (QList<bool>{true, false, false}));
    frame().moveTabToOwnFrame();
    EXPECT_EQ((QList<bool>{isKept(0), isKept(1), isKept(2)}), (QList<bool>{true, true, false}));
}

TEST_F(Tabs, newWindowAndNewOpenAWindowOfTheirOwn)
{
    press(frame(), Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
    press(frame(), Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(order.frontToBack(),
              (QList<platform::Window *>{&at(2).window(), &at(1).window(), &at(0).window()}));
    for (int index = 0; index < 3; ++index)
        EXPECT_TRUE(at(index).window().tabbedWindows().isEmpty());
}

TEST_F(Tabs, newTabWithoutAWindowOnScreenOpensAWindow)
{
    frame().showMinimized();
    host.application().newDocument(2);
    EXPECT_EQ(order.frontToBack(), QList<platform::Window *>{&window()});
    EXPECT_TRUE(window().tabbedWindows().isEmpty());
}

TEST_F(Tabs, theKeysGoRoundTheTabs)
{
    openTwoMore();
    press(frame(), Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(selectedTitle(frame()), u"Untitled"_s);
    press(frame(), Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(selectedTitle(frame()), u"Untitled-2"_s);
    press(frame(), Qt::Key_PageUp, Qt::ControlModifier);
    press(frame(), Qt::Key_PageUp, Qt::ControlModifier);
    EXPECT_EQ(selectedTitle(frame()), u"Untitled-3"_s);
    EXPECT_EQ(frame().windowTitle(), u"Untitled-3"_s);
}

TEST_F(Tabs, theKeysMoveTheTabOnShowAsFarAsTheEnd)
{
    openTwoMore();
    auto &field = *windowOf(at(2)).page().findChild<QLineEdit *>(u"providerNameField"_s);
    field.setFocus();
    const auto move = [this](Qt::Key key) {
        press(frame(), key, Qt::ControlModifier | Qt::ShiftModifier);
        EXPECT_EQ(tabTexts(frame()), titles(frame()));
        EXPECT_EQ(selectedTitle(frame()), u"Untitled-3"_s);
        return titles(frame());
    };
    const QStringList inTheMiddle{u"Untitled"_s, u"Untitled-3"_s, u"Untitled-2"_s};
    const QStringList first{u"Untitled-3"_s, u"Untitled"_s, u"Untitled-2"_s};
    EXPECT_EQ(move(Qt::Key_PageUp), inTheMiddle);
    EXPECT_EQ(move(Qt::Key_PageUp), first);
    EXPECT_EQ(move(Qt::Key_PageUp), first);
    EXPECT_EQ(move(Qt::Key_PageDown), inTheMiddle);
    EXPECT_TRUE(field.hasFocus());
    EXPECT_EQ(NSWindowScripting(at(2)).AETabOrderedIndex(), 2) << "and so it is for scripts";
}

TEST_F(Tabs, aTabIsMovedByTheItemsOfTheMenu)
{
    const auto choose = [this](Qt::Key letter) {
        auto &menu = part<QMenu>(u"windowMenu"_s);
        until([this] { return frame().isActiveWindow(); });
        QTest::keyClick(&frame(), Qt::Key_W, Qt::AltModifier);
        until([&] { return menu.isVisible(); });
        QTest::keyClick(&menu, letter);
        until([&] { return !menu.isVisible(); });
    };
    openTwoMore();
    choose(Qt::Key_L);
    EXPECT_EQ(titles(frame()), (QStringList{u"Untitled"_s, u"Untitled-3"_s, u"Untitled-2"_s}));
    choose(Qt::Key_R);
    EXPECT_EQ(titles(frame()), (QStringList{u"Untitled"_s, u"Untitled-2"_s, u"Untitled-3"_s}));
}

TEST_F(Tabs, aLoneTabHasNothingToBeMovedPast)
{
    for (const QAction *const command : frame().actions())
        EXPECT_FALSE(command->isEnabled()) << command->text().toStdString();
    press(frame(), Qt::Key_PageUp, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(titles(frame()), QStringList{u"Untitled"_s});
}

TEST_F(Tabs, theKeysWorkInTheLogToo)
{
    openTwoMore();
    auto &log = part<QWidget>(u"statusTextView"_s);
    log.setFocus();
    until([&] { return log.hasFocus(); });
    QTest::keyClick(&log, Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(selectedTitle(frame()), u"Untitled"_s);
}

TEST_F(Tabs, aClickOnATabShowsItsDocument)
{
    openTwoMore();
    QTest::mouseClick(&bar(frame()), Qt::LeftButton, {}, middleOfTab(frame(), 1));
    EXPECT_EQ(selectedTitle(frame()), u"Untitled-2"_s);
    EXPECT_TRUE(windowOf(at(1)).page().isVisible());
    EXPECT_FALSE(windowOf(at(2)).page().isVisible());
}

TEST_F(Tabs, eachTabHasItsDocumentsTitle)
{
    openTwoMore();
    at(0).window().setTitle(u"Salt & Pepper.app"_s);
    EXPECT_EQ(tabTexts(frame()).first(), u"Salt && Pepper.app"_s) << "no letter is a shortcut";
    EXPECT_EQ(frame().windowTitle(), u"Untitled-3"_s);
    at(2).window().setTitle(u"Foo.app"_s);
    EXPECT_EQ(frame().windowTitle(), u"Foo.app"_s);
}

TEST_F(Tabs, theMenuActsOnTheDocumentOnShow)
{
    openTwoMore();
    frame().setSelectedWindow(at(0).window());
    at(0).canCancel.set(true);
    at(2).canCancel.set(true);
    for (QAction *const item : frame().menuBar()->actions().first()->menu()->actions()) {
        if (item->text().startsWith(u"C&ancel"_s))
            item->trigger();
    }
    EXPECT_FALSE(at(0).canCancel());
    EXPECT_TRUE(at(2).canCancel());
}

TEST_F(Tabs, aTabIsMovedAlongTheBarByTheMouse)
{
    openTwoMore();
    const QPoint to = middleOfTab(frame(), 2) + QPoint(20, 0);
    drag(frame(), 0, to);
    letGo(frame(), to);
    EXPECT_EQ(titles(frame()), (QStringList{u"Untitled-2"_s, u"Untitled-3"_s, u"Untitled"_s}));
    EXPECT_EQ(tabTexts(frame()), titles(frame()));
    EXPECT_EQ(selectedTitle(frame()), u"Untitled"_s);
}

TEST_F(Tabs, aTabThatIsDraggedOffTheBarGetsAWindowOfItsOwn)
{
    openTwoMore();
    FrameWindow &group = frame();
    drag(group, 1, {150, 2000});
    letGo(group, {150, 2000});
    EXPECT_EQ(titles(group), (QStringList{u"Untitled"_s, u"Untitled-3"_s}));
    FrameWindow &own = frameOf(at(1));
    ASSERT_NE(&own, &group);
    EXPECT_TRUE(own.isVisible());
    EXPECT_TRUE(windowOf(at(1)).page().isVisible());
    EXPECT_EQ(order.frontToBack().first(), &at(1).window());
    EXPECT_EQ(order.frontToBack().size(), 2);
}

TEST_F(Tabs, escapeEndsADragAndLeavesTheTab)
{
    openTwoMore();
    drag(frame(), 1, {150, 2000});
    QTest::keyClick(&bar(frame()), Qt::Key_Escape);
    letGo(frame(), {150, 2000});
    EXPECT_EQ(titles(frame()).size(), 3);
    EXPECT_EQ(order.frontToBack().size(), 1);
}

TEST_F(Tabs, aTabGoesToTheBarOfAnotherWindowWhereItIsLetGo)
{
    openTwoMore();
    FrameWindow &group = frame();
    host.application().newDocument(1);
    host.application().newDocument(2);
    FrameWindow &other = frameOf(at(3));
    other.move(group.pos() + QPoint(300, 400));
    QCoreApplication::processEvents();
    const QPoint target =
        bar(group).mapFromGlobal(bar(other).mapToGlobal(middleOfTab(other, 1) - QPoint(10, 0)));
    drag(group, 0, target);
    letGo(group, target);
    EXPECT_EQ(titles(group), (QStringList{u"Untitled-2"_s, u"Untitled-3"_s}));
    EXPECT_EQ(titles(other), (QStringList{u"Untitled-4"_s, u"Untitled"_s, u"Untitled-5"_s}));
    EXPECT_EQ(selectedTitle(other), u"Untitled"_s);
    EXPECT_TRUE(windowOf(at(0)).page().isVisible());
    EXPECT_EQ(order.frontToBack().first(), &at(0).window());
}

TEST_F(Tabs, aLoneWindowTakesATabOnItsMenuBar)
{
    openTwoMore();
    FrameWindow &group = frame();
    host.application().newDocument(1);
    FrameWindow &lone = frameOf(at(3));
    lone.move(group.pos() + QPoint(300, 400));
    QCoreApplication::processEvents();
    const QPoint target = bar(group).mapFromGlobal(lone.menuBar()->mapToGlobal(QPoint(10, 5)));
    drag(group, 2, target);
    letGo(group, target);
    EXPECT_EQ(titles(lone), (QStringList{u"Untitled-4"_s, u"Untitled-3"_s}));
    EXPECT_EQ(titles(group).size(), 2);
}
