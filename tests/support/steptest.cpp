#include "support/steptest.h"
#include "platform/scriptcommand.h"

#include "platform/itempath.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

QString withoutReference(const QString &line)
{
    constexpr qint64 largestStatus = 11000;
    static const QRegularExpression head(u"^Error (-?[0-9]+) "_s);
    const auto match = head.match(line);
    if (!match.hasMatch() || std::abs(match.captured(1).toLongLong()) <= largestStatus)
        return line;
    return u"Error # "_s + line.mid(match.capturedLength());
}

void StepTest::makeWorkingCopy(const QString &name)
{
    if (!std::exchange(isLaunched, true))
        host.launch();
    document().originalAppletURL.set(itempath::toUrl(host.item(name)));
    document().originalFileName.set(name);
    document().loggingToFile.set(true);
    document().submitFilePath.set({});
    ASSERT_TRUE(run([this] { return steps().folder.create(); }));
}

bool StepTest::run(const std::function<bool()> &step)
{
    bool result = false;
    onWorker(document(), [&] { result = step(); });
    host.settle();
    return result;
}

void StepTest::runByScript(const std::function<void()> &entry, bool showingDialogs)
{
    const auto command = std::make_shared<ScriptCommand>(
        QVariantMap(), [this](const ScriptReply &answer) { scriptReply = answer; });
    command->execute([&](const ScriptCommandPtr &executing) {
        document().suppressDialogs.set(!showingDialogs);
        document().currentCommand.set(executing);
        executing->suspendExecution();
    });
    entry();
    host.settle();
}

QString StepTest::copy()
{
    return itempath::fromUrl(document().appletURL());
}

QString StepTest::errorLine()
{
    const QStringList lines = host.log(LogStyle::error);
    return lines.size() == 1 ? withoutReference(lines.first()) : lines.join(u" / "_s);
}

void StepTest::expectReport(const QString &title, const QString &logLine, const QString &text)
{
    EXPECT_EQ(errorLine(), logLine);
    ASSERT_EQ(host.window().sheets.size(), 1);
    EXPECT_EQ(host.window().sheets.first().messageText, title);
    EXPECT_EQ(host.window().sheets.first().informativeText, text);
}

void StepTest::expectNoReport()
{
    EXPECT_EQ(host.log(LogStyle::error), QStringList());
    EXPECT_TRUE(host.window().sheets.isEmpty());
}

void StepTest::expectUsableFor(const QString &name)
{
    if (host.window().sheet)
        host.window().answerSheet();
    host.submitToTheEnd(host.item(name));
    ASSERT_TRUE(host.window().sheet);
    EXPECT_EQ(host.window().sheet->alert.messageText, u"Stapling Successful"_s);
    EXPECT_EQ(document().statusString(), u"interacting"_s);
    EXPECT_FALSE(document().isBusy());
}
