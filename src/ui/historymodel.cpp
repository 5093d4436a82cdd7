#include "ui/historymodel.h"

#include "ui/runsign.h"

#include <QApplication>
#include <QFontMetrics>
#include <QPalette>
#include <QPixmapCache>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

StepState stateOf(const QString &status)
{
    if (status == "success"_L1)
        return StepState::done;
    return status == "in progress"_L1 ? StepState::running : StepState::failed;
}

/// Drawn once for each state and palette: a table asks for each row that it shows.
QVariant signOf(const QString &status)
{
    const QPalette palette = QApplication::palette();
    const int side = QFontMetrics(QApplication::font()).height();
    const StepState state = stateOf(status);
    const QString key = u"history-%1-%2-%3"_s.arg(int(state)).arg(side).arg(palette.cacheKey());
    QPixmap picture;
    if (!QPixmapCache::find(key, &picture)) {
        picture = runsign::pixmap(state, palette, side, qApp->devicePixelRatio());
        QPixmapCache::insert(key, picture);
    }
    return picture;
}

} // namespace

void HistoryModel::take(const QList<HistoryEntry> &entries)
{
    QList<HistoryEntry> fresh;
    for (const HistoryEntry &entry : entries) {
        const auto known = m_places.constFind(entry.identifier);
        if (known == m_places.cend()) {
            m_places.insert(entry.identifier, m_entries.size() + fresh.size());
            fresh.append(entry);
        } else if (*known < m_entries.size() && m_entries.at(*known) != entry) {
            m_entries[*known] = entry;
            Q_EMIT dataChanged(index(int(*known), 0), index(int(*known), identifier));
        }
    }
    if (fresh.isEmpty())
        return;
    const auto first = int(m_entries.size());
    beginInsertRows({}, first, first + int(fresh.size()) - 1);
    m_entries.append(fresh);
    endInsertRows();
}

int HistoryModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_entries.size());
}

int HistoryModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : identifier + 1;
}

const QString &HistoryModel::text(const HistoryEntry &entry, int column)
{
    switch (column) {
    case date:
        return entry.date;
    case item:
        return entry.item;
    case status:
        return entry.status;
    case message:
        return entry.message;
    default:
        return entry.identifier;
    }
}

QVariant HistoryModel::data(const QModelIndex &index, int role) const
{
    if (role == Qt::DecorationRole && index.column() == status)
        return signOf(m_entries.at(index.row()).status);
    const bool isText = role == Qt::DisplayRole || role == Qt::ToolTipRole;
    if (!isText || !checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    return text(m_entries.at(index.row()), index.column());
}

QVariant HistoryModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    const QStringList headings{tr("Date"), tr("Item"), tr("Status"), tr("Message"), tr("Identifier")};
    return headings.value(section);
}

SortedHistory::SortedHistory(HistoryModel &history, QObject *parent)
    : QSortFilterProxyModel(parent)
    , m_history(history)
{
    constexpr int allColumns = -1;
    setSourceModel(&history);
    setFilterKeyColumn(allColumns);
    setFilterCaseSensitivity(Qt::CaseInsensitive);
}

bool SortedHistory::lessThan(const QModelIndex &left, const QModelIndex &right) const
{
    return HistoryModel::text(m_history.entry(left.row()), left.column())
        < HistoryModel::text(m_history.entry(right.row()), right.column());
}

} // namespace sealwright
