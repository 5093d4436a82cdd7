#pragma once

#include "platform/host.h"
#include "platform/result.h"
#include "run/waitrecord.h"

#include <QList>

namespace sealwright {

// The submissions that can be gone on with: those that are on record, and any other by its folder, which
// holds all that is needed. Any thread.
namespace waits {

/// Those on record whose folder is there, with the folder as it is called now, the oldest first. The record
/// of one that has come to its end goes, and in time that of one whose folder has gone.
[[nodiscard]] QList<WaitRecord> all(const platform::Host &host);

/// The one that a path stands for: the folder that an upload has left, something in it, or the item that it
/// was made of. The error tells why there is none.
[[nodiscard]] platform::Result<WaitRecord> at(const platform::Host &host, const QString &path);

/// Whether the path is such a folder.
[[nodiscard]] bool isFolderOfOne(const platform::Host &host, const QString &path);

/// Whether a run is at work on it, in this process or in another.
[[nodiscard]] bool isAttended(const platform::Host &host, const WaitRecord &wait);

} // namespace waits

} // namespace sealwright
