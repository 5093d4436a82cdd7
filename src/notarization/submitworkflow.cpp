#include "notarization/submitworkflow.h"

#include "notarization/archivesteps.h"
#include "notarization/credentialcheck.h"
#include "notarization/pollingsteps.h"
#include "notarization/staplingsteps.h"
#include "notarization/uploadstep.h"
#include "run/workingcopy.h"
#include "signing/entitlements.h"
#include "signing/packagesteps.h"
#include "signing/signingsteps.h"

namespace sealwright {

namespace {

Workflow bundleSteps(ItemKind kind, const StepOptions &options)
{
    Workflow steps{step::saveEntitlements, step::clearAttributes};
    if (kind == ItemKind::app)
        steps.append(step::lockScript);
    if (options.signsContents)
        steps.append(step::signContents);
    return steps + mainFileSteps(options) + Workflow{archiveRow(options.archive)};
}

Workflow preparation(ItemKind kind, const StepOptions &options)
{
    switch (kind) {
    case ItemKind::app:
    case ItemKind::fmplugin:
    case ItemKind::plugin:
        return bundleSteps(kind, options);
    case ItemKind::pkg:
        return {step::signPackage};
    case ItemKind::dmg:
        return {step::signDiskImage, step::findIdentifier};
    case ItemKind::other:
        break;
    }
    return {};
}

} // namespace

Workflow submitWorkflow(ItemKind kind, const StepOptions &options)
{
    return Workflow{step::checkCredentials, step::makeWorkingCopy} + preparation(kind, options)
        + Workflow{step::upload} + verdictWorkflow();
}

Workflow verdictWorkflow()
{
    return {step::awaitResult, step::staple};
}

} // namespace sealwright
