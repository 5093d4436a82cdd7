#pragma once

#include "document/steplist.h"
#include "support/core.h"

#include <QStringList>

/// The list in words, a line for each step: "Sign contents: running".
[[nodiscard]] QStringList stepRows(const StepList &steps);

/// The same of a run all of whose steps have worked, by the names of the steps.
[[nodiscard]] QStringList allDone(const QStringList &names);
