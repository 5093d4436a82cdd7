#pragma once

#include <QString>

namespace platform {
class FileService;
}

namespace sealwright {

/// The item that was submitted under that identifier, if its working folder lies in one of the folders and
/// waits to be stapled there: its path, else null. Reads the disk.
[[nodiscard]] QString itemSubmittedAs(const platform::FileService &files, const QString &identifier,
                                      const QStringList &folders);

} // namespace sealwright
