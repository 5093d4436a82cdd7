#pragma once

#include <QString>
#include <QtGlobal>

#include <chrono>

namespace toolchain {

/// One line on standard error that is written over again; nothing where that is no terminal.
class ProgressLine {
public:
    ProgressLine();
    ~ProgressLine();
    ProgressLine(const ProgressLine &) = delete;
    ProgressLine &operator=(const ProgressLine &) = delete;

    void show(qint64 sent, qint64 size);

private:
    using Clock = std::chrono::steady_clock;
    const bool m_isTerminal;
    const Clock::time_point m_start = Clock::now();
    Clock::time_point m_shown;
    bool m_isOpen = false;
};

/// How far the upload of a file is, for a program of this session that has asked for it by making the folder
/// "sealwright-uploads" in XDG_RUNTIME_DIR: a file there, called after the SHA-1 digest of the uploaded
/// file's absolute path in hexadecimal digits, with the bytes that are sent and the bytes that there are. It
/// goes with the upload. What cannot be written is left.
class ProgressFile {
public:
    explicit ProgressFile(const QString &uploadedFile);
    ~ProgressFile();
    ProgressFile(const ProgressFile &) = delete;
    ProgressFile &operator=(const ProgressFile &) = delete;

    void show(qint64 sent, qint64 size);

private:
    using Clock = std::chrono::steady_clock;
    const QString m_path; ///< null if nobody has asked
    Clock::time_point m_shown;
};

} // namespace toolchain
