#include "scripting/MainWinController+Scripting.h"

#include "document/documentextensions.h"
#include "document/mainwincontroller.h"
#include "scripting/commandchecks.h"

using namespace Qt::StringLiterals;

void MainWinControllerScripting::AESubmitForNotarizing(const ScriptCommandPtr &command)
{
    if (!commandchecks::submittableItem(document.host().files, command) || !checkStatusIsReady())
        return;
    startSubmission(command);
}

void MainWinControllerScripting::startSubmission(const ScriptCommandPtr &command)
{
    const QVariantMap &arguments = command->evaluatedArguments();
    document.suppressDialogs.set(!arguments.value(argument::showingDialogs).toBool());
    document.currentCommand.set(command);
    command->suspendExecution();
    const QUrl url = arguments.value(argument::at).toUrl();
    document.dispatchToMain([this, url] { document.steps().submit.scriptedSubmit(url); });
}

void MainWinControllerScripting::AEFetchLog(const ScriptCommandPtr &command)
{
    document.currentCommand.set(command);
    command->suspendExecution();
    document.dispatchToMain([this] { document.contentsOfLog(); });
}

bool MainWinControllerScripting::checkStatusIsReady() const
{
    return commandchecks::isReady(document.statusString(), u"Document"_s);
}
