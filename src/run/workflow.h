#pragma once

#include "run/run.h"
#include "run/step.h"

namespace sealwright {

/// The steps that people are shown before a run begins: what the window's list starts with.
[[nodiscard]] QList<Step> planOf(const Workflow &workflow);

/// Takes a run through its workflow. This is the one place that marks a step, asks for a cancel, reports a
/// failure and gives the folder of a failed run its name.
class Driver : public std::enable_shared_from_this<Driver> {
public:
    Driver(RunPtr run, Workflow workflow)
        : m_run(std::move(run))
        , m_workflow(std::move(workflow))
    {
    }

    /// How the latest `proceed` has left the run.
    enum class State { atWork, waits, stopped, failed, ended };

    /// Begins, on a worker. Main thread.
    void start();
    /// Takes step after step, until the run waits or is over. Worker thread.
    State proceed();

private:
    bool perform(const Step &row);
    bool runStep(const Step &step);
    bool beginWait(const Step &step);
    bool waitAgain(const Step &step, double seconds);
    void arm(double seconds);
    bool goOn(const Step &step);
    bool fail(const Failure &failure);
    bool end(State state);

    const RunPtr m_run;
    const Workflow m_workflow;
    qsizetype m_next = 0;
    bool m_isWaiting = false; ///< the step that is next has begun its wait
    State m_state = State::atWork;
};

} // namespace sealwright
