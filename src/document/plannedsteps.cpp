#include "document/plannedsteps.h"

#include "notarization/submitworkflow.h"

namespace {

QList<Step> mainFileSteps(const StepOptions &options)
{
    return options.checksSignature ? QList<Step>{Step::signMainFile, Step::checkSignature}
                                   : QList<Step>{Step::signMainFile};
}

QList<Step> bundleSteps(ItemKind kind, const StepOptions &options)
{
    QList<Step> steps{Step::saveEntitlements, Step::clearAttributes};
    if (kind == ItemKind::app)
        steps.append(Step::lockScript);
    if (options.signsContents)
        steps.append(Step::signContents);
    return steps + mainFileSteps(options) + QList<Step>{options.archive};
}

QList<Step> preparation(ItemKind kind, const StepOptions &options)
{
    switch (kind) {
    case ItemKind::app:
    case ItemKind::fmplugin:
    case ItemKind::plugin:
        return bundleSteps(kind, options);
    case ItemKind::pkg:
        return {Step::signPackage};
    case ItemKind::dmg:
        return {Step::signMainFile, Step::findIdentifier};
    case ItemKind::other:
        break;
    }
    return {};
}

} // namespace

QList<Step> submitSteps(ItemKind kind, const StepOptions &options)
{
    return QList<Step>{Step::checkCredentials, Step::makeWorkingCopy} + preparation(kind, options)
        + QList<Step>{Step::upload, Step::awaitResult, Step::staple};
}

QList<Step> signOnlySteps(bool isApp, const StepOptions &options)
{
    const QList<Step> steps{Step::makeWorkingCopy, Step::saveEntitlements, Step::clearAttributes};
    if (!isApp)
        return steps + QList<Step>{Step::signContents};
    const QList<Step> contents = options.signsContents ? QList<Step>{Step::signContents} : QList<Step>{};
    return steps + QList<Step>{Step::lockScript} + contents + mainFileSteps(options);
}

QList<Step> stapleOnlySteps()
{
    return {Step::checkSignature, Step::staple};
}
