#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QTimer>
#include <QWidget>

class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace sealwright {

class MainWinController;

/// What a look at the document's item tells: the findings first, then all code, folded by bundle. It looks by
/// itself when an item is chosen or dropped, and again when a choice changes that matters; nothing of the run
/// changes.
class ExaminePane : public QWidget {
    Q_OBJECT

public:
    explicit ExaminePane(MainWinController &document, QWidget *parent = nullptr);

    /// Shows an examination, as docs/scripting.md describes it.
    void setExamination(const QJsonObject &examination);
    /// Shows in what the item differs from an older one, as docs/scripting.md describes it.
    void setDifferences(const QString &old, const QJsonArray &differences);

private:
    void askForOlder();
    void compareWith(const QString &old);
    void takeComparison(const QString &old, const QJsonObject &answer, const QString &error);
    void watchChoices();
    void lookSoon();
    void look();
    void take(const QJsonObject &examination, const QString &error);
    void addFindings(const QJsonObject &examination);
    void addCode(const QJsonObject &examination);
    void filter(const QString &text);
    void showDetail(const QTreeWidgetItem *entry);
    void reveal(QTreeWidgetItem *item);

    MainWinController &m_document;
    QLabel *m_summary;
    QLineEdit *m_search;
    QPushButton *m_compare;
    QTreeWidget *m_tree;
    QLabel *m_detail; ///< of the entry that is chosen
    QTimer m_soon;
    QString m_item; ///< path of what has been looked at, or is being looked at
    quint64 m_looks = 0; ///< the number of the latest look
};

} // namespace sealwright
