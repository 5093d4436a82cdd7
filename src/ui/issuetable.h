#pragma once

#include <QWidget>

class QKeySequence;
class QPushButton;
class QTableWidget;
class QTableWidgetItem;

namespace sealwright {

class MainWinController;

/// What the notary service said of the document's item at the latest verdict. A click on a heading sorts, one
/// on a link opens it, and the selected rows can be copied, or all.
class IssueTable : public QWidget {
    Q_OBJECT

public:
    explicit IssueTable(MainWinController &document, QWidget *parent = nullptr);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void addAction(const QString &text, const QList<QKeySequence> &keys, void (IssueTable::*method)());
    void showIssues();
    void fitColumns();
    void fitRows();
    [[nodiscard]] QList<int> rowsToCopy() const;
    void copyRows();
    void openLink(const QTableWidgetItem *cell);
    void openLinkOfRow();

    MainWinController &m_document;
    QTableWidget *m_table;
    QPushButton *m_copy;
    bool m_isFitting = false;
    bool m_isChosen = false; ///< how wide the columns are
};

} // namespace sealwright
