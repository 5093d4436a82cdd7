#include "ui/mainmenu.h"

#include "app/appdelegate.h"
#include "platform/applicationhost.h"
#include "ui/editcommands.h"
#include "ui/findbar.h"
#include "ui/framewindow.h"
#include "ui/menuitems.h"
#include "ui/preferenceswindow.h"
#include "ui/settingrows.h"
#include "ui/widgetwindow.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QShortcut>

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
    addEditMenu();
    addAccountMenu();
    addWindowMenu();
    addHelpMenu();
}

// File

void MainMenu::addFileMenu()
{
    QMenu &file = addMenu(u"&File"_s, u"fileMenu"_s);
    addNewItems(file);
    file.addSeparator();
    addWorkflows(file);
    file.addSeparator();
    addCloseItems(file);
    file.addSeparator();
    addItem(file, tr("Sa&ve Log As…"), QKeySequence(u"Ctrl+S"_s), [this] {
        if (!m_frame.selected().hasSheet())
            m_frame.selected().saveLog();
    });
    addCommand(file, u"Page Set&up…"_s, QKeySequence(u"Ctrl+Shift+P"_s), Action::doRunPageLayout);
    addCommand(file, u"&Print Log…"_s, QKeySequence(u"Ctrl+P"_s), Action::doPrint);
    file.addSeparator();
    addItem(file, u"&Quit"_s, QKeySequence(u"Ctrl+Q"_s),
            [this] { document().host().application.terminate(); });
}

void MainMenu::addNewItems(QMenu &menu)
{
    const auto add = [&](const QString &text, const QKeySequence &shortcut, int tag) {
        QAction *const item =
            addItem(menu, text, shortcut, [this, tag] { document().appDelegate().newDocument(tag); });
        item->setData(tag);
    };
    add(u"&New"_s, QKeySequence(u"Ctrl+N"_s), asTheDesktopLikes);
    add(u"New &Window"_s, QKeySequence(u"Ctrl+Shift+N"_s), asSeparateWindow);
    add(u"New &Tab"_s, QKeySequence(u"Ctrl+T"_s), asTab);
}

void MainMenu::addWorkflows(QMenu &menu)
{
    QAction *const submit = addCommand(menu, u"&Submit…"_s, QKeySequence(u"Ctrl+Return"_s), Action::doSubmit);
    connect(submit, &QAction::triggered, this, &MainMenu::submitDroppedItem);
    addCommand(menu, u"Si&gn Only…"_s, QKeySequence(u"Ctrl+Shift+Return"_s), Action::doSignOnly);
    // The button of that name has this key; two owners of one key would each keep it from the other.
    addCommand(menu, u"Staple &Only…\tCtrl+O"_s, {}, Action::doStapleOnly);
    addCommand(menu, u"Go On Wa&iting…"_s, {}, Action::doGoOnWaiting);
    addAgainItem(menu);
    addCommand(menu, u"C&ancel\tCtrl+."_s, {}, Action::doCancel);
}

/// While a dropped item waits the menu's item is off, but its key goes on standing for the button.
void MainMenu::submitDroppedItem()
{
    if (document().submitAppButton.action() == Action::doDirectSubmit && !m_frame.selected().hasSheet())
        m_frame.selected().page().pressPrimaryButton();
}

void MainMenu::addAgainItem(QMenu &menu)
{
    const auto present = std::make_shared<AppDelegate::AgainItem>();
    const auto isPossible = [this, present] {
        document().appDelegate().menuNeedsUpdate(*present);
        return present->action != Action::none && isOffered(present->action);
    };
    QAction *const item =
        addItem(menu, u"Submit Again"_s, QKeySequence(u"Ctrl+R"_s), [this, present, isPossible] {
            if (isPossible())
                document().perform(present->action);
        });
    item->setObjectName(u"doAgainMenuItem"_s);
    offerWhileOpen(menu, *item, isPossible);
    connect(&menu, &QMenu::aboutToShow, item, [item, present] { item->setText(present->title); });
}

void MainMenu::addCloseItems(QMenu &menu)
{
    addItem(menu, u"&Close"_s, QKeySequence(u"Ctrl+W"_s), [this] { m_frame.selected().performClose(); });
    addCommand(menu, u"Close All Ta&bs"_s, QKeySequence(u"Ctrl+Shift+W"_s), Action::doCloseWindow);
    addItem(menu, u"Close A&ll"_s, QKeySequence(u"Ctrl+Alt+W"_s),
            [this] { document().appDelegate().doCloseAll(); });
}

// Edit

void MainMenu::addEditMenu()
{
    QMenu &edit = addMenu(u"&Edit"_s, u"editMenu"_s);
    new EditCommands(m_frame, edit);
    edit.addSeparator();
    addFindItems(edit);
    addCommand(edit, u"C&lear Log"_s, QKeySequence(u"Ctrl+K"_s), Action::doClearStatus);
    edit.addSeparator();
    addDefaultsItems(edit);
    edit.addSeparator();
    addItem(edit, u"Settin&gs…"_s, QKeySequence(u"Ctrl+,"_s),
            [this] { PreferencesWindow::present(document().host().preferences); });
}

