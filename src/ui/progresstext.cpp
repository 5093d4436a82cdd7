#include "ui/progresstext.h"

#include "ui/shown.h"
#include "ui/steplistmodel.h"

#include <QCoreApplication>
#include <QLocale>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr qint64 bytesPerMegabyte = 1'000'000;
constexpr double bytesOfARate = 1e6;
constexpr qint64 secondsPerMinute = 60;

QString megabytes(const StepList::Parts &parts, qint64 seconds)
{
    const QString sizes = QCoreApplication::translate("Progress", "%1 of %2 MB")
                              .arg(parts.done / bytesPerMegabyte)
                              .arg((parts.all + bytesPerMegabyte - 1) / bytesPerMegabyte);
    if (seconds <= 0 || parts.done == 0)
        return sizes;
    const double rate = double(parts.done) / double(seconds) / bytesOfARate;
    return QCoreApplication::translate("Progress", "%1 at %2 MB/s")
        .arg(sizes, QLocale().toString(rate, 'f', rate < 10 ? 1 : 0));
}

qint64 minutes(qint64 seconds)
{
    return qMax<qint64>(1, (seconds + secondsPerMinute / 2) / secondsPerMinute);
}

} // namespace

QString progresstext::parts(const StepList::Parts &parts, qint64 seconds)
{
    if (parts.all <= 0)
        return {};
    return parts.unit == StepList::Parts::Unit::bytes
        ? megabytes(parts, seconds)
        : QCoreApplication::translate("Progress", "%1 of %2").arg(parts.done).arg(parts.all);
}

QString progresstext::present(const StepList &steps)
{
    const StepList::Row *const row = steps.running();
    if (!row)
        return {};
    if (steps.wait() && steps.wait()->nextPoll.isValid())
        return QCoreApplication::translate("Progress", "Next check in %1")
            .arg(durationText(steps.secondsToPoll()));
    const QString known = parts(row->parts, steps.duration(*row));
    return known.isEmpty()
        ? shown(stepName(row->step))
        : QCoreApplication::translate("Progress", "%1, %2").arg(shown(stepName(row->step)), known);
}

QString progresstext::recentWaits(const std::optional<recentwaits::Range> &range)
{
    if (!range)
        return {};
    const qint64 from = minutes(range->shortest);
    const qint64 to = minutes(range->longest);
    if (from == to)
        return from == 1
            ? QCoreApplication::translate("Progress", "Such waits took about a minute lately.")
            : QCoreApplication::translate("Progress", "Such waits took about %1 minutes lately.").arg(from);
    return QCoreApplication::translate("Progress", "Such waits took %1 to %2 minutes lately.")
        .arg(from)
        .arg(to);
}

} // namespace sealwright
