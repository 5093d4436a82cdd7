#pragma once

#include "run/workflow.h"

namespace sealwright {

/// What of the settings decides which steps a run has.
struct StepOptions {
    bool signsContents = true; ///< and not the main file alone
    bool checksSignature = false; ///< has a signed bundle assessed
    ArchiveKind archive = ArchiveKind::zip; ///< how a bundle is packed
};

/// Signs a copy of an app, or of anything else, as a folder is, and leaves it in a folder named for that.
[[nodiscard]] Workflow signOnlyWorkflow(const Item &item, const StepOptions &options);

/// The steps between the working copy and the archive that a bundle goes through in any workflow.
[[nodiscard]] Workflow mainFileSteps(const StepOptions &options);

/// Puts the untouched item beside the signed copy and gives the folder its last name. Worker thread.
[[nodiscard]] StepResult keepSignedCopy(Run &run);

} // namespace sealwright
