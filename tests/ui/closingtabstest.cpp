// Tabs that are closed, and those whose sheets wait for an answer.

#include "tabstest.h"

#include <QLineEdit>
#include <QPointer>
#include <QPushButton>

using namespace Qt::StringLiterals;

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
