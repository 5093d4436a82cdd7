#pragma once

#include <QObject>
#include <QPointer>

class QAction;
class QKeySequence;
class QMenu;

/// The items of an edit menu that concern the text in which the insertion point is or was last, in one
/// window. Lives as long as the menu.
class EditCommands : public QObject {
    Q_OBJECT

public:
    EditCommands(QWidget &window, QMenu &menu);

private:
    QAction *add(QMenu &menu, const QString &text, const QKeySequence &shortcut, const char *slot);
    void showWhatIsPossible();
    bool hasSelection() const;
    bool isEditable() const;

    QPointer<QWidget> m_editor; ///< a menu that is open has taken the focus from it
    QAction *m_cut;
    QAction *m_copy;
    QAction *m_paste;
    QAction *m_selectAll;
};
