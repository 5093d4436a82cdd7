#pragma once

#include "run/workflow.h"

namespace sealwright {

/// Goes on with the wait for a verdict that another run has begun, in this process or in one that has ended:
/// the run's inputs have its record. Asks at once, and from then on all is as that run would have done it.
[[nodiscard]] Workflow resumeWorkflow();

/// Makes the folder of the submission the run's own, and brings to its end what the run before may have left
/// of the upload. Fails where another run works in it. Worker thread.
[[nodiscard]] StepResult takeUpSubmission(Run &run);

/// The title of that failure.
extern const QString cannotGoOnWaiting;

} // namespace sealwright
