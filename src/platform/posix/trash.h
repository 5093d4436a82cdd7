#pragma once

#include "platform/result.h"

namespace platform {

/// Moves an item to the trash of the desktop, from which it can be taken back. Nothing has been moved if that
/// fails. https://specifications.freedesktop.org/trash-spec/latest/
Outcome moveToTrash(const QString &path);

} // namespace platform
