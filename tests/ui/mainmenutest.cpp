// The menus of a document: new documents, workflows, the again item, and editing.

#include "mainmenutest.h"

#include <QClipboard>
#include <QLineEdit>
#include <QMenuBar>

using namespace Qt::StringLiterals;

namespace {

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
