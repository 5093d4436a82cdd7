#include "windowtest.h"

#include "about/aboutcontroller.h"
#include "app/preferencekeys.h"
#include "document/documentcommands.h"
#include "platform/itempath.h"
#include "support/items.h"
#include "ui/findbar.h"
#include "ui/framewindow.h"
#include "ui/itempanel.h"
#include "ui/logview.h"
#include "ui/preferenceswindow.h"

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

class MainMenuTest : public WindowTest {
protected:
    MainMenuTest()
    {
        until([this] { return widget().isActiveWindow(); });
    }
    ~MainMenuTest() override
    {
        for (QWidget *const top : QApplication::topLevelWidgets()) {
            if (qobject_cast<PreferencesWindow *>(top))
                delete top;
        }
    }

    QMenu &menu(const QString &name) { return part<QMenu>(name); }

    /// The item with this text, without marked letters and keys, as it is when the menu opens.
    QAction &item(const QString &menuName, const QString &text)
    {
        QMenu &opened = menu(menuName);
        Q_EMIT opened.aboutToShow();
        for (QAction *const action : opened.actions()) {
            if (action->text().remove(u'&').section(u'\t', 0, 0) == text)
                return *action;
        }
        throw std::runtime_error("no such item: " + text.toStdString());
    }
    QAction &againItem()
    {
        Q_EMIT menu(u"fileMenu"_s).aboutToShow();
        for (QAction *const action : menu(u"fileMenu"_s).actions()) {
            if (action->objectName() == "doAgainMenuItem"_L1)
                return *action;
        }
        throw std::runtime_error("no again item");
    }
    /// Opens the menu by its letter, as a person does, and presses the item's letter.
    void choose(Qt::Key menuKey, const QString &menuName, Qt::Key itemKey)
    {
        QTest::keyClick(&widget(), menuKey, Qt::AltModifier);
        until([&] { return menu(menuName).isVisible(); });
        QTest::keyClick(&menu(menuName), itemKey);
        until([&] { return !menu(menuName).isVisible(); });
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers) { QTest::keyClick(&widget(), key, modifiers); }
    static QString focused()
    {
        const QWidget *const widget = QApplication::focusWidget(); // none while a window becomes active
        return widget ? widget->objectName() : QString();
    }
};

const QStringList guardedItems{u"Submit…"_s, u"Sign Only…"_s, u"Staple Only…"_s};
const QStringList guardedAccountItems{u"Fetch History"_s, u"Info for the Last Upload"_s,
                                      u"Info for the UUID on the Clipboard"_s,
                                      u"Info for the UUID in a File…"_s, u"Choose Provider Short Name…"_s};

} // namespace

// File

TEST_F(MainMenuTest, theItemsForNewDocumentsCarryTheirTags)
{
    EXPECT_EQ(item(u"fileMenu"_s, u"New"_s).data(), 0);
    EXPECT_EQ(item(u"fileMenu"_s, u"New Window"_s).data(), 1);
    EXPECT_EQ(item(u"fileMenu"_s, u"New Tab"_s).data(), 2);
    choose(Qt::Key_F, u"fileMenu"_s, Qt::Key_T);
    ASSERT_EQ(host.application().allControllers().size(), 2);
    EXPECT_EQ(window().frameWindow()->count(), 2);
}

TEST_F(MainMenuTest, eachMenuHasALetterAndEachItemALetterOfItsOwnOrAKey)
{
    QSet<QKeySequence> keys;
    for (const QAction *const top : part<QMenuBar>({}).actions()) {
        QSet<QString> letters;
        EXPECT_TRUE(top->text().contains(u'&')) << top->text().toStdString();
        for (const QAction *const action : top->menu()->actions()) {
            if (action->isSeparator() || action->objectName() == "doAgainMenuItem"_L1)
                continue;
            const QString letter = QKeySequence::mnemonic(action->text()).toString();
            EXPECT_FALSE(letter.isEmpty()) << action->text().toStdString();
            EXPECT_FALSE(letters.contains(letter)) << action->text().toStdString();
            letters.insert(letter);
            for (const QKeySequence &key : action->shortcuts()) {
                EXPECT_FALSE(keys.contains(key)) << key.toString().toStdString();
                keys.insert(key);
            }
        }
    }
}

