#include "document/servicecommands.h"

#include "document/credentialfields.h"
#include "document/mainwincontroller.h"
#include "platform/scriptcommand.h"

namespace sealwright {

std::optional<RunInputs> ServiceCommands::beginQuery(const QString &blockedText)
{
    if (!document.finishEditing(blockedText))
        return std::nullopt;
    document.changeStatus(status::fetching);
    document.isBusy.set(true);
    document.progressIndicator.startAnimation();
    if (!checkCredentialFields(document))
        return std::nullopt;
    document.clearLogUnlessKept();
    RunInputs inputs = document.runInputs();
    inputs.credentials = enteredCredentials(document);
    return inputs;
}

void ServiceCommands::finishQuery(const std::optional<QVariant> &answer)
{
    // In one turn of the main thread: a command that follows at once finds no half of it.
    document.dispatchToMain([this, answer] {
        const auto command = document.currentCommand();
        if (answer && command)
            command->resumeExecutionWithResult(*answer);
        document.changeStatus(status::ready);
        makeIdle();
    });
}

void ServiceCommands::makeIdle()
{
    document.isScripted.set(false);
    document.suppressDialogs.set(false);
    document.isBusy.set(false);
    document.progressIndicator.stopAnimation();
}

} // namespace sealwright
