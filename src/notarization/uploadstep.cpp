#include "notarization/uploadstep.h"

#include "notarization/altoolarguments.h"
#include "notarization/pollinginfo.h"
#include "notarization/waitrecording.h"
#include "platform/itempath.h"
#include "run/run.h"
#include "run/workingfoldernames.h"
#include "tools/failureline.h"

#include <QFile>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr qsizetype longestName = 255; // bytes, on nearly every file system

Failure failedUpload(Run &run, const SLWTaskResponse &response)
{
    run.folder.removeItem();
    return {u"Error Uploading File"_s, toolFailureLine(response, u"in xcrun altool --notarize-app"_s)};
}

/// The folder keeps its working name, unlike after a failed upload.
Failure noIdentifier(Run &run, const SLWTaskResponse &response)
{
    if (const QString error = response.errorString(); !error.isNull())
        run.log.logError(error);
    run.folder.removeItem();
    return {u"No RequestUUID Returned"_s, u"No RequestUUID returned from upload."_s,
            FolderFate::keepsItsName};
}

bool isTooLong(const QString &name)
{
    return QFile::encodeName(name).size() > longestName;
}

/// What has been made of the item, or else the item itself.
void chooseUpload(Run &run)
{
    if (run.folder.places().upload.isNull())
        run.folder.setUpload(run.itemPath());
    if (run.identifier.isNull())
        run.identifier = fallbackIdentifier(run.folder.places().original);
}

StepResult accept(Run &run, const UploadReceipt &receipt)
{
    recordWait(run, receipt.requestUUID);
    run.live.uploadAccepted();
    if (!receipt.successMessage.isNull())
        run.log.logBoldString(u"Upload result: %1"_s.arg(receipt.successMessage));
    run.requestUUID = receipt.requestUUID;
    nameSubmittedFolder(run);
    if (run.live.skipsStapling())
        return EndsHere{};
    return Done{};
}

} // namespace

QString fallbackIdentifier(const QString &itemPath)
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toLower() + itempath::extension(itemPath);
}

StepResult uploadForNotarizing(Run &run)
{
    chooseUpload(run);
    if (const QString name = workingfolder::name(run.folder.base(), workingfolder::submitted);
        isTooLong(name))
        return Failure{
            u"Error Uploading File"_s,
            u"The item's name is too long: no folder can be called '%1', and the request's identifier would be lost."_s
                .arg(name)};
    run.log.logBoldString(
        u"Uploading file to Apple for notarizing. This can take a while, depending on file size, upload speed, and any other uploads in progress. Do not interrupt this process..."_s);
    run.folder.rememberItem();
    ReceiptListener listener(run);
    const auto response = run.tools.uploadAndLog(
        altoolarguments::upload(run.folder.places().upload, run.identifier, run.inputs().credentials),
        [&listener](const QByteArray &output) { listener.hear(output); });
    run.folder.removeUpload();
    if (response->status() != 0)
        return failedUpload(run, *response);
    const auto receipt = uploadReceipt(response->outputData());
    if (!receipt)
        return noIdentifier(run, *response);
    return accept(run, *receipt);
}

} // namespace sealwright
