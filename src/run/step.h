#pragma once

#include "run/live.h"

#include <QList>
#include <QString>

#include <variant>

namespace sealwright {

class Run;

/// The informative text of most failures: the explanation is in the logs.
inline constexpr QStringView seeTheLog = u"See the log for details.";

/// What becomes of the working folder after a failure.
enum class FolderFate {
    keepsItsName,
    isNamedFailed,
};

/// Whether a run that has failed has taken its wait for a verdict to its end.
enum class WaitFate {
    isOver,
    staysOpen, ///< the verdict is still to come, and another run may go on
};

/// Why a step ends its run. The step reports nothing by itself: the driver does, from this.
struct Failure {
    QString title; ///< of the alert; scripts know the failure's number by it
    QString logLine; ///< the full explanation
    FolderFate folder = FolderFate::isNamedFailed;
    QString text = seeTheLog.toString(); ///< of the alert
    WaitFate wait = WaitFate::isOver;
};

/// The step has worked.
struct Done { };
/// The step waits: it is to be run again, in so many seconds.
struct Again {
    double seconds;
};
/// The run has come to its end before its last step, and well.
struct EndsHere { };

using StepResult = std::variant<Done, Failure, Again, EndsHere>;

/// Whether a cancel is looked for behind a step.
enum class CancelTest {
    follows,
    isLeftOut, ///< a cancel in the gap behind the step stops nothing
};

/// Whether people see the step in the plan before it begins.
enum class InPlan { shown, hidden };

/// What a step has besides that waits for somebody.
struct Wait {
    /// Begins the wait; the seconds until the step runs for the first time.
    double (*begin)(Run &);
    /// What is logged before each further wait.
    QStringView line;
    /// What a cancel during the step makes of it.
    Failure (*whenCancelled)();
};

/// One row of a workflow: a name and a function of a run.
struct Step {
    QStringView name; ///< what people read; empty for one that they are not shown
    StepResult (*work)(Run &) = nullptr; ///< worker thread
    CancelTest cancelTest = CancelTest::follows;
    InPlan inPlan = InPlan::shown;
    /// Whether the step is wanted, asked when its turn comes; null for one that always is.
    bool (*isWanted)(Run &) = nullptr;
    /// The step that takes this one's place, asked when its turn comes; null for the step itself.
    const Step &(*chosen)(const LiveChoices &) = nullptr;
    const Wait *wait = nullptr; ///< null for a step that does not wait
    CancelOffer cancelOffer = CancelOffer::unchanged; ///< when the step, or its wait, begins
};

/// Steps are known by their names.
inline bool operator==(const Step &one, const Step &other)
{
    return one.name == other.name;
}

/// The steps of a run, in their order.
using Workflow = QList<Step>;

/// What people read for a step.
[[nodiscard]] inline QString stepName(const Step &step)
{
    return step.name.toString();
}

} // namespace sealwright
