#include "notarization/staplingsteps.h"

#include "document/mainwincontroller.h"
#include "document/workingfoldernames.h"
#include "platform/itempath.h"
#include "tools/failureline.h"

#include <QVariant>

using namespace Qt::StringLiterals;

namespace {

const QString xcrunTool = u"/usr/bin/xcrun"_s; // wherever the notary tool comes from

} // namespace

QStringList staplerArguments(const QString &item)
{
    return {u"stapler"_s, u"staple"_s, u"-v"_s, item};
}

QString staplerFailureLine(const SLWTaskResponse &response)
{
    const QString line = toolFailureLine(response, u"running stapler"_s);
    const QString output = response.outputString();
    return output.isNull() ? line : line + u'\n' + output;
}

void StaplingSteps::runStaplerAndFinish()
{
    const bool isSubmission = isInSubmittedFolder();
    const auto response =
        document.runTool(xcrunTool, staplerArguments(itempath::fromUrl(document.appletURL())));
    if (document.logHandle())
        document.logToFile(response->fileLogString());
    if (response->status() != 0)
        return reportFailure(*response, isSubmission);
    document.logBoldString(u"Stapling succeeded."_s);
    document.closeLog(); // before the folder's new name moves the file
    if (isSubmission) {
        document.moveOriginalIntoWorkingFolder();
        document.renameWorkingFolderWith(workingfolder::notarized.toString());
    }
    if (document.suppressDialogs()) {
        document.dispatchToMain([this] { endSilently(); });
    } else {
        document.changeStatus(status::interacting);
        document.dispatchToMain([this] { endWithDialog(); });
    }
}

bool StaplingSteps::isInSubmittedFolder() const
{
    const QString folder = itempath::folder(itempath::fromUrl(document.appletURL()));
    const QString base = itempath::withoutExtension(document.originalFileName());
    return itempath::lastComponent(folder) == workingfolder::name(base, workingfolder::submitted);
}

void StaplingSteps::reportFailure(const SLWTaskResponse &response, bool isSubmission)
{
    document.reportFailure(u"Stapling Failed"_s, staplerFailureLine(response));
    if (isSubmission)
        document.renameWorkingFolderWith(workingfolder::failed.toString());
}

void StaplingSteps::endCommon()
{
    document.resumeScript(document.scriptResult());
    document.endWorkflow();
}

void StaplingSteps::endSilently()
{
    endCommon();
    document.changeStatus(status::ready);
}

void StaplingSteps::endWithDialog()
{
    endCommon();
    const QString name = itempath::lastComponent(itempath::fromUrl(document.appletURL()));
    document.beginSuccessSheet({u"Stapling Successful"_s,
                                u"The file '%1' is now ready for distribution."_s.arg(name),
                                {u"OK"_s, u"Show File"_s}});
}
