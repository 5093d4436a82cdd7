#pragma once

#include "platform/result.h"
#include "support/readerfolder.h"

#include <QString>
#include <QStringList>

namespace toolchain {

/// Where a confined process may still write. A path that does not exist is left out.
struct ConfinementPlaces {
    QStringList folders; ///< with everything below: make, change and remove
    QStringList parents; ///< folders below which folders may be made, and empty ones removed
};

/// From now on this process, and what it starts, writes to `places` and to /dev/null alone (Landlock), and
/// opens no socket (seccomp). What is open already stays usable. It cannot be taken back. Threads that run
/// already are not confined, so it comes before any. An error tells what the kernel does not offer; the rest
/// holds all the same. Public documents: landlock(7), seccomp(2).
[[nodiscard]] platform::Result<void> confineThisProcess(const ConfinementPlaces &places);

/// For a program that is about to read files that nobody vouches for: confines it to `places` and to a folder
/// of its own for temporary files, which TMPDIR names from now on. Once in a process, before any thread is
/// started.
class ReaderConfinement {
public:
    explicit ReaderConfinement(ConfinementPlaces places = {});

    /// Why the program is not confined, or not in everything; empty if it is.
    [[nodiscard]] const QString &complaint() const { return m_complaint; }

    /// Says so on standard error, if there is something to say.
    void tellComplaint(const char *program) const;

private:
    ReaderFolder m_temporary;
    QString m_complaint;
};

} // namespace toolchain