TEST_F(MainMenuTest, guardedItemsAreOffWhileTheDocumentIsBusyAndWhileItHoldsADroppedItem)
{
    const auto areOn = [this] {
        QSet<bool> states;
        for (const QString &text : guardedItems)
            states.insert(item(u"fileMenu"_s, text).isEnabled());
        for (const QString &text : guardedAccountItems)
            states.insert(item(u"accountMenu"_s, text).isEnabled());
        states.insert(item(u"editMenu"_s, u"Set Document Defaults…"_s).isEnabled());
        EXPECT_EQ(states.size(), 1);
        return *states.begin();
    };
    EXPECT_TRUE(areOn());
    document().isBusy.set(true);
    EXPECT_FALSE(areOn());
    document().isBusy.set(false);
    document().commands().submit.prepareForDirectSubmit(QUrl::fromLocalFile(u"/somewhere/Foo.app"_s), {});
    EXPECT_FALSE(areOn());
    document().perform(Action::doCancelDirectSubmit);
    EXPECT_TRUE(areOn());
}

TEST_F(MainMenuTest, unguardedItemsAreOnWhateverTheDocumentDoes)
{
    document().isBusy.set(true);
    for (const QString &text : {u"New"_s, u"Close"_s, u"Close All"_s, u"Page Setup…"_s, u"Print Log…"_s})
        EXPECT_TRUE(item(u"fileMenu"_s, text).isEnabled()) << text.toStdString();
    EXPECT_TRUE(item(u"editMenu"_s, u"Reset Document Defaults…"_s).isEnabled());
    EXPECT_TRUE(item(u"editMenu"_s, u"Clear Log"_s).isEnabled());
    document().isBusy.set(false);
}

TEST_F(MainMenuTest, theShortcutOfAGuardedItemDoesNothingWhileItIsOff)
{
    document().isBusy.set(true);
    press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_FALSE(widget().findChild<ItemPanel *>());
    document().isBusy.set(false);
    press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(widget().findChild<ItemPanel *>());
    part<ItemPanel>({}).reject();
    until([this] { return !document().isBusy(); });
}

TEST_F(MainMenuTest, theThreeWorkflowsHaveTheirKeys)
{
    const QList<std::tuple<Qt::Key, Qt::KeyboardModifiers, QString>> keys{
        {Qt::Key_Return, Qt::ControlModifier, u"copy and submit"_s},
        {Qt::Key_Return, Qt::ControlModifier | Qt::ShiftModifier, u"sign"_s},
        {Qt::Key_O, Qt::ControlModifier, u"staple"_s},
    };
    for (const auto &[key, modifiers, message] : keys) {
        press(key, modifiers);
        until([this] { return widget().findChild<ItemPanel *>() != nullptr; });
        EXPECT_TRUE(part<ItemPanel>({}).windowTitle().contains(message))
            << part<ItemPanel>({}).windowTitle().toStdString();
        part<ItemPanel>({}).reject();
        until([this] { return !widget().findChild<ItemPanel *>(); });
    }
}

// The again item

TEST_F(MainMenuTest, withNothingToRepeatTheAgainItemReadsSubmitAgainAndIsOff)
{
    EXPECT_EQ(againItem().text(), u"Submit Again"_s);
    EXPECT_FALSE(againItem().isEnabled());
    Q_EMIT menu(u"fileMenu"_s).aboutToHide();
    press(Qt::Key_R, Qt::ControlModifier);
    EXPECT_FALSE(document().isBusy());
}

TEST_F(MainMenuTest, theAgainItemRepeatsWhatTheDocumentDidLast)
{
    const QList<std::pair<LastAction, QString>> titles{
        {submitAction, u"Submit Again"_s}, {stapleAction, u"Staple Again"_s}, {signAction, u"Sign Again"_s}};
    for (const auto &[action, title] : titles) {
        document().lastAction.set(action);
        EXPECT_EQ(againItem().text(), title);
        EXPECT_TRUE(againItem().isEnabled());
    }
    document().isBusy.set(true);
    EXPECT_FALSE(againItem().isEnabled());
    document().isBusy.set(false);
}

TEST_F(MainMenuTest, submitAgainSubmitsTheSameItemByItsKey)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    host.submitToTheEnd(host.item(u"Foo.app"_s));
    answer(u"OK"_s);
    press(Qt::Key_R, Qt::ControlModifier);
    EXPECT_TRUE(document().isBusy());
    host.settle();
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Notarized"_s, u"Foo - Submitted"_s, u"Foo.app"_s}));
    host.firePolls();
    answer(u"OK"_s);
}

