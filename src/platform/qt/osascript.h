#pragma once

#include "platform/applescript.h"

namespace platform {

class ProcessLauncher;

/// What a run of `osascript -s s` tells. With exit 0, a reply in braces is a list of strings, and a reply
/// `POSIX file "PATH"` is a file; both are in AppleScript's own source form. Anything else is no result, with
/// what stands on standard error as the error's text.
AppleScriptResult readOsascriptReply(int status, const QByteArray &output, const QByteArray &error);

/// AppleScript by the tool osascript.
class OsaScript : public AppleScript {
public:
    explicit OsaScript(ProcessLauncher &launcher);

    AppleScriptResult execute(const QString &source,
                              std::optional<std::chrono::milliseconds> limit = {}) override;

private:
    ProcessLauncher &m_launcher;
};

} // namespace platform
