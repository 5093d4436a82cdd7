#include "document/runwatcher.h"

#include "document/applicationinterface.h"
#include "document/recentwaits.h"
#include "platform/itempath.h"
#include "platform/scriptcommand.h"

namespace sealwright {

// Live choices

ArchiveKind RunWatcher::archiveKind() const
{
    return m_document->archiveKind();
}

QString RunWatcher::dropDMGConfiguration() const
{
    return m_document->dropDMGConfiguration();
}

bool RunWatcher::cancelPressed() const
{
    return m_document->cancelPressed();
}

void RunWatcher::uploadAccepted()
{
    m_document->dispatchToMain([&document = *m_document] {
        document.cancelPressed.set(false);
        document.isPolling.set(true);
        document.isSubmitting.set(false);
    });
}

bool RunWatcher::skipsStapling() const
{
    const auto command = m_document->currentCommand();
    return m_document->isScripted() && command
        && command->evaluatedArguments().value(argument::skippingStapling).toBool();
}

// Progress

bool RunWatcher::isLatest() const
{
    return m_document->runCount() == m_number;
}

void RunWatcher::began(const Step &step)
{
    if (isLatest())
        m_document->dispatchToMain([&document = *m_document, step] { document.stepList.begin(step); });
}

void RunWatcher::advanced(qsizetype begun, qsizetype all)
{
    if (isLatest())
        m_document->dispatchToMain([&document = *m_document, begun, all] {
            document.stepList.advance({.done = begun, .all = all});
        });
}

void RunWatcher::stopped()
{
    // The cancel has ended the list, but a step may have begun since.
    m_document->dispatchToMain([&document = *m_document] { document.stepList.finish(StepState::cancelled); });
}

void RunWatcher::failed(const Failure &failure)
{
    m_failure = failure;
    if (cancelPressed())
        report(); // nobody hears of it, and the next run is to find the cancel forgotten
}

void RunWatcher::leftBehind()
{
    report(); // not before: a script that has the failure looks into the folder, or begins again
}

void RunWatcher::report()
{
    if (const auto failure = std::exchange(m_failure, std::nullopt))
        m_document->dispatchFinalAlertOrMessage(failure->title, failure->text, failure->logLine);
}

void RunWatcher::ended(Run &run)
{
    if (m_atEnd)
        m_atEnd(run);
}

void RunWatcher::endedWithUpload()
{
    m_document->endWithUpload();
}

void RunWatcher::moved(const Places &places)
{
    if (!isLatest())
        return;
    const Places before = std::exchange(m_shown, places);
    if (places.original != before.original)
        m_document->originalAppletURL.set(itempath::toUrl(places.original));
    if (places.item != before.item)
        m_document->appletURL.set(itempath::toUrl(places.item));
    if (places.leftIn != before.leftIn)
        m_document->folderLeftIn.set(places.leftIn);
    if (places.upload != before.upload)
        m_document->submitFilePath.set(places.upload);
}

void RunWatcher::claimed(std::shared_ptr<platform::FolderClaim> claim)
{
    m_document->folderClaim.set(std::move(claim));
}

void RunWatcher::changedStatus(QStringView status)
{
    m_document->changeStatus(status);
}

void RunWatcher::offersCancel(CancelOffer offer)
{
    const bool isOffered = offer == CancelOffer::made;
    m_document->dispatchToMain([&document = *m_document, isOffered] { document.canCancel.set(isOffered); });
}

// The wait for a verdict

void RunWatcher::awaitsVerdict(const QString &requestUUID)
{
    m_document->awaitedRequest.set(requestUUID);
    if (const auto command = m_document->currentCommand())
        command->setScriptErrorOffendingObjectDescriptor(m_document->appletURL());
}

void RunWatcher::countsFailures(quint64 ordinary, quint64 of239)
{
    if (!isLatest())
        return;
    m_document->infoFailureCount.set(ordinary);
    m_document->info239FailureCount.set(of239);
}

void RunWatcher::waits(const std::shared_ptr<platform::Timer> &timer, double seconds)
{
    const quint64 failures = m_document->infoFailureCount() + m_document->info239FailureCount();
    m_document->dispatchToMain(
        [&document = *m_document, seconds, failures] { document.stepList.pollIn(seconds, failures); });
    m_document->staplingTimer.set(timer);
}

void RunWatcher::polls()
{
    m_document->staplingTimer.set(nullptr);
    m_document->stepList.pollNow();
}

void RunWatcher::serviceSaid(const QString &issues)
{
    m_document->serviceIssues.set(issues);
}

void RunWatcher::verdictHasCome()
{
    m_document->dispatchToMain([&document = *m_document] {
        document.isPolling.set(false);
        if (const StepList::Row *const wait = document.stepList.running())
            recentwaits::remember(document.host().preferences, document.stepList.duration(*wait));
    });
}

} // namespace sealwright
