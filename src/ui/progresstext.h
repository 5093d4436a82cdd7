#pragma once

#include "document/recentwaits.h"
#include "document/steplist.h"

namespace sealwright {

/// How far a run has come, in words. Pure.
namespace progresstext {

/// "12 of 57", or "340 of 900 MB at 11 MB/s" after so many seconds; empty where nothing is known.
[[nodiscard]] QString parts(const StepList::Parts &parts, qint64 seconds);
/// "Sign contents, 12 of 57"; while a check of the wait is due, "Next check in 0:25". Empty if no step runs.
[[nodiscard]] QString present(const StepList &steps);
/// "Such waits took 2 to 5 minutes lately."; empty before the first one.
[[nodiscard]] QString recentWaits(const std::optional<recentwaits::Range> &range);

} // namespace progresstext

} // namespace sealwright
