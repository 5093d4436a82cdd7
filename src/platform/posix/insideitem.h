#pragma once

#include "platform/posix/uniquedescriptor.h"

#include <QByteArray>
#include <QString>

namespace platform {

/// Opens what lies at the relative path in an item, where no step of it is a link; the item itself may be
/// reached by links. Owns none on failure, with the reason in errno.
[[nodiscard]] UniqueDescriptor openInside(const QString &item, const QString &inside, int flags);

/// A digest of the names, kinds, modes, sizes, targets of links and times of modification of an item and all
/// that is in it. Empty where a part of it cannot be looked at.
[[nodiscard]] QByteArray stateOfItem(const QString &path);

} // namespace platform
