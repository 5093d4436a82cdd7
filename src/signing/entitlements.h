#pragma once

#include "platform/result.h"
#include "run/step.h"

#include <QUrl>
#include <QVariantMap>

namespace platform {
class FileService;
}

namespace sealwright {

/// The entitlements that every signature of a run carries: those of the switches that are on and, over them,
/// those of a property list of the user's, which is read anew each time. An empty URL is none.
[[nodiscard]] platform::Result<QVariantMap>
withExtraEntitlements(const QVariantMap &switchedOn, const QUrl &extra, const platform::FileService &files);

/// Writes the run's entitlements into the working folder. Worker thread.
[[nodiscard]] StepResult saveEntitlementsDictionary(Run &run);

namespace step {
inline constexpr Step saveEntitlements{.name = u"Save entitlements", .work = &saveEntitlementsDictionary};
}

} // namespace sealwright
