#pragma once

#include "document/documentcommands.h"
#include "document/mainwincontroller.h"
#include "platform/scriptcommand.h"
#include "run/step.h"
#include "scripting/scripterrors.h"
#include "support/core.h"
#include "support/items.h"
#include "support/singlesteps.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

/// One step of a workflow by itself, on a document whose item has been copied into its working folder.
class StepTest : public testing::Test {
protected:
    MainWinController &document() { return host.document(); }
    DocumentCommands &commands() { return document().commands(); }
    SingleSteps steps() { return SingleSteps(document()); }

    /// Launches, unless that has been done, and makes the working copy of the item of that name.
    void makeWorkingCopy(const QString &name);
    /// Runs the step on a worker, lets all that it queued happen and answers with its result.
    [[nodiscard]] bool run(const std::function<bool()> &step);

    /// Lets a script's command that asks for dialogs or none wait on the document, calls the entry and lets
    /// all of it happen; the answer is in `scriptReply`.
    void runByScript(const std::function<void()> &entry, bool showingDialogs = false);

    /// Path of the working copy, wherever its folder has gone.
    QString copy();
    /// The one line in the error style of the window log, with "#" in place of a response's number.
    QString errorLine();
    /// Asserts that the step has reported this, and nothing else.
    void expectReport(const QString &title, const QString &logLine,
                      const QString &text = seeTheLog.toString());
    void expectNoReport();
    /// Asserts that the document takes another submission of the item and carries it to its end. The tools
    /// must answer well again.
    void expectUsableFor(const QString &name);

    TestHost host;
    std::optional<ScriptReply> scriptReply;
    bool isLaunched = false;
};

/// The text with "#" in place of the number behind "Error ", if that is none that a tool could return.
[[nodiscard]] QString withoutReference(const QString &line);
