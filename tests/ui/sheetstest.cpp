#include "ui/sheets.h"

#include <QApplication>
#include <QDialog>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

namespace {

class SheetsOfAWindow : public testing::Test {
protected:
    SheetsOfAWindow() { window.show(); }

    QDialog *begin(std::function<void()> completion)
    {
        auto *const dialog = new QDialog(&window);
        sheets.begin(dialog, std::move(completion));
        return dialog;
    }

    QWidget window;
    Sheets sheets{window};
    int completions = 0;
};

} // namespace

TEST_F(SheetsOfAWindow, whileASheetIsUpItsPageTakesNoInput)
{
    QPushButton button(&window);
    button.show();
    int clicks = 0;
    QObject::connect(&button, &QPushButton::clicked, &button, [&] { ++clicks; });
    QDialog *const dialog = begin([] {});
    QTest::mouseClick(&button, Qt::LeftButton);
    QTest::keyClick(&button, Qt::Key_Space);
    EXPECT_EQ(clicks, 0);
    dialog->accept();
    EXPECT_TRUE(QTest::qWaitFor([&] { return sheets.isEmpty(); }));
    QTest::mouseClick(&button, Qt::LeftButton);
    QTest::keyClick(&button, Qt::Key_Space);
    EXPECT_EQ(clicks, 2);
}

TEST_F(SheetsOfAWindow, whileASheetIsUpItAndOtherWindowsTakeInput)
{
    QPushButton elsewhere;
    elsewhere.show();
    QDialog *const dialog = begin([] {});
    QPushButton inSheet(dialog);
    inSheet.show();
    int clicks = 0;
    for (const QPushButton *const button : {&elsewhere, &inSheet})
        QObject::connect(button, &QPushButton::clicked, button, [&] { ++clicks; });
    QTest::mouseClick(&elsewhere, Qt::LeftButton);
    QTest::mouseClick(&inSheet, Qt::LeftButton);
    EXPECT_EQ(clicks, 2);
}

TEST_F(SheetsOfAWindow, aSheetIsAPartOfItsPage)
{
    window.resize(600, 400);
    const QDialog *const dialog = begin([] {});
    EXPECT_FALSE(dialog->isWindow());
    EXPECT_EQ(dialog->window(), &window);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "menus and other windows go on";
}

TEST_F(SheetsOfAWindow, theKeyboardGoesRoundInTheSheetAndBackWhereItWas)
{
    QLineEdit field(&window);
    field.show();
    field.setFocus();
    auto *const dialog = new QDialog(&window);
    auto *const row = new QHBoxLayout(dialog);
    auto *const name = new QLineEdit(dialog);
    auto *const ok = new QPushButton(dialog);
    row->addWidget(name);
    row->addWidget(ok);
    sheets.begin(dialog, [] {});
    EXPECT_TRUE(QTest::qWaitFor([&] { return name->hasFocus(); }));
    QTest::keyClick(name, Qt::Key_Tab);
    EXPECT_TRUE(ok->hasFocus());
    QTest::keyClick(ok, Qt::Key_Tab);
    EXPECT_TRUE(name->hasFocus());
    QTest::keyClick(name, Qt::Key_Backtab);
    EXPECT_TRUE(ok->hasFocus());
    dialog->accept();
    EXPECT_TRUE(QTest::qWaitFor([&] { return field.hasFocus(); }));
}

TEST_F(SheetsOfAWindow, aPartThatIsLeftUncoveredStaysInUse)
{
    QPushButton cancel(&window);
    cancel.show();
    sheets.leaveUncovered(cancel);
    begin([] {});
    bool isPressed = false;
    QObject::connect(&cancel, &QPushButton::clicked, &cancel, [&] { isPressed = true; });
    QTest::mouseClick(&cancel, Qt::LeftButton);
    EXPECT_TRUE(isPressed);
}

TEST_F(SheetsOfAWindow, aPartThatIsLeftUncoveredWhileInUseIsCoveredOtherwise)
{
    QPushButton cancel(&window);
    cancel.show();
    bool isInUse = false;
    sheets.leaveUncovered(cancel, [&] { return isInUse; });
    begin([] {});
    EXPECT_FALSE(cancel.isEnabled());
    EXPECT_NE(window.childAt(cancel.geometry().center()), &cancel) << "and it is dimmed";
    isInUse = true;
    sheets.heedUse();
    EXPECT_TRUE(cancel.isEnabled());
    EXPECT_EQ(window.childAt(cancel.geometry().center()), &cancel);
    isInUse = false;
    sheets.heedUse();
    EXPECT_FALSE(cancel.isEnabled());
    EXPECT_TRUE(sheets.current()->isEnabled());
}

