#pragma once

#include <QWidget>

class QTableWidget;

namespace sealwright {

class MainWinController;

/// What the notary service said of the document's item at the latest verdict. A click on a heading sorts, and
/// the selected rows can be copied.
class IssueTable : public QWidget {
    Q_OBJECT

public:
    explicit IssueTable(MainWinController &document, QWidget *parent = nullptr);

private:
    void showIssues();
    void copySelection() const;

    MainWinController &m_document;
    QTableWidget *m_table;
};

} // namespace sealwright
