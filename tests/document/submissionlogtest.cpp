// The window log and the log file.

#include "app/preferencekeys.h"
#include "document/mainwincontroller.h"
#include "platform/qt/systemclock.h"
#include "platform/scriptcommand.h"
#include "support/items.h"
#include "support/singlesteps.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

#include <ctime>

using namespace Qt::StringLiterals;

namespace {

const QString stamp = u"14:03:22.123: "_s;

class SubmissionLog : public testing::Test {
protected:
    SubmissionLog() { host.launch(); }

    MainWinController &document() { return host.document(); }
    QString windowLog() { return document().statusTextView.string(); }
    QString fileLog() { return host.text(u"log.txt"_s); }
    void openLog()
    {
        document().loggingToFile.set(true);
        host.openLog(document(), host.item(u"log.txt"_s), u"head"_s);
    }

    TestHost host;
};

} // namespace

// Lines

TEST_F(SubmissionLog, aLineIsTheTimeAndTheMessage)
{
    document().logString(u"hello"_s);
    host.settle();
    EXPECT_EQ(windowLog(), u"14:03:22.123: hello\n"_s);
}

TEST_F(SubmissionLog, theTimeHasAllItsDigits)
{
    host.clock.time.setTime(QTime(1, 2, 3, 4));
    document().logString(u"hello"_s);
    host.settle();
    EXPECT_EQ(windowLog(), u"01:02:03.004: hello\n"_s);
}

TEST_F(SubmissionLog, theTimeIsThatOfTheLineAndNotOfItsWayToTheWindow)
{
    openLog();
    document().logString(u"hello"_s);
    document().logBoldString(u"heading"_s);
    host.clock.time = host.clock.time.addSecs(5);
    host.settle();
    EXPECT_EQ(windowLog(), stamp + u"hello\n"_s + stamp + u"heading\n"_s);
    EXPECT_EQ(fileLog(), stamp + u"head\n"_s + windowLog());
}

TEST_F(SubmissionLog, theTimeIsThatOfThePersonsOwnZone)
{
    const QByteArray zone = qgetenv("TZ");
    qputenv("TZ", "JST-9");
    tzset();
    host.clock.time = QDateTime(QDate(2026, 11, 20), QTime(5, 6, 7, 89), Qt::UTC).toLocalTime();
    document().logString(u"hello"_s);
    host.settle();
    EXPECT_EQ(windowLog(), u"14:06:07.089: hello\n"_s);
    EXPECT_EQ(platform::SystemClock().now().offsetFromUtc(), 9 * 60 * 60);
    if (zone.isNull())
        qunsetenv("TZ");
    else
        qputenv("TZ", zone);
    tzset();
}

TEST_F(SubmissionLog, aMessageThatEndsALineGetsASecondEnd)
{
    openLog();
    document().logString(u"hello\n"_s);
    host.settle();
    EXPECT_EQ(windowLog(), stamp + u"hello\n\n"_s);
    EXPECT_EQ(fileLog(), stamp + u"head\n"_s + stamp + u"hello\n\n"_s);
}

TEST_F(SubmissionLog, anyTextComesThrough)
{
    openLog();
    const QString text = u"café 大 🍎 %1 <b> \t"_s;
    document().logString(text);
    host.settle();
    EXPECT_EQ(windowLog(), stamp + text + u'\n');
    EXPECT_TRUE(fileLog().endsWith(stamp + text + u'\n'));
}

// Styles

TEST_F(SubmissionLog, eachKindOfLineHasItsStyle)
{
    document().logString(u"plain"_s);
    document().logString(u"plain too"_s, false);
    document().logError(u"error"_s);
    document().logString(u"error too"_s, true);
    document().logBoldString(u"bold"_s);
    host.settle();
    document().logErrorMain(u"last error"_s);
    document().logStringMain(u"last plain"_s, false);
    EXPECT_EQ(host.log(LogStyle::plain), (QStringList{u"plain"_s, u"plain too"_s, u"last plain"_s}));
    EXPECT_EQ(host.log(LogStyle::error), (QStringList{u"error"_s, u"error too"_s, u"last error"_s}));
    EXPECT_EQ(host.log(LogStyle::bold), QStringList{u"bold"_s});
    EXPECT_EQ(host.log().size(), 7);
}

