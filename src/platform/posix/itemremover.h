#pragma once

#include "platform/result.h"

namespace platform {

/// Deletes the item, a folder with all that is in it. Never follows a link. What has been deleted before a
/// failure is gone.
Outcome removeTree(const QString &path);

} // namespace platform
