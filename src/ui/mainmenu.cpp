#include "ui/mainmenu.h"

#include "app/appdelegate.h"
#include "platform/applicationhost.h"
#include "ui/editcommands.h"
#include "ui/findbar.h"
#include "ui/framewindow.h"
#include "ui/icons.h"
#include "ui/keychainwindow.h"
#include "ui/menuitems.h"
#include "ui/preferenceswindow.h"
#include "ui/settingrows.h"
#include "ui/shown.h"
#include "ui/widgetwindow.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QShortcut>

using namespace Qt::StringLiterals;

namespace sealwright {

using icons::Command;

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
    QMenu &file = addMenu(tr("&File"), u"fileMenu"_s);
    addNewItems(file);
    file.addSeparator();
    addWorkflows(file);
    file.addSeparator();
    addCloseItems(file);
    file.addSeparator();
    addItem(file, tr("Sa&ve Log As…"), QKeySequence(u"Ctrl+S"_s), [this] {
        if (!m_frame.selected().hasSheet())
            m_frame.selected().saveLog();
    })->setIcon(icons::of(Command::save));
    addCommand(file, tr("Page Set&up…"), QKeySequence(u"Ctrl+Shift+P"_s), Action::doRunPageLayout)
        ->setIcon(icons::of(Command::pageSetup));
    addCommand(file, tr("&Print Log…"), QKeySequence(u"Ctrl+P"_s), Action::doPrint)
        ->setIcon(icons::of(Command::print));
    file.addSeparator();
    addItem(file, tr("&Quit"), QKeySequence(u"Ctrl+Q"_s), [this] {
        document().host().application.terminate();
    })->setIcon(icons::of(Command::quit));
}

void MainMenu::addNewItems(QMenu &menu)
{
    const auto add = [&](const QString &text, const QKeySequence &shortcut, int tag, Command picture) {
        QAction *const item =
            addItem(menu, text, shortcut, [this, tag] { document().appDelegate().newDocument(tag); });
        item->setData(tag);
        item->setIcon(icons::of(picture));
    };
    add(tr("&New"), QKeySequence(u"Ctrl+N"_s), asTheDesktopLikes, Command::newDocument);
    add(tr("New &Window"), QKeySequence(u"Ctrl+Shift+N"_s), asSeparateWindow, Command::newWindow);
    add(tr("New &Tab"), QKeySequence(u"Ctrl+T"_s), asTab, Command::newTab);
}

void MainMenu::addWorkflows(QMenu &menu)
{
    QAction *const submit =
        addCommand(menu, tr("&Submit…"), QKeySequence(u"Ctrl+Return"_s), Action::doSubmit);
    submit->setIcon(icons::of(Command::submit));
    connect(submit, &QAction::triggered, this, &MainMenu::submitDroppedItem);
    addCommand(menu, tr("Si&gn Only…"), QKeySequence(u"Ctrl+Shift+Return"_s), Action::doSignOnly)
        ->setIcon(icons::of(Command::sign));
    // The button of that name has this key; two owners of one key would each keep it from the other.
    addCommand(menu, tr("Staple &Only…\tCtrl+O"), {}, Action::doStapleOnly)
        ->setIcon(icons::of(Command::staple));
    addCommand(menu, tr("Go On Wa&iting…"), {}, Action::doGoOnWaiting)
        ->setIcon(icons::of(Command::goOnWaiting));
    addAgainItem(menu);
    addCommand(menu, tr("C&ancel\tCtrl+."), {}, Action::doCancel)->setIcon(icons::of(Command::cancel));
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
        addItem(menu, tr("Submit Again"), QKeySequence(u"Ctrl+R"_s), [this, present, isPossible] {
            if (isPossible())
                document().perform(present->action);
        });
    item->setObjectName(u"doAgainMenuItem"_s);
    item->setIcon(icons::of(Command::repeat));
    offerWhileOpen(menu, *item, isPossible);
    connect(&menu, &QMenu::aboutToShow, item, [item, present] { item->setText(shown(present->title)); });
}

void MainMenu::addCloseItems(QMenu &menu)
{
    addItem(menu, tr("&Close"), QKeySequence(u"Ctrl+W"_s), [this] {
        m_frame.selected().performClose();
    })->setIcon(icons::of(Command::close));
    addCommand(menu, tr("Close All Ta&bs"), QKeySequence(u"Ctrl+Shift+W"_s), Action::doCloseWindow);
    addItem(menu, tr("Close A&ll"), QKeySequence(u"Ctrl+Alt+W"_s),
            [this] { document().appDelegate().doCloseAll(); });
}

// Edit

