#include "ui/logview.h"

#include <QFontMetricsF>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

LogText::Run run(const QString &text, LogStyle style, int pointSize = 12)
{
    const auto colour =
        style == LogStyle::error ? TextAttributes::Colour::systemRed : TextAttributes::Colour::text;
    return {text, style, {u"Menlo"_s, pointSize, colour}};
}

/// How the first letter of a line is written.
QTextCharFormat formatOfLine(const LogView &view, int line)
{
    return view.document()->findBlockByNumber(line).begin().fragment().charFormat();
}

bool showsItsEnd(const LogView &view)
{
    QCoreApplication::processEvents();
    return view.verticalScrollBar()->value() == view.verticalScrollBar()->maximum();
}

} // namespace

TEST(LogView, eachStyleLooksDifferent)
{
    LogText log;
    const LogView view(log);
    log.append(run(u"plain\n"_s, LogStyle::plain));
    log.append(run(u"bold\n"_s, LogStyle::bold));
    log.append(run(u"error\n"_s, LogStyle::error));
    log.append(run(u"italic\n"_s, LogStyle::italic));
    EXPECT_EQ(view.toPlainText(), u"plain\nbold\nerror\nitalic\n"_s);

    EXPECT_LT(formatOfLine(view, 0).fontWeight(), QFont::Bold);
    EXPECT_EQ(formatOfLine(view, 1).fontWeight(), QFont::Bold);
    EXPECT_LT(formatOfLine(view, 2).fontWeight(), QFont::Bold);
    EXPECT_TRUE(formatOfLine(view, 3).fontItalic());
    EXPECT_FALSE(formatOfLine(view, 0).fontItalic());

    const QColor red = formatOfLine(view, 2).foreground().color();
    EXPECT_GT(red.red(), 2 * red.green());
    EXPECT_GT(red.red(), 2 * red.blue());
    for (const int line : {0, 1, 3}) // the others follow the palette
        EXPECT_EQ(formatOfLine(view, line).foreground().style(), Qt::NoBrush);
}

TEST(LogView, anEntryIsShownWholeOrByItsBeginningAndItsEnd)
{
    const QString note = u"\n[%1 characters are in the log and not shown here]\n"_s;
    const std::pair<QString, QString> shown[] = {
        {QString(200'000, u'x'), QString(200'000, u'x')},
        {QString(3999, u'\n'), QString(3999, u'\n')},
        {QString(100'000, u'x') + QString(900'000, u'y'),
         QString(100'000, u'x') + QString(80'000, u'y') + note.arg(800'000) + QString(20'000, u'y')},
        {QString(10'000, u'\n'), QString(3599, u'\n') + note.arg(10'000 - 3599 - 399) + QString(399, u'\n')},
    };
    for (const auto &[entry, text] : shown) {
        LogText log;
        const LogView view(log);
        log.append(run(u"14:03:22.123: "_s + entry, LogStyle::plain));
        EXPECT_TRUE(view.toPlainText() == u"14:03:22.123: "_s + text) << entry.left(1).toStdString();
    }
}

TEST(LogView, errorsStandOutOnADarkGroundToo)
{
    LogText log;
    LogView view(log);
    log.append(run(u"plain\n"_s, LogStyle::plain));
    log.append(run(u"error\n"_s, LogStyle::error));
    const QColor onLight = formatOfLine(view, 1).foreground().color();
    QPalette dark = view.palette();
    dark.setColor(QPalette::Base, Qt::black);
    view.setPalette(dark);
    EXPECT_GT(formatOfLine(view, 1).foreground().color().lightness(), onLight.lightness());
    EXPECT_EQ(formatOfLine(view, 0).foreground().style(), Qt::NoBrush);
    view.setPalette({});
    EXPECT_EQ(formatOfLine(view, 1).foreground().color(), onLight);
}

TEST(LogView, theFontHasAFixedWidth)
{
    LogText log;
    const LogView view(log);
    log.append(run(u"plain\n"_s, LogStyle::plain));
    const QFontMetricsF metrics(formatOfLine(view, 0).font());
    EXPECT_EQ(metrics.horizontalAdvance(u'i'), metrics.horizontalAdvance(u'm'));
}

TEST(LogView, aNewPointSizeShowsInTheNextLineAndOlderLinesKeepTheirs)
{
    LogText log;
    const LogView view(log);
    log.append(run(u"old\n"_s, LogStyle::plain, 12));
    log.append(run(u"new\n"_s, LogStyle::bold, 18));
    EXPECT_EQ(formatOfLine(view, 0).fontPointSize(), 12);
    EXPECT_EQ(formatOfLine(view, 1).fontPointSize(), 18);
}

TEST(LogView, whatWasLoggedBeforeTheViewIsThere)
{
    LogText log;
    log.append(run(u"early\n"_s, LogStyle::bold));
    const LogView view(log);
    EXPECT_EQ(view.toPlainText(), u"early\n"_s);
    EXPECT_EQ(formatOfLine(view, 0).fontWeight(), QFont::Bold);
}

TEST(LogView, theEndIsInSightAfterEachLine)
{
    LogText log;
    LogView view(log);
    view.resize(300, 100);
    view.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
    for (int line = 0; line < 50; ++line) {
        log.append(run(u"line\n"_s, LogStyle::plain));
        EXPECT_TRUE(showsItsEnd(view));
    }
    EXPECT_GT(view.verticalScrollBar()->value(), 0);
    view.verticalScrollBar()->setValue(0);
    log.append(run(u"one more\n"_s, LogStyle::error));
    EXPECT_TRUE(showsItsEnd(view));
}

TEST(LogView, clearingLeavesNothing)
{
    LogText log;
    const LogView view(log);
    log.append(run(u"line\n"_s, LogStyle::error));
    log.clear();
    EXPECT_EQ(view.toPlainText(), QString());
    log.append(run(u"after\n"_s, LogStyle::plain));
    EXPECT_EQ(view.toPlainText(), u"after\n"_s);
    EXPECT_EQ(formatOfLine(view, 0).foreground().style(), Qt::NoBrush);
}

TEST(LogView, nothingCanBeTypedIntoIt)
{
    LogText log;
    LogView view(log);
    log.append(run(u"line\n"_s, LogStyle::plain));
    view.show();
    QTest::keyClicks(&view, u"typed"_s);
    EXPECT_EQ(view.toPlainText(), u"line\n"_s);
}

TEST(LogView, aSelectionOfTheReaderStaysWhenALineComes)
{
    LogText log;
    LogView view(log);
    log.append(run(u"first\n"_s, LogStyle::plain));
    QTextCursor reader(view.document());
    reader.select(QTextCursor::WordUnderCursor);
    view.setTextCursor(reader);
    log.append(run(u"second\n"_s, LogStyle::plain));
    EXPECT_EQ(view.textCursor().selectedText(), u"first"_s);
}

TEST(LogView, theEndStaysInSightWhereTheViewBecomesSmaller)
{
    LogText log;
    LogView view(log);
    view.resize(300, 200);
    view.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
    for (int line = 0; line < 50; ++line)
        log.append(run(u"line\n"_s, LogStyle::plain));
    ASSERT_TRUE(showsItsEnd(view));
    view.resize(300, 90);
    EXPECT_TRUE(showsItsEnd(view));
    view.verticalScrollBar()->setValue(3);
    view.resize(300, 120);
    QCoreApplication::processEvents();
    EXPECT_EQ(view.verticalScrollBar()->value(), 3) << "who reads elsewhere goes on reading";
}
