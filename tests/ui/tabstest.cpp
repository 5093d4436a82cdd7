// Windows as tabs: opened, switched, moved, closed, by mouse and keyboard.

#include "document/documentcommands.h"
#include "scripting/NSWindow+Scripting.h"
#include "ui/framewindow.h"
#include "ui/tabbar.h"
#include "windowtest.h"

#include <QAccessible>
#include <QAction>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

class Tabs : public WindowTest {
protected:
    Tabs()
    {
        until([this] { return widget().isActiveWindow(); });
    }

    FrameWindow &frame() { return frameOf(document()); }
    static WidgetWindow &windowOf(MainWinController &document)
    {
        return dynamic_cast<WidgetWindow &>(document.window());
    }
    static FrameWindow &frameOf(MainWinController &document) { return *windowOf(document).frameWindow(); }
    static TabBar &bar(FrameWindow &frame) { return *frame.findChild<TabBar *>(); }
    MainWinController &at(qsizetype index) { return *host.application().allControllers().at(index); }

    /// Two more documents as tabs behind the first: "Untitled", "Untitled-2", "Untitled-3".
    void openTwoMore()
    {
        press(frame(), Qt::Key_T, Qt::ControlModifier);
        press(frame(), Qt::Key_T, Qt::ControlModifier);
        ASSERT_EQ(titles(frame()).size(), 3);
    }

    static void press(FrameWindow &frame, Qt::Key key, Qt::KeyboardModifiers modifiers)
    {
        until([&frame] { return frame.isActiveWindow(); });
        QTest::keyClick(&frame, key, modifiers);
        QCoreApplication::processEvents();
    }

    static QStringList titles(const platform::TabGroup &group)
    {
        QStringList titles;
        for (const platform::Window *const window : group.windows())
            titles.append(window->title());
        return titles;
    }
    static QStringList tabTexts(FrameWindow &frame)
    {
        QStringList texts;
        for (int index = 0; index < bar(frame).count(); ++index)
            texts.append(bar(frame).tabText(index));
        return texts;
    }
    /// What each tab says of itself to the mouse and to screen readers. A mark tells the eye the same.
    static QStringList descriptions(FrameWindow &frame)
    {
        QStringList descriptions;
        QAccessibleInterface *const read = QAccessible::queryAccessibleInterface(&bar(frame));
        for (int index = 0; index < bar(frame).count(); ++index) {
            const QString description = bar(frame).tabToolTip(index);
            EXPECT_EQ(read->child(index)->text(QAccessible::Name), description);
            EXPECT_EQ(bar(frame).tabIcon(index).isNull(), description == frame.windows().at(index)->title());
            descriptions.append(description);
        }
        return descriptions;
    }
    static QString selectedTitle(FrameWindow &frame) { return frame.selectedWindow()->title(); }

    static QPoint middleOfTab(FrameWindow &frame, int index) { return bar(frame).tabRect(index).center(); }

    /// Moves the mouse with its button down from the tab to a place relative to the frame's tab bar.
    static void drag(FrameWindow &frame, int index, QPoint to)
    {
        TabBar &tabs = bar(frame);
        const QPoint from = middleOfTab(frame, index);
        QTest::mousePress(&tabs, Qt::LeftButton, {}, from);
        constexpr int steps = 8;
        for (int step = 1; step <= steps; ++step)
            moveTo(tabs, from + (to - from) * step / steps);
    }
    static void moveTo(TabBar &tabs, QPoint position)
    {
        QMouseEvent move(QEvent::MouseMove, position, tabs.mapToGlobal(position), Qt::NoButton,
                         Qt::LeftButton, {});
        QApplication::sendEvent(&tabs, &move);
    }
    static void letGo(FrameWindow &frame, QPoint at)
    {
        TabBar &tabs = bar(frame);
        QMouseEvent release(QEvent::MouseButtonRelease, at, tabs.mapToGlobal(at), Qt::LeftButton,
                            Qt::NoButton, {});
        QApplication::sendEvent(&tabs, &release);
        QCoreApplication::processEvents();
    }
};

} // namespace

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

