#pragma once

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

} // namespace toolchain
