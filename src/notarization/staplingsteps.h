#pragma once

#include "run/step.h"
#include "tools/slwtaskresponse.h"

#include <QStringList>

namespace sealwright {

/// Attaches the ticket to the item. Of a submission, known by its folder's name, it also puts the untouched
/// item away and gives the folder its last name. Worker thread.
[[nodiscard]] StepResult runStapler(Run &run);

/// The arguments for xcrun.
[[nodiscard]] QStringList staplerArguments(const QString &item);
/// The log line of a failed stapling.
[[nodiscard]] QString staplerFailureLine(const SLWTaskResponse &response);

namespace step {
/// Nobody looks for a cancel behind it: a stapled item is a finished one.
inline constexpr Step staple{.name = u"Staple", .work = &runStapler, .cancelTest = CancelTest::isLeftOut};
} // namespace step

} // namespace sealwright
