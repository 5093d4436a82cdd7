#pragma once

#include "signing/signonlyworkflow.h"

namespace sealwright {

/// Carries one item from the user's hands to the stapled ticket.
[[nodiscard]] Workflow submitWorkflow(ItemKind kind, const StepOptions &options);

/// The part of it that begins when the service has the file.
[[nodiscard]] Workflow verdictWorkflow();

} // namespace sealwright
