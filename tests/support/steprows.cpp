#include "support/steprows.h"

using namespace Qt::StringLiterals;

QStringList stepRows(const StepList &steps)
{
    QStringList lines;
    for (const StepList::Row &row : steps.rows())
        lines.append(stepName(row.step) + u": "_s + stateName(row.state));
    return lines;
}

QStringList allDone(const QStringList &names)
{
    QStringList lines;
    for (const QString &name : names)
        lines.append(name + u": done"_s);
    return lines;
}
