#include "notarization/resumeworkflow.h"

#include "notarization/archivesteps.h"
#include "notarization/pollingsteps.h"
#include "notarization/staplingsteps.h"
#include "notarization/waitrecording.h"
#include "platform/clock.h"
#include "platform/fileservice.h"
#include "run/workingfoldernames.h"

using namespace Qt::StringLiterals;

namespace sealwright {

const QString cannotGoOnWaiting = u"Cannot Go On Waiting"_s;

namespace {

Failure notTakenUp(const QString &reason)
{
    Failure failure{cannotGoOnWaiting, reason, FolderFate::keepsItsName};
    failure.wait = WaitFate::staysOpen;
    return failure;
}

/// What a run has left to do that was ended between the receipt and the folder's new name.
void finishUpload(Run &run)
{
    const QString item = run.itemPath();
    run.folder.setUpload(archive::zipPath(item));
    run.folder.removeUpload();
    run.folder.setUpload(item);
    nameSubmittedFolder(run);
}

WaitRecord recordOf(const Run &run)
{
    WaitRecord record = run.inputs().wait;
    record.folder = run.folder.path();
    record.credentials = run.inputs().credentials;
    if (!record.since.isValid())
        record.since = run.host.clock.now();
    if (record.service.isEmpty())
        record.service = run.tools.altoolPath();
    return record;
}

double beginWaitingAgain(Run &run)
{
    (void)beginWaiting(run);
    return 0; // the verdict may have come long ago
}

constexpr Wait waitOn{
    .begin = &beginWaitingAgain, .line = u"Awaiting result from Apple...", .whenCancelled = &cancelledWait};

/// What was pressed before has nothing to do with this wait.
constexpr Step takeUp{.name = {}, .work = &takeUpSubmission, .cancelTest = CancelTest::isLeftOut};
constexpr Step awaitResult{.name = step::awaitResult.name,
                           .work = &askForVerdict,
                           .cancelTest = CancelTest::isLeftOut,
                           .wait = &waitOn,
                           .cancelOffer = CancelOffer::made};

} // namespace

StepResult takeUpSubmission(Run &run)
{
    if (const auto claimed = run.folder.claim(); !claimed)
        return notTakenUp(claimed.error());
    run.openLog(run.folder.path(workingfolder::logName), workingfolder::resumeBanner(run.itemPath()));
    run.folder.rememberItem(run.inputs().wait.itemState);
    if (const auto kept = run.wait.keep(recordOf(run)); !kept)
        run.log.logString(u"The wait for the verdict is not on record: %1"_s.arg(kept.error()));
    if (!run.folder.isSubmitted())
        finishUpload(run);
    else if (!run.host.files.isReachable(run.folder.path(workingfolder::requestUUIDName)))
        saveRequestUUID(run);
    return Done{};
}

Workflow resumeWorkflow()
{
    return {takeUp, awaitResult, step::staple};
}

} // namespace sealwright
