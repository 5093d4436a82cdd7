#pragma once

#include "platform/urlreader.h"

namespace platform {

/// Reads URLs by Qt's network classes. A redirection is followed as long as it does not lead from https to
/// http. An answer of 400 or more is a failure, and so is a body that is shorter than the server said. Of a
/// body without a length Qt does not tell whether it was cut off.
class QtUrlReader : public UrlReader {
public:
    std::optional<QByteArray> contentsOf(const QUrl &url) override;
};

} // namespace platform
