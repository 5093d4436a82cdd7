#pragma once

#include "platform/posix/uniquedescriptor.h"

#include <sys/types.h>

namespace platform {

// What POSIX leaves to the host. Each is written twice, for Linux and for any other host. Failures are told
// in errno.

/// A descriptor that becomes readable when the child has ended. The child is left for its parent to reap,
/// which must not be done before. Owns none on failure.
[[nodiscard]] UniqueDescriptor makeExitDescriptor(pid_t child);

/// Copies what is left of one open file to the end of the other, as a clone where the file system can.
[[nodiscard]] bool copyContents(int from, int to);

/// Copies the extended attributes of an open file or folder, save for those that the target's file system
/// does not have or that the user may not set.
[[nodiscard]] bool copyExtendedAttributes(int from, int to);

/// Renames; fails with EEXIST where there is an item at `to`.
[[nodiscard]] bool renameToFreePath(const char *from, const char *to);

/// Puts each of the two items in the other's place.
[[nodiscard]] bool exchangeItems(const char *first, const char *second);

} // namespace platform
