#pragma once

#include "document/documentextension.h"
#include "notarization/pollinginfo.h"
#include "tools/slwtaskresponse.h"

/// Asks for the verdict again and again: one timer or one query at a time. Built to outlast a service that
/// misbehaves for hours: ordinary failures have a small budget, and status 239, by which the service denies a
/// request that it has just accepted, has a budget of its own.
class PollingSteps : private DocumentExtension {
public:
    explicit PollingSteps(MainWinController &owner)
        : DocumentExtension(owner)
    {
    }

    /// Arms the timer of the next poll, in seconds. Any thread.
    void armTimer(const PollingInfo &info, double delay);

    /// Main thread: hops to a worker for the query.
    void staplingTimerFired(const PollingInfo &info);

    /// One query and its consequences. Worker thread.
    void continueStaplingWithInfo(const PollingInfo &info);

    /// Arms the next poll, or ends the wait if it was cancelled. Worker thread.
    void pollOrCancelWithInfo(const PollingInfo &info, double pollingDelay);

private:
    void retryAfterFailure(const SLWTaskResponse &response, const PollingInfo &info);
    void retryAfter239(const QString &line, const PollingInfo &info);
    void retryAfterOrdinaryFailure(const QString &line, const PollingInfo &info);
    void giveUp(const QString &line);
    void acceptVerdict(const QString &report);
    void logIssues(const QString &report);
    void refuseVerdict(const QString &report);
};

/// The log line of a failed query; it shows the tool's true status.
[[nodiscard]] QString queryFailureLine(const SLWTaskResponse &response);

/// How long to wait after a failure with status 239, in seconds; `count` is the number of those, this one
/// included.
[[nodiscard]] double delayAfter239(quint64 count);
