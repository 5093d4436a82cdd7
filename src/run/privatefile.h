#pragma once

#include "platform/fileservice.h"

namespace sealwright {

/// Writes a file of the state folder whole, in the place of what was there. Nobody else may read it. Any
/// thread.
inline platform::Outcome writePrivately(platform::FileService &files, const QString &path,
                                        const QByteArray &bytes)
{
    constexpr unsigned ownersFile = 0600;
    if (auto written = files.writeFileAtomically(path, bytes); !written)
        return written;
    return files.setPermissions(path, ownersFile);
}

} // namespace sealwright
