#pragma once

#include "run/step.h"
#include "tools/slwtaskresponse.h"

namespace sealwright {

// The wait for the verdict. Built to outlast a service that misbehaves for hours: ordinary failures have a
// small budget, and status 239, by which the service denies a request that it has just accepted, has a budget
// of its own. Worker thread.

/// Begins the wait for the request that the run knows; the seconds until the first query.
[[nodiscard]] double beginWaiting(Run &run);
/// One query and its consequences.
[[nodiscard]] StepResult askForVerdict(Run &run);
/// The report that a cancel during a query swallows; what it leaves is the cleared flag.
[[nodiscard]] Failure cancelledWait();

/// The log line of a failed query; it shows the tool's true status.
[[nodiscard]] QString queryFailureLine(const SLWTaskResponse &response);

/// How long to wait after a failure with status 239, in seconds; `count` is the number of those, this one
/// included.
[[nodiscard]] double delayAfter239(quint64 count);

inline constexpr Wait waitForVerdict{
    .begin = &beginWaiting, .line = u"Awaiting result from Apple...", .whenCancelled = &cancelledWait};

namespace step {
inline constexpr Step awaitResult{.name = u"Wait for Apple's result",
                                  .work = &askForVerdict,
                                  .cancelTest = CancelTest::isLeftOut,
                                  .wait = &waitForVerdict,
                                  .cancelOffer = CancelOffer::made};
}

} // namespace sealwright
