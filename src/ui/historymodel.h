#pragma once

#include "ui/historyentries.h"

#include <QAbstractTableModel>
#include <QHash>
#include <QSortFilterProxyModel>

namespace sealwright {

/// The submissions of the account that have been asked for, each once. Main thread.
class HistoryModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { date, item, status, message, identifier };

    using QAbstractTableModel::QAbstractTableModel;

    /// Adds those that are new, and what is news of the others.
    void take(const QList<HistoryEntry> &entries);
    const HistoryEntry &entry(int row) const { return m_entries.at(row); }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// What stands in that column of the entry.
    [[nodiscard]] static const QString &text(const HistoryEntry &entry, int column);

private:
    QList<HistoryEntry> m_entries;
    QHash<QString, qsizetype> m_places; ///< of the identifiers
};

/// They, sorted and searched in all columns. Compares the texts themselves: thousands of rows are sorted
/// while a person waits. Main thread.
class SortedHistory : public QSortFilterProxyModel {
    Q_OBJECT

public:
    /// Of a history that outlives it.
    explicit SortedHistory(HistoryModel &history, QObject *parent = nullptr);

protected:
    bool lessThan(const QModelIndex &left, const QModelIndex &right) const override;

private:
    const HistoryModel &m_history;
};

} // namespace sealwright
