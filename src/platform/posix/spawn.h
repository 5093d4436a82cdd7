#pragma once

#include "platform/result.h"

#include <QStringList>

#include <sys/types.h>

#include <mutex>

namespace platform {

/// What to start: a command as data.
struct Program {
    QString path; ///< as the caller names it, for error texts
    QString executable; ///< the file that is launched
    QStringList arguments; ///< without the program's own name
    QStringList pathPrefix; ///< folders put in front of the child's PATH
};

/// Descriptors for the child's streams; -1 inherits the application's.
struct SpawnStreams {
    int output = -1;
    int error = -1;
    int input = -1;
};

/// Either way the child can be signalled apart from the application: as a group of its own, or in a session
/// of its own that outlives the terminal of the application.
enum class SpawnAs { group, session };

/// Held from the making of a child's pipes until the application has closed its own copies of the child's
/// ends. Until its exec, any child started meanwhile holds those open too, and the end of a stream would not
/// come with the end of its program. Whoever changes the environment holds it too, since a launch reads that.
[[nodiscard]] std::unique_lock<std::mutex> lockLaunches();

/// Starts the program, under the lock of launches, and answers with its process in `*child`; that is left
/// alone on failure. Any thread.
Outcome spawn(const Program &program, SpawnStreams streams, SpawnAs as, pid_t *child);

} // namespace platform
