#pragma once

#include "run/preferencekeys.h"

#include <QVariantMap>

namespace sealwright::key {

/// The values of the keys that nobody has set.
[[nodiscard]] QVariantMap registeredDefaults();

} // namespace sealwright::key
