#include "support/steprows.h"

using namespace Qt::StringLiterals;

namespace {

QString word(StepState state)
{
    switch (state) {
    case StepState::waiting:
        return u"waiting"_s;
    case StepState::running:
        return u"running"_s;
    case StepState::done:
        return u"done"_s;
    case StepState::failed:
        return u"failed"_s;
    case StepState::cancelled:
        return u"cancelled"_s;
    case StepState::skipped:
        return u"skipped"_s;
    }
    return {};
}

} // namespace

QStringList stepRows(const StepList &steps)
{
    QStringList lines;
    for (const StepList::Row &row : steps.rows())
        lines.append(stepName(row.step) + u": "_s + word(row.state));
    return lines;
}

QStringList allDone(const QStringList &names)
{
    QStringList lines;
    for (const QString &name : names)
        lines.append(name + u": done"_s);
    return lines;
}
