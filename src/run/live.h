#pragma once

#include <QString>

#include <memory>

namespace platform {
class FolderClaim;
class Timer;
} // namespace platform

namespace sealwright {

class Run;
struct Failure;
struct Places;
struct Step;

/// The kinds of archive that a bundle is packed into.
enum class ArchiveKind { zip, diskImage, diskImageByDropDMG };

/// What a run must know as it is at the moment at which it asks, unlike all else, which it has taken along at
/// its start. Any thread.
class LiveChoices {
public:
    virtual ~LiveChoices() = default;

    /// Which archive is made is what is chosen when it is made, not what was chosen when the run began.
    virtual ArchiveKind archiveKind() const = 0;
    /// So is the name of DropDMG's configuration.
    virtual QString dropDMGConfiguration() const = 0;

    /// Whether a cancel waits to be heeded. A cancel that finds no tool running outlives its run, and the
    /// next one stops at its first check.
    virtual bool cancelPressed() const = 0;

    /// The service has the file: a cancel that came before is forgotten, and the next one means the wait.
    /// Done a moment later.
    virtual void uploadAccepted() = 0;

    /// Whether the run ends with the upload, because the script that waits for it has asked for that. A
    /// cancel has answered the script, and then it does not.
    virtual bool skipsStapling() const = 0;
};

/// Whether a cancel is offered to people.
enum class CancelOffer { unchanged, withdrawn, made };

/// Who shows a run. It is told what happens and steers nothing. Any thread.
class Progress {
public:
    virtual ~Progress() = default;

    /// The step runs from now on.
    virtual void began(const Step &step) = 0;
    /// Of the files that the step works on, so many have been begun.
    virtual void advanced(qsizetype begun, qsizetype all) = 0;
    /// The run has stopped between two steps, because a cancel was pressed, and says no more.
    virtual void stopped() = 0;
    virtual void failed(const Failure &failure) = 0;
    /// After a failure: the folder has its last name, and the run touches nothing any more.
    virtual void leftBehind() = 0;
    /// All steps have worked.
    virtual void ended(Run &run) = 0;
    /// The script wanted no more than the upload.
    virtual void endedWithUpload() = 0;

    virtual void moved(const Places &places) = 0;
    /// The run works in its folder until its end, and the claim tells others so.
    virtual void claimed(std::shared_ptr<platform::FolderClaim> claim) = 0;
    virtual void changedStatus(QStringView status) = 0;
    virtual void offersCancel(CancelOffer offer) = 0;

    // The wait for a verdict
    /// On the request of that identifier.
    virtual void awaitsVerdict(const QString &requestUUID) = 0;
    /// Failed polls so far, and of them those with status 239.
    virtual void countsFailures(quint64 ordinary, quint64 of239) = 0;
    /// The timer fires in so many seconds, at the earliest.
    virtual void waits(const std::shared_ptr<platform::Timer> &timer, double seconds) = 0;
    /// The timer has fired. Main thread.
    virtual void polls() = 0;
    virtual void verdictHasCome() = 0;
    /// What the service's log of the verdict tells, as JSON: a list of objects.
    virtual void serviceSaid(const QString &issues) = 0;
};

} // namespace sealwright
