// Cancelling, at every stage of a submission.

#include "document/documentcommands.h"
#include "document/mainwincontroller.h"
#include "platform/itempath.h"
#include "platform/scriptcommand.h"
#include "support/steptest.h"

using namespace Qt::StringLiterals;

namespace {

const QString beforePolling = u"Uploading of the app may not have been completed."_s;
const QString whilePolling =
    u"The app has been uploaded, but notarizing has not been confirmed. Once you get a confirmation email on your Apple ID email account, you can staple the app using the Staple Only button."_s;

class Cancel : public StepTest {
protected:
    Cancel() { items::makeBundle(host.item(u"Foo.app"_s)); }

    void launchWithVersion(const QByteArray &version)
    {
        host.tools.answer(u"altool-h"_s,
                          {.output = "Copyright (c) 2009, Apple Inc. Version " + version + "\n"});
        host.launch();
        isLaunched = true;
    }

    /// Submits the item and returns when the tool has started, which then hangs.
    void submitUpTo(const QString &tool, ToolAnswer answer = {})
    {
        answer.hangs = true;
        host.tools.answer(tool, answer);
        commands().submit.doSubmit();
        host.window().choose(itempath::toUrl(host.item(u"Foo.app"_s)));
        host.runUntil([this, tool] { return host.tools.order().contains(tool); });
    }

    void expectOneReport(const QString &text)
    {
        host.settle();
        expectReport(u"Process Cancelled"_s, text, text);
        EXPECT_FALSE(document().isBusy());
        EXPECT_FALSE(document().isSubmitting());
        EXPECT_FALSE(document().isPolling());
        EXPECT_FALSE(document().canCancel());
        EXPECT_FALSE(document().progressIndicator.isAnimating());
    }
};

} // namespace

// While polling

TEST_F(Cancel, whilePollingWithNoToolRunningStopsTheTimer)
{
    launchWithVersion("4.0.1");
    host.submit(host.item(u"Foo.app"_s));
    ASSERT_EQ(host.timers.armed().size(), 1);
    ASSERT_TRUE(document().isPolling());
    document().doCancel();
    EXPECT_TRUE(host.timers.armed().isEmpty());
    EXPECT_EQ(document().staplingTimer(), nullptr);
    EXPECT_TRUE(document().taskRunner()->cancelledOwners().isEmpty()) << "nothing was running";
    EXPECT_TRUE(document().cancelPressed());
    expectOneReport(whilePolling);
    EXPECT_TRUE(host.log(LogStyle::bold).contains(u"Process cancelled..."_s));
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Submitted"_s, u"Foo.app"_s}));
}

TEST_F(Cancel, whileAPollRunsEndsTheToolAndReportsOnce)
{
    launchWithVersion("4.0.1");
    host.submit(host.item(u"Foo.app"_s));
    host.tools.answer(u"altool--notarization-info"_s, {.hangs = true});
    host.timers.fireNext();
    host.runUntil([this] { return host.tools.order().contains(u"altool--notarization-info"_s); });
    document().doCancel();
    expectOneReport(whilePolling);
    EXPECT_FALSE(document().cancelPressed()) << "the ended poll's report has been swallowed";
    EXPECT_TRUE(host.timers.armed().isEmpty());
    host.tools.answer(u"altool--notarization-info"_s, {.output = FakeTools::infoReport(u"success"_s)});
    expectUsableFor(u"Foo.app"_s);
}

TEST_F(Cancel, whilePollingGoesToTheSharedRunnerOfOrdinaryTools)
{
    launchWithVersion("3.0.1");
    host.submit(host.item(u"Foo.app"_s));
    host.tools.answer(u"altool--notarization-info"_s, {.hangs = true});
    host.timers.fireNext();
    host.runUntil([this] { return host.tools.order().contains(u"altool--notarization-info"_s); });
    document().doCancel();
    expectOneReport(whilePolling);
    EXPECT_EQ(host.application().taskMaster()->currentTask(), nullptr);
}

// Before that

TEST_F(Cancel, duringAnUploadEndsTheToolAndReportsOnce)
{
    launchWithVersion("4.0.1");
    const QByteArray original = items::fingerprint(host.item(u"Foo.app"_s));
    submitUpTo(u"altool--notarize-app"_s);
    document().doCancel();
    expectOneReport(beforePolling);
    EXPECT_FALSE(document().cancelPressed()) << "the worker's report has been swallowed";
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Failed"_s, u"Foo.app"_s}));
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
    host.tools.answer(u"altool--notarize-app"_s, {.output = FakeTools::uploadReply()});
    expectUsableFor(u"Foo.app"_s);
}

TEST_F(Cancel, duringAnUploadEndsItOnTheSharedRunnerOfUploads)
{
    launchWithVersion("3.0.1");
    submitUpTo(u"altool--notarize-app"_s);
    document().doCancel();
    expectOneReport(beforePolling);
    EXPECT_FALSE(document().cancelPressed());
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Failed"_s, u"Foo.app"_s}));
}

TEST_F(Cancel, duringSigningEndsTheToolOfADocumentsOwnRunner)
{
    launchWithVersion("4.0.1");
    submitUpTo(u"codesign"_s);
    document().doCancel();
    expectOneReport(beforePolling);
    EXPECT_FALSE(document().cancelPressed());
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Failed"_s, u"Foo.app"_s}));
}

