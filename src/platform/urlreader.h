#pragma once

#include <QByteArray>
#include <QUrl>

#include <optional>

namespace platform {

/// Reads what a URL leads to.
class UrlReader {
public:
    virtual ~UrlReader() = default;

    /// The whole contents of a file, http or https URL; nothing on any failure, which includes an answer that
    /// does not end within minutes and one of more than 64 MiB. Blocks; any thread but the main one.
    virtual std::optional<QByteArray> contentsOf(const QUrl &url) = 0;
};

} // namespace platform