void MainMenu::addFindItems(QMenu &menu)
{
    const auto findBar = [this]() -> FindBar & { return m_frame.selected().page().findBar(); };
    addItem(menu, u"&Find…"_s, QKeySequence(u"Ctrl+F"_s), [findBar] { findBar().open(); });
    addItem(menu, u"Find &Next"_s, QKeySequence(u"F3"_s), [findBar] { findBar().findNext(); });
    addItem(menu, u"Find Pre&vious"_s, QKeySequence(u"Shift+F3"_s), [findBar] { findBar().findPrevious(); });
}

void MainMenu::addDefaultsItems(QMenu &menu)
{
    addCommand(menu, u"&Set Document Defaults…"_s, {}, Action::doSetDocumentDefaults);
    addItem(menu, u"&Reset Document Defaults…"_s, {},
            [this] { document().appDelegate().doResetDocumentDefaults(); });
}

// The account at the service

void MainMenu::addAccountMenu()
{
    QMenu &account = addMenu(u"&Account"_s, u"accountMenu"_s);
    addCommand(account, u"Fetch &History"_s, QKeySequence(u"Ctrl+H"_s), Action::doFetchHistory);
    account.addSeparator();
    addCommand(account, u"Info for the &Last Upload"_s, QKeySequence(u"Ctrl+I"_s),
               Action::doInfoForUUIDOfLastUpload);
    addCommand(account, u"Info for the UUID on the &Clipboard"_s, QKeySequence(u"Ctrl+Shift+I"_s),
               Action::doInfoForUUIDOnClipboard);
    addCommand(account, u"Info for the UUID in a &File…"_s, {}, Action::doInfoForUUIDInFile);
    account.addSeparator();
    addCommand(account, u"Choose &Provider Short Name…"_s, {}, Action::doListProviderShortnames);
}

// Window and help

void MainMenu::addWindowMenu()
{
    QMenu &window = addMenu(u"&Window"_s, u"windowMenu"_s);
    window.addActions(m_frame.actions());
    window.addAction(u"M&erge All Windows"_s, &m_frame, &FrameWindow::mergeAllFrames);
}

void MainMenu::addHelpMenu()
{
    QMenu &help = addMenu(u"&Help"_s, u"helpMenu"_s);
    addCommand(help, u"&App-Specific Password"_s, {}, Action::doAppPassHelp);
    addCommand(help, u"&Provider Short Name"_s, {}, Action::doTeamProviderHelp);
    addCommand(help, u"&Extra Entitlements"_s, {}, Action::doExtraEntitlementsHelp);
    addCommand(help, u"&Disk Image Options"_s, {}, Action::doDropDMGHelp);
    help.addSeparator();
    addItem(help, u"&Website"_s, {}, [this] { document().appDelegate().doVisitOurWebsite(); });
    addItem(help, u"Users' &Forum"_s, {}, [this] { document().appDelegate().doShowUsersForum(); });
    addItem(help, u"&Send Us Email"_s, {}, [this] { document().appDelegate().doSendUsEmail(); });
    help.addSeparator();
    addItem(help, u"A&bout Sealwright"_s, {}, [this] { document().appDelegate().doShowAboutPanel(); });
    auto *const key = new QShortcut(QKeySequence::HelpContents, &m_frame);
    connect(key, &QShortcut::activated, this, [this, &help] { showHelp(help); });
}

/// The sheet about what has the keyboard focus; where there is none, the choice of all. While a workflow runs
/// it is the choice too: the end of the sheet would change the status word of the run.
void MainMenu::showHelp(QMenu &all)
{
    const Action help = settingrows::helpOn(m_frame.focusWidget());
    if (help != Action::none && isOffered(help) && !document().isBusy())
        return document().perform(help);
    m_frame.menuBar()->setActiveAction(all.menuAction());
    all.setActiveAction(all.actions().first());
}

// What the menus are made of

QMenu &MainMenu::addMenu(const QString &title, const QString &name)
{
    QMenu &menu = *m_frame.menuBar()->addMenu(title);
    menu.setObjectName(name);
    return menu;
}

QAction *MainMenu::addCommand(QMenu &menu, const QString &text, const QKeySequence &shortcut, Action action)
{
    QAction *const item = addItem(menu, text, shortcut, [this, action] {
        if (isOffered(action))
            document().perform(action);
    });
    offerWhileOpen(menu, *item, [this, action] { return isOffered(action); });
    return item;
}

QAction *MainMenu::addItem(QMenu &menu, const QString &text, const QKeySequence &shortcut,
                           std::function<void()> perform)
{
    return menu.addAction(text, shortcut, this, std::move(perform));
}

bool MainMenu::isOffered(Action action) const
{
    if (m_frame.selected().hasSheet())
        return false;
    return action == Action::doCancel ? document().canCancel() : document().validateMenuItem(action);
}

MainWinController &MainMenu::document() const
{
    return m_frame.selected().page().document();
}
