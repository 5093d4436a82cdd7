#pragma once

#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>

namespace platform {

/// What a script gave back. Nothing of it is set when the script had no result.
struct AppleScriptResult {
    std::optional<QStringList> list; ///< a list of strings
    std::optional<QString> file; ///< the path of a file
    QString error; ///< the error's text; null when there was a result
};

/// Compiles and runs AppleScript sources.
class AppleScript {
public:
    virtual ~AppleScript() = default;

    /// Runs the source and blocks until it has ended. One that lasts longer than the limit is ended then, and
    /// has no result. Any thread.
    virtual AppleScriptResult execute(const QString &source,
                                      std::optional<std::chrono::milliseconds> limit = {}) = 0;
};

} // namespace platform
