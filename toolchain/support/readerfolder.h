#pragma once

#include "support/openfile.h"

#include <QString>
#include <QTemporaryDir>

namespace toolchain {

/// A folder of its own for the temporary files of a program that reads foreign files. It is made in TMPDIR,
/// else in /var/tmp, and goes with this. A program that is killed leaves its folder behind: one that is made
/// an hour later or more removes it.
class ReaderFolder {
public:
    ReaderFolder();

    /// Absolute; empty if no folder could be made.
    [[nodiscard]] QString path() const { return m_folder.isValid() ? m_folder.path() : QString(); }

private:
    QTemporaryDir m_folder;
    OpenFile m_held; ///< locked as long as this program lives
};

} // namespace toolchain
