#pragma once

#include "run/step.h"

namespace sealwright {

/// Makes the working folder with the log and a copy of the item in it. Worker thread.
[[nodiscard]] StepResult createWorkingFolderAndLog(Run &run);

namespace step {
inline constexpr Step makeWorkingCopy{.name = u"Make working copy", .work = &createWorkingFolderAndLog};
}

} // namespace sealwright
