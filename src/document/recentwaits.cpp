#include "document/recentwaits.h"

#include "platform/preferences.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

const QString recentWaits = u"recentVerdictWaits"_s; // seconds, the latest last, with blanks between
constexpr qsizetype mostKept = 10;

QList<qint64> kept(const platform::Preferences &preferences)
{
    QList<qint64> waits;
    for (const QString &word : preferences.string(recentWaits).split(u' ', Qt::SkipEmptyParts)) {
        bool isNumber = false;
        const qint64 seconds = word.toLongLong(&isNumber);
        if (isNumber && seconds >= 0)
            waits.append(seconds);
    }
    return waits;
}

} // namespace

void recentwaits::remember(platform::Preferences &preferences, qint64 seconds)
{
    QList<qint64> waits = kept(preferences);
    waits.append(seconds);
    if (waits.size() > mostKept)
        waits.remove(0, waits.size() - mostKept);
    QStringList words;
    for (const qint64 wait : std::as_const(waits))
        words.append(QString::number(wait));
    preferences.setValue(recentWaits, words.join(u' '));
}

std::optional<recentwaits::Range> recentwaits::range(const platform::Preferences &preferences)
{
    const QList<qint64> waits = kept(preferences);
    if (waits.isEmpty())
        return std::nullopt;
    const auto [shortest, longest] = std::minmax_element(waits.cbegin(), waits.cend());
    return Range{*shortest, *longest};
}

} // namespace sealwright
