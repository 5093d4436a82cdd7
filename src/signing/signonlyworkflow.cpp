#include "signing/signonlyworkflow.h"

#include "run/workingcopy.h"
#include "run/workingfoldernames.h"
#include "signing/entitlements.h"
#include "signing/signingsteps.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr Step keepCopy{.name = {}, .work = &keepSignedCopy, .cancelTest = CancelTest::isLeftOut};

Workflow appSteps(const StepOptions &options)
{
    const Workflow contents = options.signsContents ? Workflow{step::signContents} : Workflow();
    return Workflow{step::lockScript} + contents + mainFileSteps(options);
}

} // namespace

Workflow mainFileSteps(const StepOptions &options)
{
    Step check = step::checkSignature;
    check.inPlan = options.checksSignature ? InPlan::shown : InPlan::hidden;
    return {step::signMainFile, check};
}

Workflow signOnlyWorkflow(const Item &item, const StepOptions &options)
{
    // Whatever is no app has no main file: all of it are members, and leaving them out would sign nothing.
    return Workflow{step::makeWorkingCopy, step::saveEntitlements, step::clearAttributes}
    + (item.isApp() ? appSteps(options) : Workflow{step::signAllContents}) + Workflow{keepCopy};
}

StepResult keepSignedCopy(Run &run)
{
    run.folder.moveOriginalIn();
    run.nameFolder(workingfolder::codeSigned);
    run.log.logBoldString(u"Code-signing succeeded."_s);
    run.log.close();
    return Done{};
}

} // namespace sealwright
