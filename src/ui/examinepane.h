#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QWidget>

class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace sealwright {

class ItemLook;
class MainWinController;

/// What a look at the document's item tells: the findings first, then all code, folded by bundle.
class ExaminePane : public QWidget {
    Q_OBJECT

public:
    ExaminePane(MainWinController &document, const ItemLook &look, QWidget *parent = nullptr);

    /// Shows an examination, as docs/scripting.md describes it.
    void setExamination(const QJsonObject &examination);
    /// Shows in what the item differs from an older one, as docs/scripting.md describes it.
    void setDifferences(const QString &old, const QJsonArray &differences);

    /// Has the item compared with an older one, or with what lies in that folder.
    void compareWith(const QString &old);

private:
    void askForOlder();
    void takeComparison(const QString &old, const QJsonObject &answer, const QString &error);
    void expect();
    void take(const QJsonObject &examination, const QString &error);
    void addFindings(const QJsonObject &examination);
    void addCode(const QJsonObject &examination);
    void filter(const QString &text);
    void showDetail(const QTreeWidgetItem *entry);
    void reveal(QTreeWidgetItem *item);

    MainWinController &m_document;
    const ItemLook &m_look;
    QLabel *m_summary;
    QLineEdit *m_search;
    QPushButton *m_compare;
    QTreeWidget *m_tree;
    QLabel *m_detail; ///< of the entry that is chosen
    QString m_item; ///< path of what has been looked at, or is being looked at
};

} // namespace sealwright
