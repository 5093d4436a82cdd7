#pragma once

#include "document/controls.h"
#include "ui/historyentries.h"

#include <QWidget>

class QBoxLayout;
class QLineEdit;
class QPushButton;
class QSortFilterProxyModel;
class QTableView;

namespace sealwright {

class HistoryModel;
class MainWinController;

/// The account's submissions that this document has asked for, as a table that is sorted and searched, and
/// what can be had for each: what the service has on record, its log, its identifier, and the ticket where
/// the item is at hand. It reads what the log gets; the log keeps it as it was printed. Main thread.
class HistoryPane : public QWidget {
    Q_OBJECT

public:
    explicit HistoryPane(MainWinController &document, QWidget *parent = nullptr);

Q_SIGNALS:
    /// Submissions have come into the table.
    void told();

private:
    void setUpTable();
    QWidget *makeButtons();
    QPushButton *makeButton(const QString &name, const QString &title, const QString &toolTip,
                            void (HistoryPane::*press)());
    void nameItems(QList<HistoryEntry> &entries) const;
    void heedLog(const LogText::Run &run);
    void offerWhatCanBeDone();
    QString selectedIdentifier() const;
    QString selectedItem() const;
    void showReport();
    void openLog();
    void openLogOnceToldOf(const QString &record);
    void copyIdentifier();
    void staple();

    MainWinController &m_document;
    HistoryModel *m_history;
    QSortFilterProxyModel *m_shown;
    QLineEdit *m_search;
    QTableView *m_table;
    QPushButton *m_report = nullptr;
    QPushButton *m_log = nullptr;
    QPushButton *m_copy = nullptr;
    QPushButton *m_staple = nullptr;
    QString m_wantedLog; ///< the identifier whose log is opened when the service has told where it is
};

} // namespace sealwright