TEST_F(MainMenuTest, submitAgainOfAnItemThatIsGoneSaysSoAndForgetsIt)
{
    document().originalAppletURL.set(QUrl::fromLocalFile(host.item(u"Gone.app"_s)));
    document().lastAction.set(submitAction);
    againItem().trigger();
    EXPECT_EQ(awaitSheet().text(), u"File Not Found"_s);
    answer(u"OK"_s);
    EXPECT_FALSE(againItem().isEnabled());
}

// Closing

TEST_F(MainMenuTest, closeAllClosesEveryWindowThatAgrees)
{
    const DocumentPtr busy = host.application().allControllers().first();
    busy->isBusy.set(true);
    host.application().newDocument(1);
    host.application().newDocument(2);
    EXPECT_EQ(host.application().allControllers().size(), 3);
    item(u"fileMenu"_s, u"Close All"_s).trigger();
    until([this] { return host.application().allControllers().size() == 1; });
    EXPECT_EQ(awaitSheet().text(), u"Continue Closing?"_s);
    answer(u"Close"_s);
    EXPECT_TRUE(host.application().allControllers().isEmpty());
}

TEST_F(MainMenuTest, closeAllTabsOfALoneWindowDoesNothing)
{
    item(u"fileMenu"_s, u"Close All Tabs"_s).trigger();
    host.settle();
    EXPECT_EQ(host.application().allControllers().size(), 1);
}

namespace {

struct ClosingRow {
    const char *situation;
    void (*prepare)(MainWinController &);
    QString warning;
    QString statusAfterCancel;
};

class Closing : public MainMenuTest, public testing::WithParamInterface<ClosingRow> { };

} // namespace

TEST_P(Closing, asksAndStaysOnCancel)
{
    GetParam().prepare(document());
    press(Qt::Key_W, Qt::ControlModifier);
    AlertBox &box = awaitSheet();
    EXPECT_EQ(box.text(), u"Continue Closing?"_s);
    EXPECT_EQ(box.informativeText(), GetParam().warning);
    EXPECT_EQ(host.applicationHost.beeps, 1);
    answer(u"Cancel"_s);
    host.settle();
    EXPECT_TRUE(widget().isVisible());
    EXPECT_EQ(document().statusString(), GetParam().statusAfterCancel);
}

TEST_P(Closing, asksAndGoesOnClose)
{
    GetParam().prepare(document());
    press(Qt::Key_W, Qt::ControlModifier);
    answer(u"Close"_s);
    EXPECT_TRUE(host.application().allControllers().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Questions, Closing,
    testing::Values(ClosingRow{"submitting",
                               [](MainWinController &document) {
                                   document.isBusy.set(true);
                                   document.isSubmitting.set(true);
                                   document.isPolling.set(true);
                               },
                               u"Closing now may abort the uploading of your app."_s, u"submitting"_s},
                    ClosingRow{"polling",
                               [](MainWinController &document) {
                                   document.isBusy.set(true);
                                   document.isPolling.set(true);
                               },
                               u"The app is not yet approved and stapled."_s, u"waiting"_s},
                    ClosingRow{"otherwiseBusy",
                               [](MainWinController &document) { document.isBusy.set(true); },
                               u"This window is busy."_s, u"interacting"_s}),
    [](const auto &row) { return row.param.situation; });

TEST_F(MainMenuTest, closingDuringAnUploadLetsTheToolGoOnUntilItEnds)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    host.tools.answer(u"altool--notarize-app"_s, {.output = FakeTools::uploadReply(), .hangs = true});
    document().commands().submit.submitURL(itempath::toUrl(host.item(u"Foo.app"_s)));
    host.runUntil([this] { return !host.tools.callsOf(u"altool--notarize-app"_s).isEmpty(); });
    press(Qt::Key_W, Qt::ControlModifier);
    answer(u"Close"_s);
    EXPECT_TRUE(host.application().allControllers().isEmpty());
    EXPECT_FALSE(host.workers().isIdle()) << "the tool still runs";
    host.tools.release(u"altool--notarize-app"_s);
    host.settle();
    EXPECT_TRUE(host.listing().contains(u"Foo - Submitted"_s));
    host.timers.forgetAll();
}

