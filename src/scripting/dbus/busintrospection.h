#pragma once

#include "scripting/dbus/busobject.h"

namespace sealwright {

/// What stands between the node tags of the object's introspection, but for the standard interfaces that the
/// bus library adds. The format:
/// https://dbus.freedesktop.org/doc/dbus-specification.html#introspection-format
[[nodiscard]] QString introspection(const BusObject &object);

} // namespace sealwright
