#pragma once

#include <QByteArray>
#include <QUrl>

#include <optional>

namespace platform {

/// Reads what a URL leads to.
class UrlReader {
public:
    virtual ~UrlReader() = default;

    /// The whole contents of a file, http or https URL; nothing on any failure. Blocks without a limit of its
    /// own; any thread but the main one.
    virtual std::optional<QByteArray> contentsOf(const QUrl &url) = 0;
};

} // namespace platform
