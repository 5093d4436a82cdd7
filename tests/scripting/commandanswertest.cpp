// Which command gets which answer: those of the log beside a run, and commands by themselves.

#include "scripting/commandtest.h"

using namespace Qt::StringLiterals;

TEST_F(AScript, getsThePlainTextOfALogWithTimeStamps)
{
    host.document().logStringMain(u"one"_s, false);
    host.document().logStringMain(u"two"_s, true);
    command =
        std::make_shared<ScriptCommand>(QVariantMap(), [this](const ScriptReply &answer) { reply = answer; });
    command->execute([this](const ScriptCommandPtr &executing) {
        MainWinControllerScripting(host.document()).AEFetchLog(executing);
    });
    EXPECT_FALSE(reply);
    host.settle();
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->result.toString(), u"14:03:22.123: one\n14:03:22.123: two\n"_s);
}

TEST_F(AScript, thatFetchesTheLogOfARunningDocumentLosesTheCommandOfTheRun)
{
    host.tools.answer(u"xattr"_s, {.hangs = true});
    send(atItem(u"Foo.app"_s), Receiver::document);
    host.runUntil([this] { return !host.tools.callsOf(u"xattr"_s).isEmpty(); });
    std::optional<ScriptReply> log;
    const auto fetch = std::make_shared<ScriptCommand>(QVariantMap(), [&log](const ScriptReply &answer) {
        EXPECT_FALSE(log) << "answered twice";
        log = answer;
    });
    fetch->execute([this](const ScriptCommandPtr &executing) {
        MainWinControllerScripting(host.document()).AEFetchLog(executing);
    });
    host.runUntil([&log] { return log.has_value(); });
    host.document().doCancel();
    host.settle();
    EXPECT_FALSE(reply); // its answer went to the finished log command
    EXPECT_FALSE(log->isError());
}

TEST_F(AScript, thatSkipsStaplingCanSubmitAgainAsSoonAsItIsAnswered)
{
    std::optional<bool> isBusyBehind;
    const auto submit = std::make_shared<ScriptCommand>(
        QVariantMap{{argument::at, itempath::toUrl(host.item(u"Foo.app"_s))},
                    {argument::skippingStapling, true}},
        [&](const ScriptReply &) {
            host.document().dispatchToMain([&] { isBusyBehind = host.document().isBusy(); });
        });
    submit->execute([this](const ScriptCommandPtr &executing) {
        MainWinControllerScripting(host.document()).AESubmitForNotarizing(executing);
    });
    host.settle();
    ASSERT_TRUE(isBusyBehind);
    EXPECT_FALSE(*isBusyBehind) << "the end of the run would clear the flags of the next one";
    EXPECT_EQ(host.document().statusString(), u"ready"_s);
}

TEST_F(AScript, thatClearsTheLogOfARunningDocumentLosesTheCommandOfTheRun)
{
    host.tools.answer(u"xattr"_s, {.hangs = true});
    send(atItem(u"Foo.app"_s), Receiver::document);
    host.runUntil([this] { return !host.tools.callsOf(u"xattr"_s).isEmpty(); });
    int cleared = 0;
    const auto clear =
        std::make_shared<ScriptCommand>(QVariantMap(), [&cleared](const ScriptReply &) { ++cleared; });
    clear->execute([this](const ScriptCommandPtr &executing) {
        MainWinControllerScripting(host.document()).AEClearLog(executing);
    });
    host.runUntil([&cleared] { return cleared > 0; });
    host.tools.release(u"xattr"_s);
    host.settle();
    host.firePolls();
    EXPECT_TRUE(QFileInfo::exists(host.item(u"Foo - Notarized"_s))) << "the run goes on";
    EXPECT_FALSE(reply) << "its answer went to the finished command";
    EXPECT_EQ(cleared, 1);
}

TEST(ScriptCommand, canBeResumedFromAnyThreadAndIsAnsweredOnce)
{
    std::atomic<int> answers = 0;
    const auto command =
        std::make_shared<ScriptCommand>(QVariantMap(), [&answers](const ScriptReply &) { ++answers; });
    command->execute([](const ScriptCommandPtr &executing) { executing->suspendExecution(); });
    EXPECT_EQ(answers, 0);
    std::thread first([&command] { command->resumeExecutionWithResult(1); });
    std::thread second([&command] { command->resumeExecutionWithResult(2); });
    first.join();
    second.join();
    EXPECT_EQ(answers, 1);
}

TEST(ScriptCommand, isTheExecutingOneOnlyInItsHandler)
{
    EXPECT_EQ(ScriptCommand::executingCommand(), nullptr);
    const auto command = std::make_shared<ScriptCommand>(QVariantMap(), [](const ScriptReply &) {});
    command->execute(
        [](const ScriptCommandPtr &executing) { EXPECT_EQ(ScriptCommand::executingCommand(), executing); });
    EXPECT_EQ(ScriptCommand::executingCommand(), nullptr);
}