TEST_F(Tabs, theFrameEndsWithItsLastTab)
{
    press(frame(), Qt::Key_T, Qt::ControlModifier);
    const QPointer<FrameWindow> group(&frame());
    host.application().newDocument(1);
    FrameWindow &other = frame();
    other.insertWindow(at(0).window(), 0);
    other.insertWindow(at(1).window(), 1);
    EXPECT_EQ(order.frontToBack(), QList<platform::Window *>{&at(2).window()});
    until([&] { return group.isNull(); });
}

TEST_F(Tabs, ctrlWClosesTheTabOnShowAlone)
{
    openTwoMore();
    FrameWindow &group = frame();
    group.setSelectedWindow(at(1).window());
    press(group, Qt::Key_W, Qt::ControlModifier);
    EXPECT_EQ(titles(group), (QStringList{u"Untitled"_s, u"Untitled-3"_s}));
    EXPECT_EQ(host.application().allControllers().size(), 2);
    EXPECT_TRUE(group.isVisible());
}

TEST_F(Tabs, theCloseButtonOfATabClosesThatTab)
{
    openTwoMore();
    FrameWindow &group = frame();
    QWidget *button = bar(group).tabButton(0, QTabBar::RightSide);
    if (!button)
        button = bar(group).tabButton(0, QTabBar::LeftSide);
    ASSERT_TRUE(button);
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_EQ(titles(group), (QStringList{u"Untitled-2"_s, u"Untitled-3"_s}));
    EXPECT_EQ(selectedTitle(group), u"Untitled-3"_s);
}

