#pragma once

#include "document/steplist.h"
#include "platform/window.h"
#include "ui/theme.h"

#include <QString>

namespace sealwright {

/// How a document's latest run stands, for people who look at it later.
struct RunOutcome {
    enum class Kind { none, waiting, notarized, isSigned, refused, failed, cancelled };

    Kind kind = Kind::none;
    QString title;
    QString sentence; ///< the one that matters; may be empty

    bool operator==(const RunOutcome &) const = default;
};

/// What a run has said of itself beside its steps.
struct LastWords {
    QString item; ///< its file name
    QString alertTitle; ///< of the latest sheet; empty if there was none
    QString alertText;
    QString errorLine; ///< the latest error of the log, without the time
    QString finding = {}; ///< what the service found wrong, in a sentence; empty if it found nothing
};

/// The first error that the service found, and how many more there are. `issues` is its JSON array; pure.
[[nodiscard]] QString findingIn(const QString &issues);
/// Nothing while a run goes on, but for the wait for the verdict. Pure.
[[nodiscard]] RunOutcome outcomeOf(const StepList &steps, const LastWords &words);
[[nodiscard]] theme::Meaning meaningOf(RunOutcome::Kind kind);
/// The state of a step whose sign the outcome has.
[[nodiscard]] StepState stateOf(RunOutcome::Kind kind);
/// A line of the log without the time that it begins with.
[[nodiscard]] QString withoutTime(QStringView line);
/// How many characters of the line are its time, with what stands between it and the rest; 0 if it has none.
[[nodiscard]] qsizetype lengthOfTime(QStringView line);

} // namespace sealwright
