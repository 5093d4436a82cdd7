#pragma once

#include <QObject>

class FrameWindow;
class MainWinController;
class QKeySequence;
class QMenu;
enum class Action;

/// The menu bar of a frame. What concerns a document goes to the one whose page shows.
class MainMenu : public QObject {
    Q_OBJECT

public:
    /// Fills the frame's menu bar, and lives as long as the frame.
    explicit MainMenu(FrameWindow &frame);

private:
    void addFileMenu();
    void addWindowMenu();
    /// An item that makes a new document.
    void addNew(QMenu &menu, const QString &text, const QKeySequence &shortcut, int tag);
    /// An item that the document carries out.
    void addCommand(QMenu &menu, const QString &text, const QKeySequence &shortcut, Action action);
    bool isOffered(Action action) const;
    MainWinController &document() const;

    FrameWindow &m_frame;
};