void MainMenu::addEditMenu()
{
    QMenu &edit = addMenu(tr("&Edit"), u"editMenu"_s);
    new EditCommands(m_frame, edit);
    edit.addSeparator();
    addFindItems(edit);
    addCommand(edit, tr("C&lear Log"), QKeySequence(u"Ctrl+K"_s), Action::doClearStatus)
        ->setIcon(icons::of(Command::clear));
    edit.addSeparator();
    addDefaultsItems(edit);
    edit.addSeparator();
    addItem(edit, tr("Settin&gs…"), QKeySequence(u"Ctrl+,"_s), [this] {
        PreferencesWindow::present(
            document().host().preferences,
            KeychainTools(document().host(), document().appDelegate().keychainProgram()));
    })->setIcon(icons::of(Command::settings));
}

void MainMenu::addFindItems(QMenu &menu)
{
    const auto findBar = [this]() -> FindBar & { return m_frame.selected().page().findBar(); };
    addItem(menu, tr("&Find…"), QKeySequence(u"Ctrl+F"_s), [findBar] {
        findBar().open();
    })->setIcon(icons::of(Command::find));
    addItem(menu, tr("Find &Next"), QKeySequence(u"F3"_s), [findBar] {
        findBar().findNext();
    })->setIcon(icons::of(Command::findNext));
    addItem(menu, tr("Find Pre&vious"), QKeySequence(u"Shift+F3"_s), [findBar] {
        findBar().findPrevious();
    })->setIcon(icons::of(Command::findPrevious));
}

void MainMenu::addDefaultsItems(QMenu &menu)
{
    addCommand(menu, tr("&Set Document Defaults…"), {}, Action::doSetDocumentDefaults);
    addItem(menu, tr("&Reset Document Defaults…"), {},
            [this] { document().appDelegate().doResetDocumentDefaults(); });
}

// The account at the service

void MainMenu::addAccountMenu()
{
    QMenu &account = addMenu(tr("&Account"), u"accountMenu"_s);
    addCommand(account, tr("Fetch &History"), QKeySequence(u"Ctrl+H"_s), Action::doFetchHistory)
        ->setIcon(icons::of(Command::history));
    account.addSeparator();
    addCommand(account, tr("Info for the &Last Upload"), QKeySequence(u"Ctrl+I"_s),
               Action::doInfoForUUIDOfLastUpload)
        ->setIcon(icons::of(Command::info));
    addCommand(account, tr("Info for the UUID on the &Clipboard"), QKeySequence(u"Ctrl+Shift+I"_s),
               Action::doInfoForUUIDOnClipboard);
    addCommand(account, tr("Info for the UUID in a &File…"), {}, Action::doInfoForUUIDInFile);
    account.addSeparator();
    addCommand(account, tr("Choose &Provider Short Name…"), {}, Action::doListProviderShortnames);
    addKeychainItems(account);
}

/// Only where the keychain is the tool root's: others have programs of their own.
void MainMenu::addKeychainItems(QMenu &account)
{
    QAction *const separator = account.addSeparator();
    QAction *const setUp = addItem(account, tr("Set &Up…"), {}, [this] {
        if (!m_frame.selected().hasSheet())
            m_frame.selected().beginSetup(SetupRoad::practice);
    });
    QAction *const keychain =
        addItem(account, tr("&Keychain…"), {}, [this] { KeychainWindow::present(document().appDelegate()); });
    setUp->setIcon(icons::of(Command::setUp));
    keychain->setIcon(icons::of(Command::keychain));
    connect(&account, &QMenu::aboutToShow, this, [this, separator, setUp, keychain] {
        for (QAction *const item : {separator, setUp, keychain})
            item->setVisible(!document().appDelegate().keychainProgram().isEmpty());
    });
}

// Window and help

void MainMenu::addWindowMenu()
{
    QMenu &window = addMenu(tr("&Window"), u"windowMenu"_s);
    window.addActions(m_frame.actions());
    window.addAction(tr("M&erge All Windows"), &m_frame, &FrameWindow::mergeAllFrames);
}

void MainMenu::addHelpMenu()
{
    QMenu &help = addMenu(tr("&Help"), u"helpMenu"_s);
    addCommand(help, tr("&App-Specific Password"), {}, Action::doAppPassHelp)
        ->setIcon(icons::of(Command::help));
    addCommand(help, tr("&Provider Short Name"), {}, Action::doTeamProviderHelp);
    addCommand(help, tr("&Extra Entitlements"), {}, Action::doExtraEntitlementsHelp);
    addCommand(help, tr("&Disk Image Options"), {}, Action::doDropDMGHelp);
    help.addSeparator();
    addItem(help, tr("&Website"), {}, [this] {
        document().appDelegate().doVisitOurWebsite();
    })->setIcon(icons::of(Command::website));
    addItem(help, tr("Users' &Forum"), {}, [this] {
        document().appDelegate().doShowUsersForum();
    })->setIcon(icons::of(Command::forum));
    addItem(help, tr("&Send Us Email"), {}, [this] {
        document().appDelegate().doSendUsEmail();
    })->setIcon(icons::of(Command::mail));
    help.addSeparator();
    addItem(help, tr("A&bout Sealwright"), {}, [this] {
        document().appDelegate().doShowAboutPanel();
    })->setIcon(icons::of(Command::about));
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

} // namespace sealwright
