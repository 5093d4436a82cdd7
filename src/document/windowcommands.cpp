#include "document/mainwincontroller.h"

#include "document/applicationinterface.h"
#include "platform/applicationhost.h"
#include "platform/scriptcommand.h"
#include "run/waitrecords.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

const QString processCancelled = u"Process Cancelled"_s;
const QString cancelledWhilePolling =
    u"The app has been uploaded, but notarizing has not been confirmed. Once you get a confirmation email on your Apple ID email account, you can staple the app using the Staple Only button."_s;
const QString cancelledBeforePolling = u"Uploading of the app may not have been completed."_s;

void invalidate(Property<std::shared_ptr<platform::Timer>> &timer)
{
    if (const auto armed = timer())
        armed->invalidate();
}

bool needsIdleDocument(Action action)
{
    switch (action) {
    case Action::doInfoForUUIDOnClipboard:
    case Action::doInfoForUUIDOfLastUpload:
    case Action::doInfoForUUIDInFile:
    case Action::doFetchHistory:
    case Action::doSubmit:
    case Action::doStapleOnly:
    case Action::doGoOnWaiting:
    case Action::doSignOnly:
    case Action::doSubmitAgain:
    case Action::doStapleAgain:
    case Action::doSignAgain:
    case Action::doSetDocumentDefaults:
    case Action::doListProviderShortnames:
        return true;
    default:
        return false;
    }
}

} // namespace

void MainWinController::doCancel()
{
    cancelPressed.set(true);
    stepList.finish(StepState::cancelled);
    invalidate(staplingTimer);
    staplingTimer.set(nullptr);
    logBoldString(u"Process cancelled..."_s);
    QString text;
    if (isPolling()) {
        WaitRecords(host()).remove(awaitedRequest()); // nobody waits for it any more
        taskRunner()->terminateTaskFor(uniqueID);
        text = cancelledWhilePolling;
    } else {
        uploadTaskRunner()->terminateTaskFor(uniqueID);
        text = cancelledBeforePolling;
    }
    finalAlertOrMessage(processCancelled, text, text);
}

void MainWinController::doClearStatus()
{
    statusTextView.clear();
    if (const auto command = currentCommand())
        command->resumeExecutionWithResult({});
}

void MainWinController::doExtraEntitlements()
{
    changeStatus(status::interacting);
    const platform::OpenPanel panel{
        .message = u"Choose an entitlements property list file"_s,
        .allowedFileTypes = {u"plist"_s},
        .canChooseFiles = true,
        .canChooseDirectories = false,
        .shouldEnable = {},
    };
    window().beginOpenPanel(panel, [this, held = shared_from_this()](const QUrl &chosen) {
        extraEntitlementsURL.set(chosen);
        extraEntitlementsButton.setState(chosen.isEmpty() ? 0 : 1);
        changeStatus(status::ready);
    });
}

void MainWinController::doPrint()
{
    window().printLog();
}

void MainWinController::doRunPageLayout()
{
    host().application.runPageLayout();
}

void MainWinController::doCloseDocument(CloseSender sender)
{
    if (sender == CloseSender::person)
        return window().performClose();
    dispatchToMain([this] {
        // An earlier close may have come first.
        if (windowController(m_appDelegate, &window()))
            window().performClose();
    });
}

void MainWinController::doCloseWindow()
{
    for (platform::Window *tab : window().tabbedWindows())
        tab->performClose();
}

bool MainWinController::validateMenuItem(Action action) const
{
    if (!needsIdleDocument(action))
        return true;
    const bool isDirectSubmit = stapleOnlyButton.action() != Action::doStapleOnly;
    return !isBusy() && !isDirectSubmit;
}

bool MainWinController::windowShouldClose()
{
    QString warning;
    if (isSubmitting())
        warning = u"Closing now may abort the uploading of your app."_s;
    else if (isPolling())
        warning = u"The app is not yet approved and stapled."_s;
    else if (isBusy())
        warning = u"This window is busy."_s;
    if (warning.isNull()) {
        invalidate(staplingTimer);
        return true;
    }
    changeStatus(status::interacting);
    host().application.beep();
    beginSheet({u"Continue Closing?"_s, warning, {u"Cancel"_s, u"Close"_s}}, [this](int answer) {
        if (answer == platform::alertSecondButton) {
            invalidate(staplingTimer);
            window().close();
        } else if (isSubmitting()) {
            changeStatus(status::submitting);
        } else if (isPolling()) {
            changeStatus(status::waiting);
        }
    });
    return false;
}

void MainWinController::windowWillClose()
{
    window().endEditing();
    m_appDelegate.removeWindowController(*this);
}

bool MainWinController::finishEditing(const QString &blockedText)
{
    if (giveUpFocus())
        return true;
    host().application.beep();
    const auto command = currentCommand();
    if (isScripted() && command && !blockedText.isNull()) {
        command->setScriptErrorString(blockedText);
        command->setScriptErrorNumber(scriptErrorGeneral);
        command->resumeExecutionWithResult({});
    }
    return false;
}

bool MainWinController::giveUpFocus()
{
    window().endEditing();
    return window().makeNothingFirstResponder();
}

void MainWinController::beginSheet(const platform::Alert &alert, std::function<void(int)> completion)
{
    window().beginSheet(alert, [held = shared_from_this(), completion = std::move(completion)](int answer) {
        completion(answer);
    });
}

void MainWinController::askForItem(const platform::OpenPanel &panel, std::function<void(const QUrl &)> chosen,
                                   std::function<void()> cancelled)
{
    changeStatus(status::interacting);
    window().beginOpenPanel(panel,
                            [held = shared_from_this(), chosen = std::move(chosen),
                             cancelled = std::move(cancelled)](const QUrl &url) {
                                if (url.isEmpty())
                                    cancelled();
                                else
                                    chosen(url);
                            });
}

void MainWinController::endBeforeStart()
{
    changeStatus(status::ready);
    isBusy.set(false);
    isSubmitting.set(false);
    progressIndicator.stopAnimation();
}

} // namespace sealwright
