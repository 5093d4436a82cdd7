// The command of a script that clears a log.

#include "platform/scriptcommand.h"
#include "scripting/MainWinController+Scripting.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(ClearLogCommand, clearsTheLogOfABusyDocumentAtOnce)
{
    TestHost host;
    host.launch();
    host.document().logStringMain(u"a line"_s, false);
    host.document().changeStatus(status::waiting);
    std::optional<ScriptReply> reply;
    const auto command = std::make_shared<ScriptCommand>(
        QVariantMap(), [&reply](const ScriptReply &answer) { reply = answer; });
    command->execute([&host](const ScriptCommandPtr &executing) {
        MainWinControllerScripting(host.document()).AEClearLog(executing);
    });
    EXPECT_FALSE(reply);
    host.settle();
    ASSERT_TRUE(reply);
    EXPECT_FALSE(reply->isError());
    EXPECT_FALSE(reply->result.isValid());
    EXPECT_TRUE(host.log().isEmpty());
}
