#include "scripting/MainWinController+Scripting.h"

#include "document/documentcommands.h"
#include "document/mainwincontroller.h"
#include "platform/applicationhost.h"
#include "scripting/commandchecks.h"
#include "scripting/examining.h"
#include "scripting/scripterrors.h"

using namespace Qt::StringLiterals;

namespace sealwright {

// Commands

void MainWinControllerScripting::AESubmitForNotarizing(const ScriptCommandPtr &command)
{
    if (commandchecks::submittableItem(document.host().files, command) && checkStatusIsReady())
        startSubmission(command);
}

void MainWinControllerScripting::AEStapleOnly(const ScriptCommandPtr &command)
{
    if (commandchecks::submittableItem(document.host().files, command) && checkStatusIsReady())
        startStapling(command);
}

void MainWinControllerScripting::AESignOnly(const ScriptCommandPtr &command)
{
    if (commandchecks::signableItem(document.host().files, command) && checkStatusIsReady())
        startSigning(command);
}

void MainWinControllerScripting::AEFetchHistory(const ScriptCommandPtr &command)
{
    if (checkStatusIsReady())
        startHistory(command);
}

void MainWinControllerScripting::AEPrepareForNotarizing(const ScriptCommandPtr &command)
{
    if (commandchecks::submittableItem(document.host().files, command) && checkStatusIsReady())
        prepare(command, commandchecks::knownIdentity(command, document.identitiesPopup.itemTitles()));
}

void MainWinControllerScripting::AEExamine(const ScriptCommandPtr &command)
{
    examining::answerExamination(command, document.appDelegate(), examining::choicesOf(document));
}

void MainWinControllerScripting::AEFetchLog(const ScriptCommandPtr &command)
{
    suspend(command, [&document = document] { document.contentsOfLog(); });
}

void MainWinControllerScripting::AEClearLog(const ScriptCommandPtr &command)
{
    suspend(command, [&document = document] { document.doClearStatus(); });
}

bool MainWinControllerScripting::checkStatusIsReady() const
{
    return commandchecks::isReady(document.statusString(), u"Document"_s);
}

// Work

void MainWinControllerScripting::startSubmission(const ScriptCommandPtr &command)
{
    suspendWithItem(
        command, [&document = document](const QUrl &url) { document.commands().submit.scriptedSubmit(url); });
}

void MainWinControllerScripting::startStapling(const ScriptCommandPtr &command)
{
    suspendWithItem(command, [&document = document](const QUrl &url) {
        document.commands().stapleOnly.scriptedStapleOnly(url);
    });
}

void MainWinControllerScripting::startResuming(const ScriptCommandPtr &command, const WaitRecord &wait)
{
    document.suppressDialogs.set(!command->evaluatedArguments().value(argument::showingDialogs).toBool());
    suspendWorkflow(command,
                    [&document = document, wait] { document.commands().resume.scriptedResume(wait); });
}

void MainWinControllerScripting::startSigning(const ScriptCommandPtr &command)
{
    suspendWithItem(command, [&document = document](const QUrl &url) {
        document.commands().signOnly.scriptedSignOnly(url);
    });
}

void MainWinControllerScripting::startHistory(const ScriptCommandPtr &command)
{
    document.suppressDialogs.set(true); // whatever the command says of dialogs
    const quint64 page = command->evaluatedArguments().value(argument::pageToFetch).toULongLong();
    suspendWorkflow(command,
                    [&document = document, page] { document.commands().history.fetchHistory(page); });
}

void MainWinControllerScripting::prepare(const ScriptCommandPtr &command, const QString &identity)
{
    document.commands().submit.prepareForDirectSubmit(
        command->evaluatedArguments().value(argument::at).toUrl(), identity);
    document.host().application.activate();
}

void MainWinControllerScripting::suspendWithItem(const ScriptCommandPtr &command,
                                                 std::function<void(const QUrl &)> work)
{
    const QVariantMap &arguments = command->evaluatedArguments();
    document.suppressDialogs.set(!arguments.value(argument::showingDialogs).toBool());
    suspendWorkflow(command,
                    [work = std::move(work), url = arguments.value(argument::at).toUrl()] { work(url); });
}

void MainWinControllerScripting::suspendWorkflow(const ScriptCommandPtr &command, std::function<void()> work)
{
    suspend(command, [&document = document, command, work = std::move(work)] {
        if (document.statusString() == status::ready)
            return work();
        // A person has been quicker. The run that goes on now knows of no script.
        command->setScriptErrorNumber(scriptErrorBusy);
        command->setScriptErrorString(commandchecks::busyText(u"Document"_s, document.statusString()));
        command->resumeExecutionWithResult({});
    });
}

void MainWinControllerScripting::suspend(const ScriptCommandPtr &command, std::function<void()> work)
{
    document.currentCommand.set(command);
    command->suspendExecution();
    document.dispatchToMain(std::move(work));
}

} // namespace sealwright
