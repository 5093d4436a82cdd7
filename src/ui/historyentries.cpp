#include "ui/historyentries.h"

#include <QStringTokenizer>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr qsizetype columns = 5;

/// All lines that are read of the reply.
QStringView readOf(QStringView reply)
{
    return reply.size() <= mostReadOfHistory ? reply
                                             : reply.left(reply.lastIndexOf(u'\n', mostReadOfHistory) + 1);
}

bool isRule(QStringView line)
{
    return line.startsWith(u'-')
        && std::all_of(line.begin(), line.end(), [](QChar sign) { return sign == u'-' || sign == u' '; });
}

/// Where the columns begin; empty if the line is no rule.
QList<qsizetype> columnsOf(QStringView line)
{
    QList<qsizetype> starts;
    if (!isRule(line))
        return starts;
    for (qsizetype place = 0; place < line.size(); ++place) {
        if (line.at(place) == u'-' && (place == 0 || line.at(place - 1) == u' '))
            starts.append(place);
    }
    return starts;
}

QString cell(QStringView line, const QList<qsizetype> &starts, qsizetype column)
{
    const qsizetype start = qMin(starts.at(column), line.size());
    const qsizetype end = column + 1 < starts.size() ? qMin(starts.at(column + 1), line.size()) : line.size();
    return line.mid(start, end - start).trimmed().toString();
}

} // namespace

QList<HistoryEntry> historyEntries(const QString &reply)
{
    QList<HistoryEntry> entries;
    QList<qsizetype> starts;
    for (const QStringView line : qTokenize(readOf(reply), u'\n')) {
        if (starts.size() != columns) {
            starts = columnsOf(line);
            continue;
        }
        const HistoryEntry entry{cell(line, starts, 0), cell(line, starts, 1), cell(line, starts, 2),
                                 cell(line, starts, 3), cell(line, starts, 4)};
        if (entry.identifier.isEmpty())
            break; // what stands behind the table
        entries.append(entry);
    }
    return entries;
}

} // namespace sealwright
