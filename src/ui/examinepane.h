#pragma once

#include <QJsonObject>
#include <QTimer>
#include <QWidget>

class QLabel;
class QLineEdit;
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

private:
    void watchChoices();
    void lookSoon();
    void look();
    void take(const QByteArray &json, const QString &error);
    void addFindings(const QJsonObject &examination);
    void addCode(const QJsonObject &examination);
    [[nodiscard]] QTreeWidgetItem *bundleAbove(const QString &path) const;
    void filter(const QString &text);
    void reveal(QTreeWidgetItem *item);

    MainWinController &m_document;
    QLabel *m_summary;
    QLineEdit *m_search;
    QTreeWidget *m_tree;
    QTimer m_soon;
    QString m_item; ///< path of what has been looked at, or is being looked at
    quint64 m_looks = 0; ///< the number of the latest look
};

} // namespace sealwright
