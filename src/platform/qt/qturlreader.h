#pragma once

#include "platform/urlreader.h"

#include <chrono>

namespace platform {

/// Reads URLs by Qt's network classes. A redirection is followed as long as it does not lead from https to
/// http. An answer of 400 or more is a failure, and so is a body that is shorter than the server said. Of a
/// body without a length Qt does not tell whether it was cut off.
class QtUrlReader : public UrlReader {
public:
    /// How long a server may keep silent, and how long its whole answer may take.
    struct Patience {
        std::chrono::milliseconds silence = std::chrono::seconds(30);
        std::chrono::milliseconds answer = std::chrono::minutes(2);
    };

    QtUrlReader();
    explicit QtUrlReader(Patience patience)
        : m_patience(patience)
    {
    }

    std::optional<QByteArray> contentsOf(const QUrl &url) override;

private:
    const Patience m_patience;
};

} // namespace platform
