// The one exit of every workflow that fails.

#include "document/documentcommands.h"
#include "document/mainwincontroller.h"
#include "platform/itempath.h"
#include "platform/scriptcommand.h"
#include "scripting/scripterrors.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString title = u"Error Signing Code"_s;
const QString seeLog = u"See the log for details."_s;

class FinalReport : public testing::Test {
protected:
    FinalReport() { host.launch(); }

    MainWinController &document() { return host.document(); }

    /// A document in the middle of a workflow.
    void work(bool isScripted, bool suppressDialogs)
    {
        for (Property<bool> *flag : {&document().isBusy, &document().isSubmitting, &document().isPolling})
            flag->set(true);
        document().canCancel.set(true);
        document().isScripted.set(isScripted);
        document().suppressDialogs.set(suppressDialogs);
        document().progressIndicator.startAnimation();
        document().changeStatus(status::submitting);
    }

    void giveCommand()
    {
        command = std::make_shared<ScriptCommand>(QVariantMap(), [this](const ScriptReply &given) {
            ++replies;
            reply = given;
            sheetsAtReply = host.window().sheets.size();
        });
        document().currentCommand.set(command);
    }

    void expectIdle()
    {
        for (const bool flag : {document().isBusy(), document().isSubmitting(), document().isPolling(),
                                document().canCancel(), document().isScripted(), document().suppressDialogs(),
                                document().progressIndicator.isAnimating()})
            EXPECT_FALSE(flag);
    }

    TestHost host;
    ScriptCommandPtr command;
    ScriptReply reply;
    int replies = 0;
    qsizetype sheetsAtReply = -1;
};

} // namespace

// Who gets what

TEST_F(FinalReport, ofAPersonsRunIsASheet)
{
    work(false, false);
    document().finalAlertOrMessage(title, seeLog, u"ditto failed"_s);
    ASSERT_EQ(host.window().sheets.size(), 1);
    EXPECT_EQ(host.window().sheet->alert.messageText, title);
    EXPECT_EQ(host.window().sheet->alert.informativeText, seeLog);
    EXPECT_TRUE(host.window().sheet->alert.buttons.isEmpty());
    EXPECT_EQ(host.log(LogStyle::error), QStringList{u"ditto failed"_s});
    EXPECT_EQ(document().statusString(), u"interacting"_s);
    expectIdle();
    host.window().answerSheet();
    EXPECT_EQ(document().statusString(), u"ready"_s);
}

TEST_F(FinalReport, ofAScriptWithoutDialogsIsAnErrorAlone)
{
    giveCommand();
    work(true, true);
    document().finalAlertOrMessage(title, seeLog, u"codesign failed"_s);
    EXPECT_EQ(replies, 1);
    EXPECT_EQ(reply.errorNumber, 1110);
    EXPECT_EQ(reply.errorText, u"Error Signing Code: codesign failed"_s);
    EXPECT_FALSE(reply.result.isValid());
    EXPECT_FALSE(reply.offendingObject.isValid());
    EXPECT_TRUE(host.window().sheets.isEmpty());
    EXPECT_EQ(document().statusString(), u"ready"_s);
    EXPECT_EQ(host.log(LogStyle::error), QStringList{u"codesign failed"_s});
    expectIdle();
}

TEST_F(FinalReport, ofAScriptWithDialogsAnswersTheScriptFirst)
{
    giveCommand();
    work(true, false);
    document().finalAlertOrMessage(title, seeLog, u"codesign failed"_s);
    EXPECT_EQ(replies, 1);
    EXPECT_EQ(reply.errorNumber, 1110);
    EXPECT_EQ(sheetsAtReply, 0) << "the script goes on before the sheet is up";
    EXPECT_EQ(host.window().sheets.size(), 1);
    EXPECT_EQ(document().statusString(), u"interacting"_s);
    expectIdle();
    host.window().answerSheet();
    EXPECT_EQ(document().statusString(), u"ready"_s);
    EXPECT_EQ(replies, 1);
}

TEST_F(FinalReport, ofAPersonsRunSetsNothingOnAStaleCommand)
{
    giveCommand();
    work(false, false);
    document().finalAlertOrMessage(title, seeLog, u"codesign failed"_s);
    EXPECT_EQ(replies, 0);
    command->resumeExecutionWithResult(true);
    EXPECT_FALSE(reply.isError());
    EXPECT_TRUE(reply.errorText.isNull());
}

