#include "ui/logfolds.h"
#include "ui/logview.h"

#include <QTest>
#include <QTextBlock>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class FoldsOfALog : public testing::Test {
protected:
    FoldsOfALog()
    {
        view.resize(400, 300);
        append(u"Step...\n"_s, LogStyle::bold);
        append(u"news\n"_s, LogStyle::plain);
        append(u"first\n"_s + u"more\n"_s.repeated(30), LogStyle::plain);
        append(u"Error 1\n"_s, LogStyle::error);
        settle();
    }

    void append(const QString &text, LogStyle style)
    {
        const auto colour =
            style == LogStyle::error ? TextAttributes::Colour::systemRed : TextAttributes::Colour::text;
        log.append({text, style, {u"Menlo"_s, 12, colour}});
    }
    void settle()
    {
        ASSERT_TRUE(QTest::qWaitFor([this] {
            QCoreApplication::processEvents();
            return view.isSettled();
        }));
    }
    /// The lines in sight, the empty one at the end left out.
    QStringList shown() const
    {
        QStringList lines;
        for (QTextBlock block = view.document()->begin(); block.next().isValid(); block = block.next()) {
            if (block.isVisible())
                lines.append(block.text());
        }
        return lines;
    }
    void show(LogFilter filter)
    {
        view.setFilter(filter);
        settle();
    }
    void pressReturnAt(const QString &text)
    {
        view.setTextCursor(view.document()->find(text));
        QTest::keyClick(&view, Qt::Key_Return);
        settle();
    }

    LogText log;
    LogView view{log};
};

} // namespace

TEST_F(FoldsOfALog, whatAToolHasPrintedIsOneLineUntilSomebodyOpensIt)
{
    EXPECT_EQ(shown(), (QStringList{u"Step..."_s, u"news"_s, u"first"_s, u"Error 1"_s}));
    pressReturnAt(u"first"_s);
    EXPECT_EQ(shown().size(), 34);
    pressReturnAt(u"first"_s);
    EXPECT_EQ(shown().size(), 4);
}

TEST_F(FoldsOfALog, aFewLinesAreNotFolded)
{
    append(u"one\ntwo\nthree\n"_s, LogStyle::plain);
    settle();
    EXPECT_EQ(shown().last(3), (QStringList{u"one"_s, u"two"_s, u"three"_s}));
}

TEST_F(FoldsOfALog, theFilterShowsTheStepsWithTheErrorsOrTheErrorsAlone)
{
    show(LogFilter::steps);
    EXPECT_EQ(shown(), (QStringList{u"Step..."_s, u"Error 1"_s}));
    show(LogFilter::errors);
    EXPECT_EQ(shown(), QStringList{u"Error 1"_s});
    append(u"more news\n"_s, LogStyle::plain);
    append(u"Error 2\n"_s, LogStyle::error);
    settle();
    EXPECT_EQ(shown(), (QStringList{u"Error 1"_s, u"Error 2"_s}));
    show(LogFilter::all);
    EXPECT_EQ(shown().size(), 6);
}

TEST_F(FoldsOfALog, theTextItselfStaysAsItIs)
{
    const QString text = log.string();
    show(LogFilter::errors);
    EXPECT_EQ(view.toPlainText(), text);
    EXPECT_EQ(log.string(), text);
}

TEST_F(FoldsOfALog, whatIsFoundIsBroughtIntoSight)
{
    view.setTextCursor(view.document()->find(u"more"_s));
    EXPECT_FALSE(view.textCursor().block().isVisible());
    view.revealCursor();
    settle();
    EXPECT_TRUE(view.textCursor().block().isVisible());
    show(LogFilter::errors);
    view.setTextCursor(view.document()->find(u"news"_s));
    view.revealCursor();
    settle();
    EXPECT_TRUE(view.textCursor().block().isVisible());
    EXPECT_EQ(view.filter(), LogFilter::all);
}

TEST_F(FoldsOfALog, aClearedLogBeginsAnew)
{
    show(LogFilter::steps);
    log.clear();
    append(u"Next step...\n"_s, LogStyle::bold);
    append(u"news\n"_s, LogStyle::plain);
    settle();
    EXPECT_EQ(shown(), QStringList{u"Next step..."_s});
}