TEST_F(SubmissionLog, theStylesLookAsTheyShould)
{
    using enum TextAttributes::Colour;
    EXPECT_EQ(document().logAttributes(), (TextAttributes{u"Menlo"_s, 12, text}));
    EXPECT_EQ(document().errorAttributes(), (TextAttributes{u"Menlo"_s, 12, systemRed}));
    EXPECT_EQ(document().boldLogAttributes(), (TextAttributes{u"Menlo-Bold"_s, 12, text}));
    EXPECT_EQ(document().italicLogAttributes(), (TextAttributes{u"Menlo-Italic"_s, 12, text}));
}

TEST_F(SubmissionLog, anotherFontSizeShowsInTheNextLineAlone)
{
    document().logString(u"before"_s);
    host.settle();
    host.preferences.setValue(key::logFontSize, 18);
    document().logString(u"plain"_s);
    document().logError(u"error"_s);
    document().logBoldString(u"bold"_s);
    host.settle();
    QList<int> sizes;
    for (const LogText::Run &run : document().statusTextView.runs())
        sizes.append(run.attributes.pointSize);
    EXPECT_EQ(sizes, (QList<int>{12, 18, 18, 18}));
}

// The file is ahead of the window

TEST_F(SubmissionLog, theFileHasALineBeforeTheWindow)
{
    openLog();
    document().logString(u"plain"_s);
    document().logError(u"error"_s);
    document().logBoldString(u"bold"_s);
    EXPECT_EQ(fileLog(),
              stamp + u"head\n"_s + stamp + u"plain\n"_s + stamp + u"error\n"_s + stamp + u"bold\n"_s);
    EXPECT_EQ(windowLog(), u""_s);
    host.settle();
    EXPECT_EQ(host.log(), (QStringList{u"plain"_s, u"error"_s, u"bold"_s}));
}

TEST_F(SubmissionLog, aWorkersLinesKeepTheirOrder)
{
    openLog();
    onWorker(document(), [this] {
        for (int number = 0; number < 100; ++number)
            document().logString(QString::number(number));
    });
    host.settle();
    QStringList expected;
    for (int number = 0; number < 100; ++number)
        expected.append(QString::number(number));
    EXPECT_EQ(host.log(), expected);
    EXPECT_EQ(fileLog(), stamp + u"head\n"_s + stamp + expected.join(u'\n' + stamp) + u'\n');
}

TEST_F(SubmissionLog, theFinalReportsLineIsInTheWindowAtOnce)
{
    openLog();
    document().logErrorMain(u"error"_s);
    EXPECT_EQ(windowLog(), stamp + u"error\n"_s);
    EXPECT_EQ(fileLog(), stamp + u"head\n"_s + stamp + u"error\n"_s);
}

// The file alone

TEST_F(SubmissionLog, linesForTheFileNeverReachTheWindow)
{
    openLog();
    document().logToFile(u"only here"_s);
    host.settle();
    EXPECT_EQ(windowLog(), u""_s);
    EXPECT_TRUE(fileLog().endsWith(stamp + u"only here\n"_s));
}

TEST_F(SubmissionLog, linesForTheFileGoNowhereWithoutOne)
{
    document().logToFile(u"nowhere"_s);
    host.settle();
    EXPECT_EQ(windowLog(), u""_s);
}

TEST_F(SubmissionLog, aToolsReportIsOneEntryOfTheFile)
{
    openLog();
    host.tools.answer(u"xattr"_s, {.status = 2, .output = "one\ntwo\n"});
    onWorker(document(),
             [this] { (void)SingleSteps(document()).tools.runAndLog(u"/usr/bin/xattr"_s, {u"-c"_s}); });
    host.settle();
    EXPECT_EQ(
        fileLog(),
        stamp + u"head\n"_s + stamp
            + u"Result for /usr/bin/xattr -c\nTermination status: 2\nStandardOut: one\ntwo\n\nStandardError: (null)\n"_s);
    EXPECT_EQ(windowLog(), u""_s);
}

// Opening and closing

TEST_F(SubmissionLog, aLineAfterTheFilesClosingReachesOnlyTheWindow)
{
    openLog();
    document().closeLog();
    EXPECT_EQ(document().logHandle(), nullptr);
    document().logString(u"late"_s);
    host.settle();
    EXPECT_EQ(fileLog(), stamp + u"head\n"_s);
    EXPECT_EQ(host.log(), QStringList{u"late"_s});
}

TEST_F(SubmissionLog, aWriterThatStillHoldsTheClosedFileWritesNothing)
{
    openLog();
    const auto handle = document().logHandle();
    document().closeLog();
    handle->write("late");
    EXPECT_EQ(fileLog(), stamp + u"head\n"_s);
}

