#pragma once

#include "platform/posix/folder.h"
#include "platform/result.h"

#include <sys/stat.h>

namespace platform {

/// Copies one item, a folder with all that is in it: contents, links as links, permission bits, times to the
/// nanosecond and extended attributes. Files that are hard links of each other become files of their own.
///
/// Works relative to open folders, so that nobody who moves things about meanwhile leads it astray.
class ItemCopier {
public:
    /// The target must be free. A socket, a pipe or a device in the item is a failure.
    static Outcome copy(const QString &from, const QString &to);

private:
    explicit ItemCopier(const QByteArray &from)
        : m_trail(from)
    {
    }

    bool copyEntry(Place from, Place to);
    bool copyFile(Place from, Place to, const struct stat &state);
    bool copyFolder(Place from, Place to, const struct stat &state);
    bool copyEntries(const Folder &from, const Folder &to);
    bool copyLink(Place from, Place to, const struct stat &state);
    bool fail();

    Trail m_trail;
    QString m_error; // of the first failure, which ends the copy
};

} // namespace platform
