#pragma once

#include "run/step.h"

namespace sealwright {

/// Hands the prepared file to the notary service, once. Worker thread.
[[nodiscard]] StepResult uploadForNotarizing(Run &run);

/// The identifier of an upload that has none of its own: a random UUID with the item's extension directly
/// behind it.
[[nodiscard]] QString fallbackIdentifier(const QString &itemPath);

namespace step {
/// Uploading is not to be interrupted, and the wait begins whatever was pressed meanwhile.
inline constexpr Step upload{.name = u"Upload to Apple",
                             .work = &uploadForNotarizing,
                             .cancelTest = CancelTest::isLeftOut,
                             .cancelOffer = CancelOffer::withdrawn};
} // namespace step

} // namespace sealwright
