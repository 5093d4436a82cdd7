#pragma once

#include <QString>

#include <functional>

/// Measures by the clock and by the kernel's accounts. Everything here is for the main thread.
namespace measuring {

/// How long it takes; seconds.
[[nodiscard]] double seconds(const std::function<void()> &action);

/// The median time of one action over that of another. They take turns, so that what else the machine does
/// meets both alike.
[[nodiscard]] double ratio(int rounds, const std::function<void()> &own,
                           const std::function<void()> &alternative);

/// Starts a program, throws its output away and waits for its end. A failure ends the process.
void runDiscarding(const QStringList &command);

/// The most memory that a program had until its end; bytes. A failure ends the process.
[[nodiscard]] qint64 peakMemoryOf(const QStringList &command);

/// Bytes of this process that are in memory now, and that were at most since the peak was forgotten.
[[nodiscard]] qint64 residentMemory();
[[nodiscard]] qint64 peakMemory();
void forgetPeakMemory();

} // namespace measuring

/// One line of the table.
struct Figure {
    QString what;
    double value;
    double bar; ///< the value is to be at most this
    QString unit; ///< empty for a ratio
};