TEST_F(FinalReport, ofAScriptWhoseCommandIsMissingReachesNobody)
{
    work(true, true);
    document().finalAlertOrMessage(title, seeLog, u"codesign failed"_s);
    EXPECT_EQ(document().statusString(), u"ready"_s);
    expectIdle();
}

TEST_F(FinalReport, ofATitleWithoutANumberIsSeven)
{
    giveCommand();
    work(true, true);
    document().finalAlertOrMessage(u"Cannot Copy File"_s, seeLog, u"no space"_s);
    EXPECT_EQ(reply.errorNumber, 7);
    EXPECT_EQ(reply.errorText, u"Cannot Copy File: no space"_s);
}

TEST_F(FinalReport, leavesWhatTheNextCommandsNeed)
{
    giveCommand();
    work(true, true);
    document().lastAction.set(submitAction);
    document().cancelPressed.set(true);
    document().originalAppletURL.set(itempath::toUrl(u"/items/Foo.app"_s));
    document().finalAlertOrMessage(title, seeLog, u"codesign failed"_s);
    EXPECT_EQ(document().lastAction(), 1u);
    EXPECT_TRUE(document().cancelPressed());
    EXPECT_EQ(document().currentCommand(), command);
    EXPECT_EQ(document().originalAppletURL(), itempath::toUrl(u"/items/Foo.app"_s));
}

TEST_F(FinalReport, isTheLastLineOfTheLogFile)
{
    document().loggingToFile.set(true);
    host.openLog(document(), host.item(u"log.txt"_s), u"head"_s);
    work(false, false);
    document().finalAlertOrMessage(title, seeLog, u"ditto failed"_s);
    EXPECT_EQ(document().logHandle(), nullptr);
    document().logString(u"late"_s);
    EXPECT_EQ(host.text(u"log.txt"_s), u"14:03:22.123: head\n14:03:22.123: ditto failed\n"_s);
}

TEST_F(FinalReport, sendsNoNotification)
{
    work(false, false);
    document().finalAlertOrMessage(title, seeLog, u"ditto failed"_s);
    EXPECT_TRUE(host.userNotifications.delivered.isEmpty());
}

// The script's text

TEST_F(FinalReport, tellsAScriptAnErrorOf1499CharactersWhole)
{
    giveCommand();
    work(true, true);
    const QString line(1499, u'x');
    document().finalAlertOrMessage(title, seeLog, line);
    EXPECT_EQ(reply.errorText, title + u": "_s + line);
    EXPECT_FALSE(reply.offendingObject.isValid());
}

TEST_F(FinalReport, tellsAScriptAnErrorOf1500CharactersInTheOffendingObject)
{
    giveCommand();
    work(true, true);
    const QString line(1500, u'x');
    document().finalAlertOrMessage(title, seeLog, line);
    EXPECT_EQ(reply.errorText, u"Error Signing Code: See the 'from' parameter for detailed error message."_s);
    EXPECT_EQ(reply.offendingObject.toString(), line);
    EXPECT_EQ(reply.errorNumber, 1110);
    EXPECT_EQ(host.log(LogStyle::error), QStringList{line});
}

namespace {

struct TextRow {
    const char *name;
    qsizetype logErrorSize;
};

class OwnText : public FinalReport, public testing::WithParamInterface<TextRow> { };

} // namespace

TEST_P(OwnText, isWhatAScriptIsToldWhateverTheLogSays)
{
    giveCommand();
    work(true, true);
    document().finalAlertOrMessage(u"Missing Apple ID"_s, u"You need to enter your Apple ID."_s,
                                   QString(GetParam().logErrorSize, u'x'));
    EXPECT_EQ(reply.errorText, u"Missing Apple ID: You need to enter your Apple ID."_s);
    EXPECT_FALSE(reply.offendingObject.isValid());
    EXPECT_EQ(reply.errorNumber, 1100);
}

INSTANTIATE_TEST_SUITE_P(LogErrors, OwnText,
                         testing::Values(TextRow{"empty", 0}, TextRow{"shortOne", 10},
                                         TextRow{"longOne", 3000}),
                         [](const auto &row) { return row.param.name; });

