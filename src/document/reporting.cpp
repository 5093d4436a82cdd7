#include "document/mainwincontroller.h"

#include "document/applicationinterface.h"
#include "document/logging.h"
#include "platform/invariant.h"
#include "platform/itempath.h"
#include "platform/mainqueue.h"
#include "platform/scriptcommand.h"
#include "platform/workspace.h"

using namespace Qt::StringLiterals;

namespace sealwright {

void MainWinController::changeStatus(QStringView newStatus)
{
    if (newStatus.isNull() || statusString() == newStatus)
        return;
    qCDebug(documentLogging) << uniqueID << "is" << newStatus;
    statusString.set(newStatus.toString());
    dispatchToMain([this, word = newStatus.toString()] { window().setSubtitle(word); });
}

void MainWinController::dispatchFinalAlertOrMessage(const QString &title, const QString &text,
                                                    const QString &logError)
{
    dispatchToMain([=, this] {
        if (cancelPressed())
            cancelPressed.set(false); // the person has had the report of the cancel
        else
            finalAlertOrMessage(title, text, logError);
    });
}

void MainWinController::finalAlertOrMessage(const QString &title, const QString &text,
                                            const QString &logError)
{
    if (!platform::holds(host().mainQueue.isMainThread(), "a final report is made on the main thread"))
        return dispatchToMain([=, this] { finalAlertOrMessage(title, text, logError); });
    stepList.finish(StepState::failed);
    logErrorMain(logError);
    closeLog();
    if (isScripted())
        reportToScript(title, text, logError);
    if (!suppressDialogs()) {
        changeStatus(status::interacting);
        beginSheet({title, text, {}}, [this](int) { changeStatus(status::ready); });
    }
    endWorkflow();
}

void MainWinController::reportToScript(const QString &title, const QString &text, const QString &logError)
{
    const ScriptFailure failure = appDelegate().scriptFailure(title, text, logError);
    if (const auto command = currentCommand()) {
        if (!failure.offendingText.isNull())
            command->setScriptErrorOffendingObjectDescriptor(failure.offendingText);
        command->setScriptErrorString(failure.text);
        command->setScriptErrorNumber(failure.number);
        command->resumeExecutionWithResult({});
    }
    changeStatus(status::ready);
}

void MainWinController::reportFailure(const QString &title, const QString &logError)
{
    dispatchFinalAlertOrMessage(title, seeTheLog.toString(), logError);
}

void MainWinController::beginSuccessSheet(const platform::Alert &alert)
{
    beginSheet(alert, [this](int answer) {
        if (answer == platform::alertSecondButton)
            host().workspace.revealItem(itempath::fromUrl(whereItLies(appletURL())));
        changeStatus(status::ready);
    });
}

void MainWinController::endWorkflow()
{
    stepList.finish(StepState::done);
    progressIndicator.stopAnimation();
    isBusy.set(false);
    isSubmitting.set(false);
    isPolling.set(false);
    canCancel.set(false);
    isScripted.set(false);
    suppressDialogs.set(false);
    folderClaim.set(nullptr);
}

QUrl MainWinController::scriptResult() const
{
    const QString uploaded = submitFilePath();
    return useDiskImage() && !uploaded.isNull() ? itempath::toUrl(uploaded) : appletURL();
}

void MainWinController::resumeScript(const QVariant &result)
{
    const auto command = currentCommand();
    if (isScripted() && command)
        command->resumeExecutionWithResult(result);
}

} // namespace sealwright
