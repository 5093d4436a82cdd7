#pragma once

#include "app/preferencekeys.h"
#include "document/documentcommands.h"
#include "platform/itempath.h"
#include "platform/scriptcommand.h"
#include "scripting/MainWinController+Scripting.h"
#include "scripting/NSApplication+Scripting.h"
#include "support/items.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

/// Which object gets a command.
enum class Receiver { application, document };

/// A script that has an app submitted.
class AScript : public testing::Test {
protected:
    AScript()
    {
        items::makeBundle(host.item(QStringLiteral("Foo.app")));
        host.launch();
    }

    QVariantMap atItem(const QString &name) const
    {
        return {{argument::at, itempath::toUrl(host.item(name))}};
    }

    void send(const QVariantMap &arguments, Receiver receiver)
    {
        reply.reset();
        command = std::make_shared<ScriptCommand>(arguments, [this](const ScriptReply &answer) {
            EXPECT_FALSE(reply) << "answered twice";
            reply = answer;
        });
        command->execute([this, receiver](const ScriptCommandPtr &executing) {
            if (receiver == Receiver::application)
                host.application().scripting().AESubmitForNotarizing(executing);
            else
                MainWinControllerScripting(host.document()).AESubmitForNotarizing(executing);
        });
    }

    /// Leaves the document with a command that waits for an answer, as an earlier script may have.
    void suspendStaleCommand()
    {
        command = std::make_shared<ScriptCommand>(QVariantMap(),
                                                  [this](const ScriptReply &answer) { reply = answer; });
        command->execute([](const ScriptCommandPtr &executing) { executing->suspendExecution(); });
        host.document().currentCommand.set(command);
    }

    void expectRefused(qint64 number, const QString &text = {})
    {
        ASSERT_TRUE(reply);
        EXPECT_EQ(reply->errorNumber, number);
        EXPECT_EQ(reply->errorText, text);
        EXPECT_EQ(reply->errorText.isNull(), text.isNull());
        EXPECT_FALSE(reply->result.isValid());
        EXPECT_EQ(host.application().allControllers().size(), 1);
        EXPECT_TRUE(host.tools.calls().isEmpty());
    }

    TestHost host;
    ScriptCommandPtr command;
    std::optional<ScriptReply> reply;
};
