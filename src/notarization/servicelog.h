#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace platform {
class UrlReader;
}

namespace sealwright {

/// The contents of the service's log that a report names; nothing if it names none or the log cannot be read.
/// Worker thread; takes one network request.
[[nodiscard]] std::optional<QByteArray> contentsOfLogFile(platform::UrlReader &urls, const QString &report);

} // namespace sealwright
