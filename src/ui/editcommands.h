#pragma once

#include <QObject>
#include <QPointer>

#include <functional>

class QAction;
class QKeySequence;
class QMenu;

namespace sealwright {

class FrameWindow;

/// The items of a frame's edit menu for the text in which the insertion point is or was last: on the page
/// that shows, or in its sheet while one is up. Lives as long as the menu.
class EditCommands : public QObject {
    Q_OBJECT

public:
    EditCommands(FrameWindow &frame, QMenu &menu);

private:
    QAction &add(QMenu &menu, const QString &text, const QKeySequence &shortcut, const char *slot,
                 const std::function<bool()> &isPossible);
    static bool canBePasted();
    QWidget *editor() const;
    bool hasSelection() const;
    bool isEditable() const;

    FrameWindow &m_frame;
    QPointer<QWidget> m_lastEditor; ///< a menu that is open has taken the focus from it
};

} // namespace sealwright
