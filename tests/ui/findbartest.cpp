#include "ui/findbar.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class FindBarTest : public testing::Test {
protected:
    FindBarTest()
    {
        auto *const rows = new QVBoxLayout(&window);
        rows->addWidget(&text);
        rows->addWidget(&bar);
        text.setPlainText(u"one error\ntwo Errors\nthree"_s);
        text.moveCursor(QTextCursor::Start);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    QLineEdit &words() { return *bar.findChild<QLineEdit *>(u"findField"_s); }
    QString result() { return bar.findChild<QLabel *>(u"findResult"_s)->text(); }
    int place() { return text.textCursor().selectionStart(); }
    QString selected() { return text.textCursor().selectedText(); }
    void type(const QString &typed)
    {
        bar.open();
        QTest::keyClicks(&words(), typed);
    }

    QWidget window;
    QPlainTextEdit text{&window};
    FindBar bar{text, &window};
};

} // namespace

TEST_F(FindBarTest, isHiddenUntilItIsAskedForAndThenHasTheFocus)
{
    EXPECT_FALSE(bar.isVisible());
    bar.open();
    EXPECT_TRUE(bar.isVisible());
    EXPECT_TRUE(words().hasFocus());
}

TEST_F(FindBarTest, findsWhileTypingWithoutRegardToTheCase)
{
    type(u"ERR"_s);
    EXPECT_EQ(selected(), u"err"_s);
    EXPECT_EQ(place(), 4);
    QTest::keyClicks(&words(), u"ors"_s);
    EXPECT_EQ(selected(), u"Errors"_s) << "the longer word fits another place";
    EXPECT_EQ(place(), 14);
}

TEST_F(FindBarTest, staysAtAPlaceThatTheLongerWordStillFits)
{
    type(u"e"_s);
    type(u"error"_s);
    EXPECT_EQ(place(), 4);
}

TEST_F(FindBarTest, goesOnAndRoundTheEnd)
{
    type(u"error"_s);
    QTest::keyClick(&words(), Qt::Key_Return);
    EXPECT_EQ(place(), 14);
    QTest::mouseClick(bar.findChild<QToolButton *>(u"findNextButton"_s), Qt::LeftButton);
    EXPECT_EQ(place(), 4) << "after the last place comes the first";
    QTest::mouseClick(bar.findChild<QToolButton *>(u"findPreviousButton"_s), Qt::LeftButton);
    EXPECT_EQ(place(), 14) << "and the other way round";
}

TEST_F(FindBarTest, saysWhenThereIsNothingAndLeavesTheSelection)
{
    type(u"one"_s);
    EXPECT_TRUE(result().startsWith(u"1 of "_s)) << result().toStdString();
    type(u"nowhere"_s);
    EXPECT_EQ(result(), u"Not found"_s);
    words().clear();
    EXPECT_EQ(result(), QString());
}

TEST_F(FindBarTest, comesUpWithWhatIsSelected)
{
    text.moveCursor(QTextCursor::EndOfWord, QTextCursor::KeepAnchor);
    bar.open();
    EXPECT_EQ(words().text(), u"one"_s);
    EXPECT_EQ(words().selectedText(), u"one"_s) << "typing replaces it";
}

TEST_F(FindBarTest, doesNotTakeALongerSelectionForWords)
{
    text.selectAll();
    bar.open();
    EXPECT_EQ(words().text(), QString());
}

TEST_F(FindBarTest, comesUpWhenThereIsNothingToGoOnWith)
{
    bar.findNext();
    EXPECT_TRUE(bar.isVisible());
}

TEST_F(FindBarTest, escapePutsItAwayAndLeadsToTheText)
{
    type(u"error"_s);
    QTest::keyClick(&words(), Qt::Key_Escape);
    EXPECT_FALSE(bar.isVisible());
    EXPECT_TRUE(text.hasFocus());
    EXPECT_EQ(selected(), u"error"_s) << "ready to be copied";
}