// From a worker

TEST_F(FinalReport, fromAWorkerComesOnTheMainThreadAMomentLater)
{
    work(false, false);
    onWorker(document(), [this] { document().reportFailure(title, u"ditto failed"_s); });
    host.settle();
    ASSERT_TRUE(host.window().sheet);
    EXPECT_EQ(host.window().sheet->alert.informativeText, seeLog);
    EXPECT_EQ(host.log(LogStyle::error), QStringList{u"ditto failed"_s});
}

TEST_F(FinalReport, afterACancelIsSwallowedOnceAndWithoutATrace)
{
    giveCommand();
    work(true, false);
    document().cancelPressed.set(true);
    document().dispatchFinalAlertOrMessage(title, seeLog, u"codesign was ended"_s);
    EXPECT_TRUE(document().cancelPressed()) << "it is looked at on the main thread";
    host.settle();
    EXPECT_FALSE(document().cancelPressed());
    EXPECT_TRUE(host.window().sheets.isEmpty());
    EXPECT_TRUE(host.log().isEmpty());
    EXPECT_EQ(replies, 0);
    EXPECT_TRUE(document().isBusy()) << "the cancel's own report has cleared the flags";
    document().dispatchFinalAlertOrMessage(title, seeLog, u"another failure"_s);
    host.settle();
    EXPECT_EQ(host.log(LogStyle::error), QStringList{u"another failure"_s});
    EXPECT_EQ(replies, 1);
}

TEST_F(FinalReport, looksForACancelWhenItsTurnComesAndNotWhenItIsQueued)
{
    work(false, false);
    document().dispatchFinalAlertOrMessage(title, seeLog, u"codesign was ended"_s);
    document().cancelPressed.set(true);
    host.settle();
    EXPECT_FALSE(document().cancelPressed());
    EXPECT_TRUE(host.log().isEmpty()) << "the cancel came between";

    document().cancelPressed.set(true);
    document().dispatchFinalAlertOrMessage(title, seeLog, u"ditto failed"_s);
    document().cancelPressed.set(false);
    host.settle();
    EXPECT_EQ(host.log(LogStyle::error), QStringList{u"ditto failed"_s});
}

TEST_F(FinalReport, closesTheLogFileBeforeAScriptHearsOfIt)
{
    std::optional<bool> isOpenAtTheReply;
    document().currentCommand.set(std::make_shared<ScriptCommand>(
        QVariantMap(), [&](const ScriptReply &) { isOpenAtTheReply = document().logHandle() != nullptr; }));
    work(true, true);
    document().loggingToFile.set(true);
    host.openLog(document(), host.item(u"log.txt"_s), u"head"_s);
    document().finalAlertOrMessage(title, seeLog, u"ditto failed"_s);
    EXPECT_EQ(isOpenAtTheReply, false);
    EXPECT_TRUE(host.text(u"log.txt"_s).endsWith(u": ditto failed\n"_s));
}

// A script's result

TEST_F(FinalReport, theResultOfASuccessIsTheItemOrItsDiskImage)
{
    document().appletURL.set(itempath::toUrl(u"/items/Foo.app"_s));
    document().submitFilePath.set(u"/items/Foo.dmg"_s);
    EXPECT_EQ(document().scriptResult(), itempath::toUrl(u"/items/Foo.app"_s));
    document().useDiskImage.set(true);
    EXPECT_EQ(document().scriptResult(), itempath::toUrl(u"/items/Foo.dmg"_s));
}

TEST_F(FinalReport, theResultIsTheItemWhereNothingHasBeenUploaded)
{
    document().appletURL.set(itempath::toUrl(u"/items/Foo.app"_s));
    document().useDiskImage.set(true);
    EXPECT_EQ(document().scriptResult(), itempath::toUrl(u"/items/Foo.app"_s));
}

TEST_F(FinalReport, onlyAScriptedRunAnswersItsCommandWithAResult)
{
    giveCommand();
    document().resumeScript(u"result"_s);
    EXPECT_EQ(replies, 0);
    document().isScripted.set(true);
    document().resumeScript(u"result"_s);
    EXPECT_EQ(replies, 1);
    EXPECT_EQ(reply.result, u"result"_s);
}
