#pragma once

#include <QKeySequence>
#include <QObject>

#include <functional>

class QAction;
class QMenu;

namespace sealwright {

class FrameWindow;
class MainWinController;
enum class Action;

/// The menu bar of a frame. What concerns a document goes to the one whose page shows.
class MainMenu : public QObject {
    Q_OBJECT

public:
    /// Fills the frame's menu bar, and lives as long as the frame.
    explicit MainMenu(FrameWindow &frame);

private:
    void addFileMenu();
    void addNewItems(QMenu &menu);
    void addWorkflows(QMenu &menu);
    void submitDroppedItem();
    void addAgainItem(QMenu &menu);
    void addCloseItems(QMenu &menu);
    void addEditMenu();
    void addFindItems(QMenu &menu);
    void addDefaultsItems(QMenu &menu);
    void addAccountMenu();
    void addKeychainItems(QMenu &account);
    void addWindowMenu();
    void addHelpMenu();
    void showHelp(QMenu &all);

    QMenu &addMenu(const QString &title, const QString &name);
    /// An item that the document carries out. While it cannot, the item is off when the menu shows, and its
    /// shortcut does nothing.
    QAction *addCommand(QMenu &menu, const QString &text, const QKeySequence &shortcut, Action action);
    /// An item for the frame or the application.
    QAction *addItem(QMenu &menu, const QString &text, const QKeySequence &shortcut,
                     std::function<void()> perform);
    bool isOffered(Action action) const;
    MainWinController &document() const;

    FrameWindow &m_frame;
};

} // namespace sealwright