TEST_F(Tabs, theTabBarGoesWhenOneDocumentIsLeft)
{
    press(frame(), Qt::Key_T, Qt::ControlModifier);
    EXPECT_TRUE(bar(frame()).isVisible());
    press(frame(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(bar(frame()).isVisible());
    EXPECT_TRUE(window().tabbedWindows().isEmpty());
}

TEST_F(Tabs, closeAllTabsClosesTheWholeGroupAndNoOtherWindow)
{
    openTwoMore();
    FrameWindow &group = frame();
    const DocumentPtr other = host.application().addedDocument();
    group.activateWindow();
    press(group, Qt::Key_W, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(host.application().allControllers(), QList<DocumentPtr>{other});
}

TEST_F(Tabs, closingTheFrameClosesEachTabThatAgrees)
{
    openTwoMore();
    FrameWindow &group = frame();
    at(1).isBusy.set(true);
    group.close();
    ASSERT_EQ(host.application().allControllers().size(), 1);
    EXPECT_TRUE(group.isVisible());
    EXPECT_EQ(awaitSheet().informativeText(), u"This window is busy."_s);
    answer(u"Cancel"_s);
    document().isBusy.set(false);
    const QPointer<FrameWindow> watched(&group);
    group.close();
    EXPECT_TRUE(host.application().allControllers().isEmpty());
    until([&] { return watched.isNull(); });
}

TEST_F(Tabs, theQuestionOfAHiddenTabComesOnShow)
{
    openTwoMore();
    at(0).isBusy.set(true);
    at(0).window().performClose();
    EXPECT_EQ(selectedTitle(frame()), u"Untitled"_s);
    at(0).isBusy.set(false);
}

TEST_F(Tabs, aSheetOfOneTabLeavesTheOthersUsable)
{
    openTwoMore();
    QList<int> answers;
    window().beginSheet({u"Question"_s, u"Well?"_s, {}}, [&](int given) { answers.append(given); });
    AlertBox &box = awaitSheet();
    QTest::mouseClick(&part<QPushButton>(u"submitAppButton"_s), Qt::LeftButton);
    EXPECT_FALSE(document().isBusy()) << "its own page takes no input";
    QTest::mouseClick(&bar(frame()), Qt::LeftButton, {}, middleOfTab(frame(), 0));
    EXPECT_EQ(selectedTitle(frame()), u"Untitled"_s);
    EXPECT_FALSE(box.isVisible());
    auto &field = *windowOf(at(0)).page().findChild<QLineEdit *>(u"appleIDField"_s);
    field.clear();
    QTest::keyClicks(&field, u"me@example.com"_s);
    EXPECT_EQ(at(0).appleIDField.stringValue(), u"me@example.com"_s);
    press(frame(), Qt::Key_PageUp, Qt::ControlModifier);
    until([&] { return box.isVisible(); });
    answer(u"OK"_s);
    EXPECT_EQ(answers, QList{platform::alertFirstButton});
}

TEST_F(Tabs, aTabOutOfSightSaysThatItsSheetWaitsForAnAnswer)
{
    openTwoMore();
    at(1).window().setTitle(u"Salt & Pepper.app"_s);
    const QStringList plain{u"Untitled"_s, u"Salt & Pepper.app"_s, u"Untitled-3"_s};
    const QStringList marked{u"Untitled"_s, u"Salt & Pepper.app – waits for an answer"_s, u"Untitled-3"_s};
    EXPECT_EQ(descriptions(frame()), plain);
    windowOf(at(1)).beginSheet({u"Question"_s, u"Well?"_s, {}}, [](int) {});
    EXPECT_EQ(descriptions(frame()), marked);
    EXPECT_EQ(tabTexts(frame()).at(1), u"Salt && Pepper.app"_s);
    frame().setSelectedWindow(at(1).window());
    EXPECT_EQ(descriptions(frame()), plain) << "the sheet itself is on show";
    EXPECT_EQ(frame().windowTitle(), u"Salt & Pepper.app"_s);
    frame().setSelectedWindow(at(0).window());
    EXPECT_EQ(descriptions(frame()), marked);
}

TEST_F(Tabs, theMarkOfASheetMovesWithItsTabAndGoesWithTheSheet)
{
    openTwoMore();
    windowOf(at(1)).beginSheet({u"Question"_s, u"Well?"_s, {}}, [](int) {});
    press(frame(), Qt::Key_PageUp, Qt::ControlModifier | Qt::ShiftModifier);
    const QStringList moved{u"Untitled"_s, u"Untitled-3"_s, u"Untitled-2 – waits for an answer"_s};
    EXPECT_EQ(descriptions(frame()), moved);
    host.application().newDocument(1);
    FrameWindow &other = frame();
    other.insertWindow(at(1).window(), 0);
    EXPECT_EQ(descriptions(other), (QStringList{u"Untitled-2 – waits for an answer"_s, u"Untitled-4"_s}));
    EXPECT_EQ(descriptions(frameOf(at(0))), (QStringList{u"Untitled"_s, u"Untitled-3"_s}));
    windowOf(at(1)).page().findChild<AlertBox *>()->reject();
    until([&] { return !windowOf(at(1)).hasSheet(); });
    EXPECT_EQ(descriptions(other), (QStringList{u"Untitled-2"_s, u"Untitled-4"_s}));
}

TEST_F(Tabs, theKeysLeadFromASheetToTheNextTab)
{
    openTwoMore();
    window().beginSheet({u"Question"_s, u"Well?"_s, {}}, [](int) {});
    AlertBox &box = awaitSheet();
    until([&] { return box.isActiveWindow(); });
    QTest::keyClick(&box, Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(selectedTitle(frame()), u"Untitled"_s);
}

TEST_F(Tabs, aSheetGoesWithItsPageIntoAnotherFrame)
{
    openTwoMore();
    window().beginSheet({u"Question"_s, u"Well?"_s, {}}, [](int) {});
    AlertBox &box = awaitSheet();
    frame().removeWindow(window());
    until([&] { return widget().isVisible() && box.isVisible(); });
    EXPECT_EQ(box.window(), &widget());
    EXPECT_TRUE(page().rect().contains(QRect(box.mapTo(&page(), QPoint()), box.size())));
    answer(u"OK"_s);
}

TEST_F(Tabs, aPersonClosesNothingWhileItsSheetIsUp)
{
    window().beginSheet({u"Question"_s, u"Well?"_s, {}}, [](int) {});
    awaitSheet();
    widget().close();
    press(frame(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_EQ(host.application().allControllers().size(), 1);
    answer(u"OK"_s);
}

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
