#pragma once

#include "platform/posix/uniquedescriptor.h"

#include <sys/types.h>

#include <optional>

namespace platform {

struct Pipe {
    UniqueDescriptor readEnd;
    UniqueDescriptor writeEnd;
};

/// A pipe that no program started meanwhile by another thread inherits; its descriptors lie above the three
/// standard streams.
[[nodiscard]] std::optional<Pipe> makePipe();

/// The way that works on any host, for hostcalls.h: a thread that waits for the child.
[[nodiscard]] UniqueDescriptor makeExitDescriptorByThread(pid_t child);

/// The way that works on any host, for hostcalls.h: reads and writes.
[[nodiscard]] bool copyContentsByReading(int from, int to);

/// Whether the file has holes and is about to be copied from its beginning.
[[nodiscard]] bool isSparse(int file);
/// Copies such a file, and leaves its holes holes where the file system tells of them.
[[nodiscard]] bool copyContentsWithHoles(int from, int to);

/// The way that works on any host, for hostcalls.h: looks first. Another program may be quicker in between.
[[nodiscard]] bool renameToUnoccupiedPath(const char *from, const char *to);

/// Writes all of the bytes.
[[nodiscard]] bool writeFully(int to, const char *bytes, size_t count);

/// Waits for the child's end and reaps it; its wait status, or -1 when it is no child.
int reapChild(pid_t child);

/// Has a child that nobody waits for reaped whenever it ends.
void reapInBackground(pid_t child);

} // namespace platform
