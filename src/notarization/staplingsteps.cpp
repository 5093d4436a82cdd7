#include "notarization/staplingsteps.h"

#include "run/run.h"
#include "run/workingfoldernames.h"
#include "tools/failureline.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

const QString xcrunTool = u"/usr/bin/xcrun"_s; // wherever the notary tool comes from

Failure failedStapling(const SLWTaskResponse &response, bool isSubmission)
{
    return {u"Stapling Failed"_s, staplerFailureLine(response),
            isSubmission ? FolderFate::isNamedFailed : FolderFate::keepsItsName};
}

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

StepResult runStapler(Run &run)
{
    const bool isSubmission = run.folder.isSubmitted();
    if (run.folder.hasItemChanged())
        run.log.logError(
            u"The item has changed since it was uploaded: '%1'. The ticket is for what it was, and its signature may no longer hold."_s
                .arg(run.folder.itemPlace()));
    run.wait.forgetItemState(); // from here on the item changes
    const auto response = run.tools.run(xcrunTool, staplerArguments(run.folder.itemPlace()));
    if (run.log.isOpen())
        run.log.logToFile(response->fileLogString());
    if (response->status() != 0)
        return failedStapling(*response, isSubmission);
    run.log.logBoldString(u"Stapling succeeded."_s);
    run.log.close(); // before the folder's new name moves the file
    if (isSubmission) {
        run.folder.moveOriginalIn();
        run.nameFolder(workingfolder::notarized);
    }
    return Done{};
}

} // namespace sealwright
