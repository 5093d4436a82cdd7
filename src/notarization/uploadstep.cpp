#include "notarization/uploadstep.h"

#include "app/preferencekeys.h"
#include "document/documentextensions.h"
#include "document/mainwincontroller.h"
#include "document/workingfoldernames.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "platform/preferences.h"
#include "scripting/scriptcommand.h"
#include "tools/failureline.h"

using namespace Qt::StringLiterals;

bool UploadStep::uploadForNotarizing(const Credentials &credentials, const QString &bundleID)
{
    document.logBoldString(
        u"Uploading file to Apple for notarizing. This can take a while, depending on file size, upload speed, and any other uploads in progress. Do not interrupt this process..."_s);
    const auto response = document.logged(
        document.runAltool(document.uploadTaskRunner(),
                           altoolarguments::upload(document.submitFilePath(), bundleID, credentials)));
    deleteArchive();
    if (response->status() != 0)
        return reportFailedUpload(*response);
    const auto receipt = uploadReceipt(response->outputData());
    if (!receipt)
        return reportNoIdentifier(*response);
    markAccepted();
    if (!receipt->successMessage.isNull())
        document.logBoldString(u"Upload result: %1"_s.arg(receipt->successMessage));
    document.renameWorkingFolderWith(workingfolder::submitted.toString());
    saveRequestUUID(receipt->requestUUID);
    if (scriptSkipsStapling()) {
        endWithoutStapling();
        return false;
    }
    startPolling(credentials, receipt->requestUUID);
    return true;
}

void UploadStep::deleteArchive()
{
    const QString archive = document.submitFilePath();
    if (archive != itempath::fromUrl(document.appletURL()))
        document.host().files.removeItem(archive).ignore();
}

void UploadStep::deleteItem()
{
    document.host().files.removeItem(itempath::fromUrl(document.appletURL())).ignore();
}

bool UploadStep::reportFailedUpload(const SLWTaskResponse &response)
{
    const QString line = toolFailureLine(response, u"in xcrun altool --notarize-app"_s);
    deleteItem();
    document.reportFailureAndRename(u"Error Uploading File"_s, line);
    return false;
}

bool UploadStep::reportNoIdentifier(const SLWTaskResponse &response)
{
    if (const QString error = response.errorString(); !error.isNull())
        document.logError(error);
    deleteItem();
    document.reportFailure(u"No RequestUUID Returned"_s, u"No RequestUUID returned from upload."_s);
    return false; // the folder keeps its working name, unlike after a failed upload
}

void UploadStep::markAccepted()
{
    // The file is with the service now, and a cancel that came before is forgotten.
    document.dispatchToMain([this] {
        document.cancelPressed.set(false);
        document.isPolling.set(true);
        document.isSubmitting.set(false);
    });
}

void UploadStep::saveRequestUUID(const QString &requestUUID)
{
    const QString folder = itempath::folder(itempath::fromUrl(document.appletURL()));
    document.host()
        .files
        .writeFileAtomically(itempath::appending(folder, workingfolder::requestUUIDName.toString()),
                             requestUUID.toUtf8())
        .ignore();
}

bool UploadStep::scriptSkipsStapling() const
{
    const auto command = document.currentCommand();
    return document.isScripted() && command
        && command->evaluatedArguments().value(argument::skippingStapling).toBool();
}

void UploadStep::endWithoutStapling()
{
    // All in one turn of the main thread: a command that follows at once finds no half of it.
    document.dispatchToMain([this] {
        document.resumeScript(document.appletURL());
        document.changeStatus(status::ready);
        document.endWorkflow();
    });
}

void UploadStep::startPolling(const Credentials &credentials, const QString &requestUUID)
{
    const auto preference = static_cast<float>(document.host().preferences.number(key::pollingDelay));
    const PollingInfo info{.credentials = credentials,
                           .requestUUID = requestUUID,
                           .pollingDelay = limitedPollingDelay(preference)};
    document.logBoldString(
        u"Checking for the result of Apple's process. This usually takes several minutes, but could take even longer..."_s);
    if (const auto command = document.currentCommand())
        command->setScriptErrorOffendingObjectDescriptor(document.appletURL());
    document.beginStep(Step::awaitResult);
    document.steps().polling.armTimer(info, info.pollingDelay);
    document.changeStatus(status::waiting);
}