TEST_F(SheetsOfAWindow, aSheetIsOutOfSightWithItsPage)
{
    window.hide();
    QDialog *const dialog = begin([&] { ++completions; });
    EXPECT_FALSE(dialog->isVisible());
    window.show();
    EXPECT_TRUE(QTest::qWaitFor([&] { return dialog->isVisible(); }));
    window.hide();
    EXPECT_FALSE(dialog->isVisible());
    window.show();
    EXPECT_TRUE(QTest::qWaitFor([&] { return dialog->isVisible(); }));
    EXPECT_EQ(completions, 0) << "to be out of sight is no answer";
    dialog->accept();
    EXPECT_TRUE(QTest::qWaitFor([&] { return completions == 1; }));
}

TEST_F(SheetsOfAWindow, theCompletionComesOnceAfterTheSheetHasGone)
{
    QDialog *const dialog = begin([&] { ++completions; });
    const QPointer<QDialog> watched(dialog);
    dialog->accept();
    EXPECT_EQ(completions, 0) << "the completion must not come while the dialog is still in use";
    EXPECT_TRUE(QTest::qWaitFor([&] { return completions > 0 && watched.isNull(); }));
    EXPECT_EQ(completions, 1);
}

TEST_F(SheetsOfAWindow, theNextSheetComesWhenTheOneBeforeItHasGone)
{
    QDialog *const first = begin([&] { ++completions; });
    QDialog *const second = begin([&] { ++completions; });
    EXPECT_TRUE(first->isVisible());
    EXPECT_FALSE(second->isVisible());
    first->accept();
    EXPECT_TRUE(QTest::qWaitFor([&] { return second->isVisible(); }));
    EXPECT_EQ(completions, 1);
    second->reject();
    EXPECT_TRUE(QTest::qWaitFor([&] { return completions == 2; }));
}

TEST_F(SheetsOfAWindow, aCompletionMayBeginTheNextSheet)
{
    QDialog *next = nullptr;
    begin([&] { next = begin([&] { ++completions; }); })->accept();
    ASSERT_TRUE(QTest::qWaitFor([&] { return next && next->isVisible(); }));
    next->accept();
    EXPECT_TRUE(QTest::qWaitFor([&] { return completions == 1; }));
}

TEST_F(SheetsOfAWindow, droppedSheetsGoWithoutAnAnswer)
{
    QDialog *const first = begin([&] { ++completions; });
    const QPointer<QDialog> second(begin([&] { ++completions; }));
    first->accept(); // its completion is on the way
    sheets.drop();
    EXPECT_TRUE(QTest::qWaitFor([&] { return second.isNull(); }));
    EXPECT_EQ(completions, 0);
}

TEST(Sheets, aCompletionMayEndTheLifeOfTheWindow)
{
    auto window = std::make_unique<QWidget>();
    auto sheets = std::make_unique<Sheets>(*window);
    auto *const dialog = new QDialog(window.get());
    bool isDone = false;
    sheets->begin(dialog, [&] {
        sheets.reset();
        window.reset();
        isDone = true;
    });
    dialog->accept();
    EXPECT_TRUE(QTest::qWaitFor([&] { return isDone; }));
}

TEST_F(SheetsOfAWindow, theKeyboardComesBackToWhereItWasThoughAHeaderStaysInUse)
{
    QWidget header(&window);
    QPushButton button(&header);
    header.show();
    QLineEdit field(&window);
    field.show();
    sheets.leaveUncovered(header);
    window.activateWindow();
    field.setFocus();
    ASSERT_TRUE(QTest::qWaitFor([&] { return field.hasFocus(); }));
    QDialog *const dialog = begin([] {});
    button.setFocus(); // as Qt gives it away when the sheet goes
    dialog->accept();
    ASSERT_TRUE(QTest::qWaitFor([&] { return sheets.isEmpty(); }));
    EXPECT_EQ(window.focusWidget(), &field);
}