TEST_F(SubmissionLog, openingClosesTheFileThatWasOpen)
{
    openLog();
    host.openLog(document(), host.item(u"second.txt"_s), u"second head"_s);
    document().logString(u"hello"_s);
    EXPECT_EQ(fileLog(), stamp + u"head\n"_s);
    EXPECT_EQ(host.text(u"second.txt"_s), stamp + u"second head\n"_s + stamp + u"hello\n"_s);
}

TEST_F(SubmissionLog, openingClosesTheFileThatWasOpenEvenWhereNoneIsWanted)
{
    openLog();
    document().loggingToFile.set(false);
    host.openLog(document(), host.item(u"second.txt"_s), u"second head"_s);
    EXPECT_EQ(document().logHandle(), nullptr);
    EXPECT_EQ(host.listing(), QStringList{u"log.txt"_s});
}

TEST_F(SubmissionLog, openingAddsToAFileThatIsThere)
{
    items::makeFile(host.item(u"log.txt"_s), "earlier\n");
    openLog();
    EXPECT_EQ(fileLog(), u"earlier\n"_s + stamp + u"head\n"_s);
}

TEST_F(SubmissionLog, aFileThatCannotBeMadeIsNoError)
{
    host.files.failure = [](const QString &operation, const QString &) {
        return operation == "createFile"_L1 ? u"Read-only file system"_s : QString();
    };
    openLog();
    EXPECT_EQ(document().logHandle(), nullptr);
    document().logString(u"hello"_s);
    host.settle();
    EXPECT_EQ(host.log(), QStringList{u"hello"_s});
}

TEST_F(SubmissionLog, aFullDiskCostsTheFileAndNotTheWindow)
{
    document().loggingToFile.set(true);
    host.openLog(document(), u"/dev/full"_s, u"head"_s);
    ASSERT_NE(document().logHandle(), nullptr);
    document().logString(u"hello"_s);
    document().logErrorMain(u"error"_s);
    host.settle();
    EXPECT_EQ(host.log(), (QStringList{u"error"_s, u"hello"_s}));
}

// Whole submissions

TEST_F(SubmissionLog, aSubmissionWithoutALogFileHasTheSameWindowLog)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    items::makeBundle(host.item(u"Bar.app"_s));
    host.submitToTheEnd(host.item(u"Foo.app"_s));
    host.window().answerSheet();
    const QString withFile = windowLog();
    EXPECT_TRUE(withFile.contains(u"Stapling succeeded."_s));
    host.preferences.setValue(key::detailedLogToFile, false);
    host.submitToTheEnd(host.item(u"Bar.app"_s));
    EXPECT_EQ(windowLog(), QString(withFile).replace(u"Foo"_s, u"Bar"_s));
    EXPECT_FALSE(host.listing(u"Bar - Notarized"_s).contains(u"Submission Log.txt"_s));
    EXPECT_TRUE(host.listing(u"Foo - Notarized"_s).contains(u"Submission Log.txt"_s));
}

TEST_F(SubmissionLog, aSubmissionClearsTheWindowUnlessItIsAskedNotTo)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    items::makeBundle(host.item(u"Bar.app"_s));
    document().logString(u"from before"_s);
    host.settle();
    host.submitToTheEnd(host.item(u"Foo.app"_s));
    host.window().answerSheet();
    EXPECT_FALSE(windowLog().contains(u"from before"_s));
    const QString first = windowLog();
    document().dontClearCheckbox.setState(1);
    host.submitToTheEnd(host.item(u"Bar.app"_s));
    EXPECT_TRUE(windowLog().startsWith(first));
    EXPECT_GT(windowLog().size(), first.size());
}

// For scripts

TEST_F(SubmissionLog, aScriptGetsThePlainTextWithItsTimes)
{
    document().logBoldString(u"heading"_s);
    document().logError(u"error"_s);
    host.settle();
    ScriptReply reply;
    document().currentCommand.set(std::make_shared<ScriptCommand>(
        QVariantMap(), [&reply](const ScriptReply &given) { reply = given; }));
    document().contentsOfLog();
    EXPECT_EQ(reply.result.toString(), u"14:03:22.123: heading\n14:03:22.123: error\n"_s);
    EXPECT_FALSE(reply.isError());
}

TEST_F(SubmissionLog, withoutAScriptNobodyGetsTheText)
{
    document().contentsOfLog();
    EXPECT_EQ(document().currentCommand(), nullptr);
}