TEST_F(MainMenuTest, aScriptsCloseOfABusyDocumentShowsItsSheetAsForAPerson)
{
    document().isBusy.set(true);
    document().doCloseDocument(CloseSender::script);
    EXPECT_EQ(awaitSheet().text(), u"Continue Closing?"_s);
    answer(u"Close"_s);
    EXPECT_TRUE(host.application().allControllers().isEmpty());
}

TEST_F(MainMenuTest, cancelWhilePollingTakesTheTimerAwayAndTellsOfStapleOnly)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    host.submit(host.item(u"Foo.app"_s));
    ASSERT_EQ(host.timers.armed().size(), 1);
    press(Qt::Key_Period, Qt::ControlModifier);
    EXPECT_TRUE(awaitSheet().informativeText().contains(u"using the Staple Only button."_s));
    EXPECT_TRUE(host.timers.armed().isEmpty());
    answer(u"OK"_s);
    EXPECT_FALSE(part<QPushButton>(u"cancelButton"_s).isVisible());
    EXPECT_TRUE(part<QPushButton>(u"stapleOnlyButton"_s).isEnabled());
}

// Edit

TEST_F(MainMenuTest, cutCopyPasteAndSelectAllActOnTheTextWithTheInsertionPoint)
{
    auto &field = part<QLineEdit>(u"appleIDField"_s);
    field.setText(u"some text"_s);
    field.setFocus();
    item(u"editMenu"_s, u"Select All"_s).trigger();
    EXPECT_EQ(field.selectedText(), u"some text"_s);
    item(u"editMenu"_s, u"Cut"_s).trigger();
    EXPECT_EQ(field.text(), QString());
    EXPECT_EQ(document().appleIDField.stringValue(), QString());
    item(u"editMenu"_s, u"Paste"_s).trigger();
    EXPECT_EQ(field.text(), u"some text"_s);
    choose(Qt::Key_E, u"editMenu"_s, Qt::Key_A);
    EXPECT_EQ(field.selectedText(), u"some text"_s) << "an open menu has the focus for a while";
}

TEST_F(MainMenuTest, theLogCanBeSelectedAndCopiedButNotCut)
{
    document().logErrorMain(u"gone wrong"_s);
    part<LogView>(u"statusTextView"_s).setFocus();
    EXPECT_FALSE(item(u"editMenu"_s, u"Copy"_s).isEnabled());
    item(u"editMenu"_s, u"Select All"_s).trigger();
    EXPECT_TRUE(item(u"editMenu"_s, u"Copy"_s).isEnabled());
    EXPECT_FALSE(item(u"editMenu"_s, u"Cut"_s).isEnabled());
    EXPECT_FALSE(item(u"editMenu"_s, u"Paste"_s).isEnabled());
    item(u"editMenu"_s, u"Copy"_s).trigger();
    EXPECT_EQ(QApplication::clipboard()->text(), document().statusTextView.string());
}

