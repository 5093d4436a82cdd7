#pragma once

#include "scripting/dbus/busobject.h"

namespace sealwright {

/// Values of scripting objects, which may be windows and documents, and how they look on the bus. Main
/// thread.
namespace objectvalues {

[[nodiscard]] QVariant toBus(const BusObject &object, const QVariant &value);

/// The value that came over the bus, as a scripting object takes it; nothing if it is not of the type, or
/// names a window that is not there. A value that may be anything is taken as it came then.
[[nodiscard]] std::optional<QVariant> fromBus(const BusObject &object, const QVariant &value,
                                              scriptingdefinition::ValueType type, Takes takes);

} // namespace objectvalues

} // namespace sealwright
