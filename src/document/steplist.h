#pragma once

#include "platform/property.h"
#include "run/step.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>

namespace platform {
class Clock;
}

namespace sealwright {

/// How far a step has come. Skipped is one that its run turned out not to need or has not reached.
enum class StepState { waiting, running, done, failed, cancelled, skipped };

/// What people hear of it.
[[nodiscard]] QString stateName(StepState state);

/// The steps of a document's latest run, the one that runs now and how long each took. It tells what happens
/// and steers nothing: no workflow asks it. Main thread.
class StepList : public Observable {
public:
    /// How far the work of a step is, where it has parts that can be counted.
    struct Parts {
        enum class Unit { files, bytes };

        qint64 done = 0; ///< of files: the number of the one that is at work
        qint64 all = 0; ///< 0 where nothing is known
        Unit unit = Unit::files;
        bool operator==(const Parts &) const = default;
    };

    struct Row {
        Step step;
        StepState state = StepState::waiting;
        QDateTime began = {}; ///< invalid until the step begins
        QDateTime ended = {}; ///< invalid until it has ended
        Parts parts = {}; ///< of the work that it does
        bool operator==(const Row &) const = default;
    };

    /// How the wait for the service's verdict stands.
    struct Wait {
        QDateTime nextPoll; ///< invalid while a poll runs
        quint64 polls = 0; ///< that have begun
        quint64 failures = 0; ///< of those, the ones that brought no answer
    };

    /// The times of the rows are the clock's.
    explicit StepList(const platform::Clock &clock)
        : m_clock(clock)
    {
    }

    const QList<Row> &rows() const { return m_rows; }
    /// The row that runs; null if none does.
    const Row *running() const;
    /// Nothing, unless the step that runs is waiting for polls.
    const std::optional<Wait> &wait() const { return m_wait; }
    /// How long the step took, or has taken so far; whole seconds, 0 before it begins.
    qint64 duration(const Row &row) const;
    /// Whole seconds until the next poll; 0 if none is due.
    qint64 secondsToPoll() const;

    /// Begins the list of a new run.
    void plan(const QList<Step> &steps);
    /// The step runs now: the one before it is done, and what the run has passed by is skipped. A step that
    /// the plan lacks is put where the run stands.
    void begin(const Step &step);
    /// The run is over. The step that runs ends in that state, and what still waits is skipped. Of several
    /// endings of one run the first counts.
    void finish(StepState state);
    /// The step that runs has done so much of its work. Without one nothing happens.
    void advance(const Parts &parts);
    /// The next poll is due in so many seconds.
    void pollIn(double delay, quint64 failures);
    /// The poll that was due begins.
    void pollNow();

private:
    void endRunning(StepState state);
    void skipWaiting(qsizetype end);
    qsizetype placeOf(const Step &step);

    const platform::Clock &m_clock;
    QList<Row> m_rows;
    std::optional<Wait> m_wait;
};

} // namespace sealwright
