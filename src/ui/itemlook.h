#pragma once

#include <QJsonObject>
#include <QObject>
#include <QTimer>

namespace sealwright {

class MainWinController;

/// Where the document's item lies now: where it was chosen, or, once a run has put that away, where the run
/// has left it. Empty without an item. Main thread.
[[nodiscard]] QString placeOfItem(const MainWinController &document);

/// The look at a document's item, by the program that reads files nobody vouches for. It begins by itself
/// when an item is chosen or dropped, and again when a choice changes that matters; nothing of the run
/// changes. All parts of the window that tell of the item's contents have them from here, so that it is
/// walked once. Main thread.
class ItemLook : public QObject {
    Q_OBJECT

public:
    explicit ItemLook(MainWinController &document, QObject *parent = nullptr);

    /// Whether there is a program that looks; without one, nothing ever begins.
    bool isPossible() const;
    /// Path of what has been looked at, or is being looked at; empty without an item.
    const QString &item() const { return m_item; }

Q_SIGNALS:
    void begun();
    /// The form is that of docs/scripting.md, with the `size` of all files in bytes; empty where there is no
    /// item, and where the error says why it could not be looked at.
    void ended(const QJsonObject &examination, const QString &error);

private:
    void watchChoices();
    void followItem();
    void lookSoon();
    void look();

    MainWinController &m_document;
    QTimer m_soon;
    QString m_item;
    quint64 m_looks = 0; ///< the number of the latest look
};

} // namespace sealwright
