#pragma once

#include "platform/fileservice.h"

namespace platform {

/// The claim on a folder as a lock of the open folder: other processes see it, it follows the folder's new
/// names, and it goes with the process. Null where somebody else has it, or where no folder is at the path.
[[nodiscard]] std::shared_ptr<FolderClaim> claimOf(const QString &path);
/// Whether somebody has a claim on the folder, be it this process.
[[nodiscard]] bool isClaimedFolder(const QString &path);

} // namespace platform
