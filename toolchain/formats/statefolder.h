#pragma once

#include <QString>

#include "platform/result.h"

namespace toolchain {

/// Where the toolchain keeps what has to outlive a tool's run: SEALWRIGHT_TOOLCHAIN_STATE of the
/// environment, else sealwright-toolchain in the user's data folder ($XDG_DATA_HOME, ~/.local/share).
/// No slash at the end; the folder need not exist.
[[nodiscard]] QString stateFolder();

/// Certificates and keys in PEM files, and password items.
[[nodiscard]] QString keychainFolder();

/// The local notary's requests and logs.
[[nodiscard]] QString notaryFolder();

/// Makes a folder that nobody but its owner may look into, with those above it. An error names the folder.
[[nodiscard]] platform::Outcome makePrivateFolder(const QString &path);

/// Holds an advisory lock on a file for as long as it lives, and waits for it first. The system drops the
/// lock when the process ends, however it ends.
class FolderLock {
public:
    /// Locks the file "lock" in a folder that exists.
    explicit FolderLock(const QString &folder);
    ~FolderLock();
    FolderLock(const FolderLock &) = delete;
    FolderLock &operator=(const FolderLock &) = delete;

    /// False if the lock file cannot be made or locked.
    [[nodiscard]] bool isHeld() const { return m_descriptor >= 0; }

private:
    int m_descriptor = -1;
};

} // namespace toolchain
