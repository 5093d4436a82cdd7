#pragma once

#include "platform/property.h"
#include "run/logstyle.h"

#include <QString>

#include <functional>
#include <memory>

namespace platform {
class Clock;
class FileHandle;
class FileService;
} // namespace platform

namespace sealwright {

/// The two logs of a document: the lines that a person sees, and the file beside the item, which has more.
/// A line goes to the file at once and to the window a moment later. Any thread.
class RunLog {
public:
    /// Takes a finished line, with its time and its line end, to the window.
    using Window = std::function<void(const QString &line, LogStyle style)>;

    RunLog(const platform::Clock &clock, platform::FileService &files, Window window)
        : m_clock(clock)
        , m_files(files)
        , m_window(std::move(window))
    {
    }

    void logString(const QString &message) { log(message, LogStyle::plain); }
    void logError(const QString &message) { log(message, LogStyle::error); }
    void logBoldString(const QString &message) { log(message, LogStyle::bold); }
    void logToFile(const QString &message) { (void)noteInFile(message); }
    /// The same, answering the line, for a window that is to have it before the call returns.
    QString noteInFile(const QString &message);

    bool isOpen() const { return handle() != nullptr; }
    /// Opens the file at the path, which is made if there is none and else is added to, and heads what
    /// follows with the banner. Where that cannot be, the window log is the only one.
    void open(const QString &path, const QString &banner);
    void close();

    Property<std::shared_ptr<platform::FileHandle>> handle; ///< the open log file, or null

private:
    void log(const QString &message, LogStyle style);

    const platform::Clock &m_clock;
    platform::FileService &m_files;
    const Window m_window;
};

} // namespace sealwright
