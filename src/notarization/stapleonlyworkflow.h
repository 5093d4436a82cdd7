#pragma once

#include "run/workflow.h"
#include "tools/slwtaskresponse.h"

namespace sealwright {

/// Takes up an item that has been submitted before: has the system confirm that it is acceptable, and staples
/// it where it lies. Needs no credentials.
[[nodiscard]] Workflow stapleOnlyWorkflow();

/// Has the item assessed, for the kind of use that its extension tells. Worker thread.
[[nodiscard]] StepResult assessSubmission(Run &run);

/// The kind of use, as the assessing tool names it, by the item's extension in any letter case.
[[nodiscard]] QString assessmentType(const QString &item);
/// Whether a line of the tool's text ends in the word for it.
[[nodiscard]] bool isAccepted(const QString &assessment);
/// The log line of an assessment that ended with a failure.
[[nodiscard]] QString assessmentFailureLine(const SLWTaskResponse &response);

} // namespace sealwright