TEST_F(Cancel, duringSigningOnTheSharedRunnerLetsTheToolEndAndStopsAfterIt)
{
    launchWithVersion("3.0.1");
    submitUpTo(u"codesign"_s);
    document().doCancel();
    EXPECT_NE(host.application().taskMaster()->currentTask(), nullptr);
    EXPECT_TRUE(host.application().taskMaster()->cancelledOwners().isEmpty());
    EXPECT_TRUE(host.application().uploadTaskMaster()->cancelledOwners().isEmpty());
    host.tools.release(u"codesign"_s);
    expectOneReport(beforePolling);
    EXPECT_EQ(host.tools.order().last(), u"codesign"_s) << "nothing came after it";
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Working"_s, u"Foo.app"_s})) << "no rename";
    EXPECT_TRUE(document().cancelPressed()) << "no report came to swallow";
}

TEST_F(Cancel, beforeAForeignUploadEndsSkipsTheOwnUpload)
{
    launchWithVersion("3.0.1");
    submitUpTo(u"altool--notarize-app"_s);
    MainWinController &uploading = document();
    host.application().newDocument(0);
    document().doCancel();
    EXPECT_EQ(host.application().uploadTaskMaster()->cancelledOwners(), QStringList{document().uniqueID});
    EXPECT_NE(host.application().uploadTaskMaster()->currentTask(), nullptr);
    EXPECT_FALSE(uploading.cancelPressed());
    host.application().uploadTaskMaster()->terminateTaskFor(uploading.uniqueID);
    host.settle();
}

TEST_F(Cancel, thatWasNeverSwallowedStopsTheNextWorkflowAtItsFirstCheck)
{
    launchWithVersion("4.0.1");
    host.submit(host.item(u"Foo.app"_s));
    document().doCancel();
    host.window().answerSheet();
    host.tools.forgetCalls();
    host.submit(host.item(u"Foo.app"_s));
    EXPECT_EQ(host.tools.order(), QStringList{u"altool--notarization-history"_s});
    EXPECT_FALSE(host.window().sheet) << "it makes no report";
    EXPECT_TRUE(document().isBusy()) << "its flags stay up";
    EXPECT_TRUE(document().cancelPressed());
}

TEST_F(Cancel, whileIdleReportsAllTheSame)
{
    launchWithVersion("4.0.1");
    document().doCancel();
    expectOneReport(beforePolling);
    EXPECT_TRUE(document().taskRunner()->cancelledOwners().isEmpty());
}

TEST_F(Cancel, tellsAScriptItsNumberAndText)
{
    launchWithVersion("4.0.1");
    ScriptReply reply;
    document().currentCommand.set(std::make_shared<ScriptCommand>(
        QVariantMap(), [&reply](const ScriptReply &given) { reply = given; }));
    document().suppressDialogs.set(true);
    commands().submit.scriptedSubmit(itempath::toUrl(host.item(u"Foo.app"_s)));
    host.settle();
    document().doCancel();
    EXPECT_EQ(reply.errorNumber, 1118);
    EXPECT_EQ(reply.errorText, u"Process Cancelled: "_s + whilePolling);
    EXPECT_TRUE(host.window().sheets.isEmpty());
    EXPECT_EQ(document().statusString(), u"ready"_s);
}

TEST_F(Cancel, closesTheLogFileAfterItsLine)
{
    launchWithVersion("4.0.1");
    host.submit(host.item(u"Foo.app"_s));
    document().doCancel();
    EXPECT_EQ(document().logHandle(), nullptr);
    EXPECT_TRUE(
        host.text(u"Foo - Submitted/Submission Log.txt"_s)
            .endsWith(u"14:03:22.123: Process cancelled...\n14:03:22.123: "_s + whilePolling + u'\n'));
}

// Clearing

TEST_F(Cancel, clearingTheLogEmptiesTheWindowAndAnswersTheScript)
{
    launchWithVersion("4.0.1");
    document().logString(u"hello"_s);
    host.settle();
    int replies = 0;
    ScriptReply reply;
    document().currentCommand.set(
        std::make_shared<ScriptCommand>(QVariantMap(), [&](const ScriptReply &given) {
            ++replies;
            reply = given;
        }));
    document().doClearStatus();
    EXPECT_EQ(document().statusTextView.string(), u""_s);
    EXPECT_EQ(replies, 1);
    EXPECT_FALSE(reply.result.isValid());
    EXPECT_FALSE(reply.isError());
    document().doClearStatus();
    EXPECT_EQ(replies, 1);
}

TEST_F(Cancel, clearingTheLogWithoutAScriptLeavesTheFile)
{
    launchWithVersion("4.0.1");
    document().loggingToFile.set(true);
    host.openLog(document(), host.item(u"log.txt"_s), u"head"_s);
    document().logString(u"hello"_s);
    host.settle();
    document().doClearStatus();
    EXPECT_EQ(document().statusTextView.string(), u""_s);
    EXPECT_EQ(host.text(u"log.txt"_s), u"14:03:22.123: head\n14:03:22.123: hello\n"_s);
}

namespace {

/// A timer that notes what a document says at the moment when it is called off.
class WitnessTimer : public platform::Timer {
public:
    explicit WitnessTimer(const MainWinController &watched)
        : m_watched(watched)
    {
    }
    void invalidate() override { isCancelledAlready = m_watched.cancelPressed(); }

    std::optional<bool> isCancelledAlready;

private:
    const MainWinController &m_watched;
};

} // namespace

TEST_F(Cancel, isSetBeforeAnythingIsEnded)
{
    launchWithVersion("4.0.1");
    const auto timer = std::make_shared<WitnessTimer>(document());
    document().staplingTimer.set(timer);
    document().doCancel();
    EXPECT_EQ(timer->isCancelledAlready, true);
    EXPECT_EQ(document().staplingTimer(), nullptr);
}
