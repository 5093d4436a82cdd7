#include "ui/mainmenu.h"

#include "app/appdelegate.h"
#include "platform/applicationhost.h"
#include "ui/framewindow.h"
#include "ui/widgetwindow.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>

using namespace Qt::StringLiterals;

namespace {

// The tags by which a new document's item says where it opens.
constexpr int asTheDesktopLikes = 0;
constexpr int asSeparateWindow = 1;
constexpr int asTab = 2;

} // namespace

MainMenu::MainMenu(FrameWindow &frame)
    : QObject(&frame)
    , m_frame(frame)
{
    addFileMenu();
    addWindowMenu();
}

void MainMenu::addFileMenu()
{
    QMenu &file = *m_frame.menuBar()->addMenu(u"&File"_s);
    addNew(file, u"&New"_s, QKeySequence(u"Ctrl+N"_s), asTheDesktopLikes);
    addNew(file, u"New &Window"_s, QKeySequence(u"Ctrl+Shift+N"_s), asSeparateWindow);
    addNew(file, u"New &Tab"_s, QKeySequence(u"Ctrl+T"_s), asTab);
    file.addSeparator();
    addCommand(file, u"&Submit…"_s, {}, Action::doSubmit);
    addCommand(file, u"C&ancel"_s, {}, Action::doCancel);
    file.addSeparator();
    file.addAction(u"&Close"_s, QKeySequence(u"Ctrl+W"_s), this,
                   [this] { m_frame.selected().requestClose(); });
    addCommand(file, u"Close All Ta&bs"_s, QKeySequence(u"Ctrl+Shift+W"_s), Action::doCloseWindow);
    file.addAction(u"&Quit"_s, QKeySequence(u"Ctrl+Q"_s), this,
                   [this] { document().host().application.terminate(); });
}

void MainMenu::addWindowMenu()
{
    QMenu &window = *m_frame.menuBar()->addMenu(u"&Window"_s);
    window.addActions(m_frame.actions());
    window.addAction(u"M&erge All Windows"_s, &m_frame, &FrameWindow::mergeAllFrames);
}

void MainMenu::addNew(QMenu &menu, const QString &text, const QKeySequence &shortcut, int tag)
{
    menu.addAction(text, shortcut, this, [this, tag] { document().appDelegate().newDocument(tag); });
}

void MainMenu::addCommand(QMenu &menu, const QString &text, const QKeySequence &shortcut, Action action)
{
    QAction *const item = menu.addAction(text, shortcut, this, [this, action] {
        if (isOffered(action)) // a shortcut does not open the menu first
            document().perform(action);
    });
    connect(&menu, &QMenu::aboutToShow, item, [this, item, action] { item->setEnabled(isOffered(action)); });
    connect(
        &menu, &QMenu::aboutToHide, item, [item] { item->setEnabled(true); }, Qt::QueuedConnection);
}

bool MainMenu::isOffered(Action action) const
{
    if (m_frame.selected().hasSheet())
        return false;
    switch (action) {
    case Action::doCancel:
        return document().canCancel();
    case Action::doCloseWindow:
        return m_frame.count() > 1;
    default:
        return document().validateMenuItem(action);
    }
}

MainWinController &MainMenu::document() const
{
    return m_frame.selected().page().document();
}