TEST_F(MainMenuTest, findLooksInTheLogOfTheDocumentOnShow)
{
    document().logErrorMain(u"gone wrong"_s);
    document().logErrorMain(u"wrong again"_s);
    press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(focused(), u"findField"_s);
    QTest::keyClicks(QApplication::focusWidget(), u"wrong"_s);
    auto &log = part<LogView>(u"statusTextView"_s);
    const int first = log.textCursor().selectionStart();
    press(Qt::Key_F3, Qt::NoModifier);
    EXPECT_GT(log.textCursor().selectionStart(), first);
    press(Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_EQ(log.textCursor().selectionStart(), first);
}

TEST_F(MainMenuTest, theLogIsClearedByItsKey)
{
    document().logErrorMain(u"gone wrong"_s);
    press(Qt::Key_K, Qt::ControlModifier);
    EXPECT_EQ(document().statusTextView.string(), QString());
}

TEST_F(MainMenuTest, documentDefaultsThatAreSetAreSeenInANewDocumentAndResetBringsTheFactoryStateBack)
{
    document().appleIDField.setStringValue(u"other@example.com"_s);
    document().cameraCheckbox.setState(1);
    item(u"editMenu"_s, u"Set Document Defaults…"_s).trigger();
    EXPECT_EQ(awaitSheet().text(), u"Set New Document Defaults"_s);
    answer(u"Set"_s);
    press(Qt::Key_N, Qt::ControlModifier);
    until([this] { return host.application().allControllers().size() == 2; });
    EXPECT_EQ(part<QLineEdit>(u"appleIDField"_s).text(), u"other@example.com"_s);
    EXPECT_TRUE(document().cameraCheckbox.isOn());

    item(u"editMenu"_s, u"Reset Document Defaults…"_s).trigger();
    ASSERT_EQ(host.applicationHost.modalAlerts.size(), 1);
    EXPECT_TRUE(document().cameraCheckbox.isOn()) << "open documents keep theirs";
    press(Qt::Key_N, Qt::ControlModifier);
    until([this] { return host.application().allControllers().size() == 3; });
    EXPECT_EQ(part<QLineEdit>(u"appleIDField"_s).text(), QString());
    EXPECT_FALSE(document().cameraCheckbox.isOn());
}

TEST_F(MainMenuTest, defaultsThatAreNotConfirmedAreNotWritten)
{
    document().cameraCheckbox.setState(1);
    host.preferences.takeChanges();
    item(u"editMenu"_s, u"Set Document Defaults…"_s).trigger();
    answer(u"Cancel"_s);
    EXPECT_TRUE(host.preferences.takeChanges().isEmpty());
    EXPECT_EQ(document().statusString(), u"ready"_s);
}

TEST_F(MainMenuTest, theSettingsHaveTheirKey)
{
    press(Qt::Key_Comma, Qt::ControlModifier);
    const auto tops = QApplication::topLevelWidgets();
    EXPECT_TRUE(std::any_of(tops.cbegin(), tops.cend(), [](QWidget *top) {
        return qobject_cast<PreferencesWindow *>(top) && top->isVisible();
    }));
}

// Account and help

TEST_F(MainMenuTest, theHistoryIsFetchedByItsKey)
{
    press(Qt::Key_H, Qt::ControlModifier);
    EXPECT_TRUE(document().isBusy());
    host.settle();
    EXPECT_FALSE(host.tools.callsOf(u"altool--notarization-history"_s).isEmpty());
}

namespace {

struct HelpRow {
    const char *button;
    Qt::Key key; ///< of the item in the help menu
    QString title;
    QString answer;
    QString focusAfterwards;
    QList<const char *> about; ///< where its key leads to it
};

class Help : public MainMenuTest, public testing::WithParamInterface<HelpRow> { };

} // namespace

TEST_P(Help, isShownByItsButtonAndLeadsToItsField)
{
    part<QWidget>(u"statusTextView"_s).setFocus();
    auto &button = part<QAbstractButton>(QString::fromLatin1(GetParam().button));
    EXPECT_TRUE(button.accessibleName().startsWith(u"Help: "_s));
    QTest::mouseClick(&button, Qt::LeftButton);
    EXPECT_EQ(awaitSheet().text(), GetParam().title);
    EXPECT_EQ(document().statusString(), u"interacting"_s);
    answer(GetParam().answer);
    until([this] { return focused() == GetParam().focusAfterwards; });
    EXPECT_EQ(document().statusString(), u"ready"_s);
}

TEST_P(Help, isShownByItsItemInTheMenu)
{
    choose(Qt::Key_H, u"helpMenu"_s, GetParam().key);
    EXPECT_EQ(awaitSheet().text(), GetParam().title);
    answer(GetParam().answer);
    until([this] { return focused() == GetParam().focusAfterwards; });
}

TEST_P(Help, isShownByItsKeyWhereItFits)
{
    document().useDiskImage.set(true);
    document().useDropDMG.set(true);
    for (const char *const name : GetParam().about) {
        auto &focused = part<QWidget>(QString::fromLatin1(name));
        focused.setFocus();
        ASSERT_TRUE(focused.hasFocus()) << name;
        QTest::keyClick(&focused, Qt::Key_F1);
        EXPECT_EQ(awaitSheet().text(), GetParam().title) << name;
        answer(GetParam().answer);
    }
}

INSTANTIATE_TEST_SUITE_P(Sheets, Help,
                         testing::Values(HelpRow{"appPassHelpButton",
                                                 Qt::Key_A,
                                                 u"App-Specific Password"_s,
                                                 u"OK"_s,
                                                 u"appPassField"_s,
                                                 {"appPassField", "appPassHelpButton"}},
                                         HelpRow{"teamProviderHelpButton",
                                                 Qt::Key_P,
                                                 u"Provider Short Name"_s,
                                                 u"Cancel"_s,
                                                 u"providerNameField"_s,
                                                 {"providerNameField", "chooseProviderButton",
                                                  "teamProviderHelpButton"}},
                                         HelpRow{"extraEntitlementsHelpButton",
                                                 Qt::Key_E,
                                                 u"Extra Entitlements"_s,
                                                 u"OK"_s,
                                                 u"providerNameField"_s,
                                                 {"extraEntitlementsButton", "extraEntitlementsHelpButton"}},
                                         HelpRow{"dropDMGHelpButton",
                                                 Qt::Key_D,
                                                 u"Disk Image Options"_s,
                                                 u"OK"_s,
                                                 u"providerNameField"_s,
                                                 {"createDiskImageCheckbox", "dropDMGHelpButton",
                                                  "useDropDMGCheckbox", "dropDMGConfigsPopup"}}),
                         [](const auto &row) { return row.param.button; });

TEST_F(MainMenuTest, helpIsAtHandWhileAWorkflowRuns)
{
    document().isBusy.set(true);
    for (const QString &help : {u"App-Specific Password"_s, u"Provider Short Name"_s, u"Extra Entitlements"_s,
                                u"Disk Image Options"_s})
        EXPECT_TRUE(item(u"helpMenu"_s, help).isEnabled()) << help.toStdString();
    item(u"helpMenu"_s, u"Disk Image Options"_s).trigger();
    EXPECT_EQ(awaitSheet().text(), u"Disk Image Options"_s);
    answer(u"OK"_s);
    document().isBusy.set(false);
}

TEST_F(MainMenuTest, underASheetNoCommandOfTheDocumentIsOffered)
{
    document().isPolling.set(true);
    document().perform(Action::doDropDMGHelp);
    awaitSheet();
    for (const QString &command : {u"Submit…"_s, u"Print Log…"_s, u"Cancel"_s}) {
        QAction *found = nullptr;
        for (QAction *const action : widget().findChildren<QAction *>()) {
            if (action->text().remove(u'&').section(u'\t', 0, 0) == command)
                found = action;
        }
        ASSERT_TRUE(found) << command.toStdString();
        Q_EMIT qobject_cast<QMenu *>(found->parent())->aboutToShow();
        EXPECT_FALSE(found->isEnabled()) << command.toStdString();
    }
    answer(u"OK"_s);
    document().isPolling.set(false);
}

TEST_F(MainMenuTest, theKeyOfHelpOpensItsMenuWhereNoSheetFits)
{
    QMenu &help = menu(u"helpMenu"_s);
    for (const QString &name :
         {u"statusTextView"_s, u"appleIDField"_s, u"identitiesPopup"_s, u"cameraCheckbox"_s}) {
        part<QWidget>(name).setFocus();
        QTest::keyClick(&part<QWidget>(name), Qt::Key_F1);
        ASSERT_TRUE(help.isVisible()) << name.toStdString();
        EXPECT_EQ(help.activeAction(), help.actions().first());
        QTest::keyClick(&help, Qt::Key_Escape);
        until([&] { return !help.isVisible(); });
    }
    QTest::keyClick(&widget(), Qt::Key_F1);
    QTest::keyClick(&help, Qt::Key_Return);
    EXPECT_EQ(awaitSheet().text(), u"App-Specific Password"_s) << "the first is at hand";
    answer(u"OK"_s);
}

TEST_F(MainMenuTest, theKeyOfHelpShowsNoSheetWhileAWorkflowRuns)
{
    document().isBusy.set(true);
    part<QLineEdit>(u"appPassField"_s).setFocus();
    press(Qt::Key_F1, Qt::NoModifier);
    QMenu &help = menu(u"helpMenu"_s);
    EXPECT_TRUE(help.isVisible());
    EXPECT_FALSE(sheet());
    help.close();
    document().isBusy.set(false);
}

TEST_F(MainMenuTest, supportLinksAreOpened)
{
    for (const QString &text : {u"Website"_s, u"Users' Forum"_s, u"Send Us Email"_s})
        item(u"helpMenu"_s, text).trigger();
    EXPECT_EQ(host.workspace.opened,
              (QList<QUrl>{host.configuration.website, host.configuration.usersForum,
                           host.configuration.supportAddress}));
}

TEST_F(MainMenuTest, theAboutPanelIsShown)
{
    item(u"helpMenu"_s, u"About Sealwright"_s).trigger();
    const auto tops = QApplication::topLevelWidgets();
    EXPECT_TRUE(std::any_of(tops.cbegin(), tops.cend(), [](QWidget *top) {
        return qobject_cast<AboutWindow *>(top) && top->isVisible();
    }));
}
