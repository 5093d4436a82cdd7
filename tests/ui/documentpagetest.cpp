#include "windowtest.h"

#include "document/documentcommands.h"
#include "document/entitlementswitches.h"
#include "support/items.h"
#include "ui/findbar.h"
#include "ui/itempanel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>

using namespace Qt::StringLiterals;

namespace {

class DocumentPageTest : public WindowTest {
protected:
    DocumentPageTest()
    {
        until([this] { return widget().isActiveWindow(); });
    }

    QPushButton &submit() { return part<QPushButton>(u"submitAppButton"_s); }
    QPushButton &cancel() { return part<QPushButton>(u"cancelButton"_s); }

    /// The item of the File menu with this text, as it is when the menu opens.
    QAction &menuItem(const QString &text)
    {
        QMenu *const file = part<QMenuBar>({}).findChild<QMenu *>();
        Q_EMIT file->aboutToShow();
        for (QAction *const item : file->actions()) {
            if (item->text().section(u'\t', 0, 0) == text)
                return *item;
        }
        throw std::runtime_error("no such item");
    }
};

struct TextRow {
    TextField DocumentControls::*control;
    QString name;
    QString label;
};

struct CheckRow {
    Checkbox DocumentControls::*control;
    QString name;
    QString label;
    QString key;
};

const QList<TextRow> textRows{
    {&DocumentControls::appleIDField, u"appleIDField"_s, u"Apple ID"_s},
    {&DocumentControls::appPassField, u"appPassField"_s, u"App-specific password"_s},
    {&DocumentControls::providerNameField, u"providerNameField"_s, u"Provider short name"_s},
};

const QList<CheckRow> checkRows{
    {&DocumentControls::eventsCheckbox, u"eventsCheckbox"_s, u"Apple events"_s,
     u"com.apple.security.automation.apple-events"_s},
    {&DocumentControls::calendarsCheckbox, u"calendarsCheckbox"_s, u"Calendars"_s,
     u"com.apple.security.personal-information.calendars"_s},
    {&DocumentControls::audioCheckbox, u"audioCheckbox"_s, u"Audio input"_s,
     u"com.apple.security.device.audio-input"_s},
    {&DocumentControls::cameraCheckbox, u"cameraCheckbox"_s, u"Camera"_s,
     u"com.apple.security.device.camera"_s},
    {&DocumentControls::locationCheckbox, u"locationCheckbox"_s, u"Location"_s,
     u"com.apple.security.personal-information.location"_s},
    {&DocumentControls::photosCheckbox, u"photosCheckbox"_s, u"Photos library"_s,
     u"com.apple.security.personal-information.photos-library"_s},
    {&DocumentControls::addressBookCheckbox, u"addressBookCheckbox"_s, u"Address book"_s,
     u"com.apple.security.personal-information.addressbook"_s},
    {&DocumentControls::disableLibCheckbox, u"disableLibCheckbox"_s, u"Disable library validation"_s,
     u"com.apple.security.cs.disable-library-validation"_s},
    {&DocumentControls::allowJITCheckbox, u"allowJITCheckbox"_s, u"Allow JIT"_s,
     u"com.apple.security.cs.allow-jit"_s},
    {&DocumentControls::allowUnsignedExecMemCheckbox, u"allowUnsignedExecMemCheckbox"_s,
     u"Allow unsigned executable memory"_s, u"com.apple.security.cs.allow-unsigned-executable-memory"_s},
    {&DocumentControls::allowDYLDEnvCheckbox, u"allowDYLDEnvCheckbox"_s,
     u"Allow DYLD environment variables"_s, u"com.apple.security.cs.allow-dyld-environment-variables"_s},
    {&DocumentControls::disableMemProtectionCheckbox, u"disableMemProtectionCheckbox"_s,
     u"Disable executable page protection"_s, u"com.apple.security.cs.disable-executable-page-protection"_s},
    {&DocumentControls::isDebugToolCheckbox, u"isDebugToolCheckbox"_s, u"Debugging tool"_s,
     u"com.apple.security.cs.debugger"_s},
    {&DocumentControls::dontClearCheckbox, u"dontClearCheckbox"_s, u"Keep log between runs"_s, {}},
    {&DocumentControls::dontSignEnclosuresCheckbox,
     u"dontSignEnclosuresCheckbox"_s,
     u"Sign main item only"_s,
     {}},
};

} // namespace

TEST_F(DocumentPageTest, eachTextFieldAgreesWithItsControlBothWays)
{
    for (const TextRow &row : textRows) {
        auto &edit = part<QLineEdit>(row.name);
        TextField &field = document().*row.control;
        EXPECT_EQ(edit.accessibleName(), row.label);
        EXPECT_EQ(edit.text(), field.stringValue());
        edit.clear();
        QTest::keyClicks(&edit, row.name);
        EXPECT_EQ(field.stringValue(), row.name);
        field.setStringValue(u"from the control"_s);
        EXPECT_EQ(edit.text(), u"from the control"_s);
    }
}

TEST_F(DocumentPageTest, eachCheckboxAgreesWithItsControlBothWays)
{
    for (const CheckRow &row : checkRows) {
        auto &box = part<QCheckBox>(row.name);
        Checkbox &control = document().*row.control;
        EXPECT_EQ(box.accessibleName(), row.label);
        EXPECT_EQ(box.text().remove(u'&'), row.label);
        if (!row.key.isEmpty()) {
            EXPECT_EQ(box.toolTip(), row.key);
        }
        control.setState(0);
        QTest::keyClick(&box, Qt::Key_Space);
        EXPECT_EQ(control.state(), 1) << row.name.toStdString();
        control.setState(0);
        EXPECT_FALSE(box.isChecked()) << row.name.toStdString();
        control.setState(1);
        EXPECT_TRUE(box.isChecked()) << row.name.toStdString();
    }
}

TEST_F(DocumentPageTest, theIdentitiesPopupAgreesWithItsControlBothWays)
{
    auto &combo = part<QComboBox>(u"identitiesPopup"_s);
    EXPECT_EQ(combo.accessibleName(), u"Signing identity"_s);
    EXPECT_EQ(combo.currentText(), document().identitiesPopup.titleOfSelectedItem());
    document().identitiesPopup.setItemTitles({u"One (A)"_s, u"Two (B)"_s});
    document().identitiesPopup.selectItemWithTitle(u"Two (B)"_s);
    EXPECT_EQ(combo.currentText(), u"Two (B)"_s);
    QTest::keyClick(&combo, Qt::Key_Up);
    EXPECT_EQ(document().identitiesPopup.titleOfSelectedItem(), u"One (A)"_s);
}

TEST_F(DocumentPageTest, theItemsNameIsOnShowAndCannotBeTyped)
{
    auto &name = part<QLineEdit>(u"appletNameField"_s);
    document().appletNameField.setStringValue(u"Foo.app"_s);
    EXPECT_EQ(name.text(), u"Foo.app"_s);
    QTest::keyClicks(&name, u"x"_s);
    EXPECT_EQ(document().appletNameField.stringValue(), u"Foo.app"_s);
}

TEST_F(DocumentPageTest, theProgressBarIsThereWhileAWorkflowRuns)
{
    auto &bar = part<QProgressBar>(u"progressIndicator"_s);
    EXPECT_FALSE(bar.isVisible());
    document().progressIndicator.startAnimation();
    EXPECT_TRUE(bar.isVisible());
    document().progressIndicator.stopAnimation();
    EXPECT_FALSE(bar.isVisible());
}

TEST_F(DocumentPageTest, cancelIsOfferedExactlyWhileTheDocumentCanCancel)
{
    EXPECT_FALSE(cancel().isEnabled());
    EXPECT_FALSE(menuItem(u"C&ancel"_s).isEnabled());
    for (const bool can : {true, false, true, false}) {
        document().canCancel.set(can);
        EXPECT_EQ(cancel().isEnabled(), can);
        EXPECT_EQ(menuItem(u"C&ancel"_s).isEnabled(), can);
    }
}

TEST_F(DocumentPageTest, cancelIsOfferedTooWhenAWorkerSaysSo)
{
    onWorker(document(), [this] { document().canCancel.set(true); });
    until([this] { return cancel().isEnabled(); });
}

TEST_F(DocumentPageTest, aClickOnCancelCancels)
{
    document().canCancel.set(true);
    QTest::mouseClick(&cancel(), Qt::LeftButton);
    EXPECT_EQ(awaitSheet().text(), u"Process Cancelled"_s);
    EXPECT_FALSE(cancel().isEnabled());
    answer(u"OK"_s);
}

TEST_F(DocumentPageTest, submitAsksForAnItemAndSubmitsIt)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    QTest::mouseClick(&submit(), Qt::LeftButton);
    auto *const panel = widget().findChild<ItemPanel *>();
    ASSERT_TRUE(panel);
    EXPECT_EQ(panel->windowModality(), Qt::NonModal) << "other windows take input";
    until([&] { return panel->isActiveWindow(); });
    auto &name = *panel->findChild<QLineEdit *>(u"fileNameEdit"_s);
    QTest::keyClicks(&name, host.item(u"Foo.app"_s));
    QTest::keyClick(&name, Qt::Key_Return);
    until([this] { return document().progressIndicator.isAnimating(); });
    EXPECT_FALSE(submit().isEnabled()) << "one workflow at a time";
    host.settle();
    EXPECT_TRUE(document().isPolling());
    EXPECT_TRUE(cancel().isEnabled());
    EXPECT_EQ(widget().windowTitle(), u"Foo.app"_s);
    EXPECT_EQ(part<QLabel>(u"statusString"_s).text(), u"waiting"_s);
    EXPECT_EQ(part<QPlainTextEdit>(u"statusTextView"_s).toPlainText(), document().statusTextView.string());
    host.firePolls();
    answer(u"OK"_s);
    EXPECT_TRUE(submit().isEnabled());
}

TEST_F(DocumentPageTest, returnInAFieldPressesThePrimaryButtonOnce)
{
    for (const TextRow &row : textRows) {
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
            auto &field = part<QLineEdit>(row.name);
            field.setText(u"something"_s);
            field.setFocus();
            QTest::keyClick(&field, key, key == Qt::Key_Enter ? Qt::KeypadModifier : Qt::NoModifier);
            ASSERT_EQ(widget().findChildren<ItemPanel *>().size(), 1) << row.name.toStdString();
            part<ItemPanel>({}).reject();
            until([this] { return !widget().findChild<ItemPanel *>(); });
        }
    }
}

TEST_F(DocumentPageTest, aWheelThatPassesOverAPopupLeavesItAlone)
{
    auto &popup = part<QComboBox>(u"identitiesPopup"_s);
    document().identitiesPopup.setItemTitles({u"One (A1)"_s, u"Two (B2)"_s});
    const auto turn = [&popup] {
        const QPointF place(popup.rect().center());
        QWheelEvent event(place, popup.mapToGlobal(place), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&popup, &event);
    };
    part<QLineEdit>(u"appleIDField"_s).setFocus();
    turn();
    EXPECT_EQ(document().identitiesPopup.titleOfSelectedItem(), u"One (A1)"_s);
    EXPECT_FALSE(popup.hasFocus());
    popup.setFocus();
    turn();
    EXPECT_EQ(document().identitiesPopup.titleOfSelectedItem(), u"Two (B2)"_s);
}

TEST_F(DocumentPageTest, returnInTheNumberOfPagesFetchesTheHistoryAndSubmitsNothing)
{
    auto &pages = part<QLineEdit>(u"historyMaxPagesField"_s);
    int fetches = 0;
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        pages.setFocus();
        pages.selectAll();
        QTest::keyClicks(&pages, u"2"_s);
        QTest::keyClick(&pages, key, key == Qt::Key_Enter ? Qt::KeypadModifier : Qt::NoModifier);
        EXPECT_FALSE(widget().findChild<ItemPanel *>());
        host.settle();
        EXPECT_EQ(host.tools.callsOf(u"altool--notarization-history"_s).size(), ++fetches);
    }
    document().progressIndicator.startAnimation();
    QTest::keyClick(&pages, Qt::Key_Return);
    EXPECT_FALSE(document().isBusy() || widget().findChild<ItemPanel *>()) << "one workflow at a time";
    document().progressIndicator.stopAnimation();
}

TEST_F(DocumentPageTest, returnElsewhereIsNotForThePrimaryButton)
{
    part<FindBar>({}).open();
    for (const QString &name : {u"findField"_s, u"statusTextView"_s, u"identitiesPopup"_s,
                                u"cameraCheckbox"_s, u"chooseProviderButton"_s}) {
        auto &other = part<QWidget>(name);
        other.setFocus();
        QTest::keyClick(&other, Qt::Key_Return);
        EXPECT_FALSE(document().isBusy() || widget().findChild<ItemPanel *>()) << name.toStdString();
    }
}

TEST_F(DocumentPageTest, returnDoesNothingWhileThePrimaryButtonIsOff)
{
    document().progressIndicator.startAnimation();
    QTest::keyClick(&part<QLineEdit>(u"appleIDField"_s), Qt::Key_Return);
    EXPECT_FALSE(document().isBusy() || widget().findChild<ItemPanel *>());
    document().progressIndicator.stopAnimation();
}

TEST_F(DocumentPageTest, aPanelThatIsCancelledLeavesTheDocumentReady)
{
    QTest::mouseClick(&submit(), Qt::LeftButton);
    auto *const panel = widget().findChild<ItemPanel *>();
    ASSERT_TRUE(panel);
    until([&] { return panel->isActiveWindow(); });
    QTest::keyClick(panel, Qt::Key_Escape);
    until([this] { return !document().isBusy(); });
    host.settle();
    EXPECT_EQ(part<QLabel>(u"statusString"_s).text(), u"ready"_s);
    EXPECT_TRUE(submit().isEnabled());
}

TEST_F(DocumentPageTest, theAppleIDHasTheFocusAfterTheSheetThatMissesIt)
{
    auto &field = part<QLineEdit>(u"appleIDField"_s);
    field.clear();
    submit().setFocus();
    QTest::keyClick(&submit(), Qt::Key_Space);
    EXPECT_EQ(awaitSheet().text(), u"Missing Apple ID"_s);
    answer(u"OK"_s);
    until([&] { return field.hasFocus(); });
    EXPECT_EQ(host.applicationHost.beeps, 1);
}

TEST_F(DocumentPageTest, thePasswordHasTheFocusAfterTheSheetThatMissesIt)
{
    auto &field = part<QLineEdit>(u"appPassField"_s);
    field.clear();
    QTest::mouseClick(&submit(), Qt::LeftButton);
    EXPECT_EQ(awaitSheet().text(), u"Missing Password"_s);
    answer(u"OK"_s);
    until([&] { return field.hasFocus(); });
}

TEST_F(DocumentPageTest, extraEntitlementsAsksForAFileEachTime)
{
    items::makeFile(host.item(u"Extra.plist"_s), "<plist/>");
    auto &box = part<QCheckBox>(u"extraEntitlementsButton"_s);
    EXPECT_EQ(box.accessibleName(), u"Extra entitlements"_s);
    QTest::keyClick(&box, Qt::Key_Space);
    auto &panel = part<ItemPanel>({});
    until([&] { return panel.isActiveWindow(); });
    auto &name = *panel.findChild<QLineEdit *>(u"fileNameEdit"_s);
    QTest::keyClicks(&name, host.item(u"Extra.plist"_s));
    QTest::keyClick(&name, Qt::Key_Return);
    until([this] { return !document().extraEntitlementsURL().isEmpty(); });
    EXPECT_TRUE(box.isChecked());
    until([this] { return !widget().findChild<ItemPanel *>(); });
    QTest::keyClick(&box, Qt::Key_Space);
    part<ItemPanel>({}).reject();
    until([this] { return document().extraEntitlementsURL().isEmpty(); });
    EXPECT_FALSE(box.isChecked());
}

TEST_F(DocumentPageTest, ctrlNOpensASecondDocumentAndCtrlWClosesIt)
{
    QTest::keyClick(&widget(), Qt::Key_N, Qt::ControlModifier);
    until([this] { return host.application().allControllers().size() == 2; });
    EXPECT_EQ(widget().windowTitle(), u"Untitled-2"_s);
    until([this] { return widget().isActiveWindow(); });
    QTest::keyClick(&widget(), Qt::Key_W, Qt::ControlModifier);
    until([this] { return host.application().allControllers().size() == 1; });
    EXPECT_EQ(widget().windowTitle(), u"Untitled"_s);
}

TEST_F(DocumentPageTest, ctrlQEndsTheApplication)
{
    QTest::keyClick(&widget(), Qt::Key_Q, Qt::ControlModifier);
    until([this] { return host.applicationHost.isTerminated; });
}

TEST_F(DocumentPageTest, theMenusSubmitIsOffWhileTheDocumentIsBusyOrHoldsADroppedItem)
{
    const QString text = u"&Submit…"_s;
    EXPECT_TRUE(menuItem(text).isEnabled());
    document().isBusy.set(true);
    EXPECT_FALSE(menuItem(text).isEnabled());
    document().isBusy.set(false);
    EXPECT_TRUE(menuItem(text).isEnabled());
    document().commands().submit.prepareForDirectSubmit(QUrl::fromLocalFile(host.item(u"Foo.app"_s)), {});
    EXPECT_FALSE(menuItem(text).isEnabled());
}

TEST_F(DocumentPageTest, theTabKeyReachesEveryControl)
{
    document().canCancel.set(true);
    document().useDiskImage.set(true);
    document().useDropDMG.set(true);
    QSet<QString> reached;
    QWidget *const first = widget().focusWidget();
    ASSERT_TRUE(first);
    constexpr int more = 100; // than there are controls
    for (int presses = 0; presses < more; ++presses) {
        reached.insert(QApplication::focusWidget()->objectName());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        if (QApplication::focusWidget() == first)
            break;
    }
    QSet<QString> wanted{u"identitiesPopup"_s,      u"createDiskImageCheckbox"_s,
                         u"useDropDMGCheckbox"_s,   u"dropDMGConfigsPopup"_s,
                         u"chooseProviderButton"_s, u"extraEntitlementsButton"_s,
                         u"appPassHelpButton"_s,    u"teamProviderHelpButton"_s,
                         u"dropDMGHelpButton"_s,    u"extraEntitlementsHelpButton"_s,
                         u"statusTextView"_s,       u"clearLogButton"_s,
                         u"fetchHistoryButton"_s,   u"historyMaxPagesField"_s,
                         u"signOnlyButton"_s,       u"stapleOnlyButton"_s,
                         u"submitAppButton"_s,      u"cancelButton"_s};
    for (const TextRow &row : textRows)
        wanted.insert(row.name);
    for (const CheckRow &row : checkRows)
        wanted.insert(row.name);
    EXPECT_TRUE(reached.contains(wanted))
        << "missing: " << (wanted - reached).values().join(u' ').toStdString();
}

TEST_F(DocumentPageTest, withAFontTwiceTheSizeTheWindowFitsTheScreenAndTheFocusIsInSight)
{
    const QFont usual = QApplication::font();
    QFont large = usual;
    large.setPointSizeF(2 * usual.pointSizeF());
    QApplication::setFont(large);
    const DocumentPtr second = host.application().addedDocument();
    widget().resize(1024, 768);
    until([this] { return widget().isActiveWindow(); });
    EXPECT_LE(widget().minimumSizeHint().width(), 1024);
    EXPECT_LE(widget().minimumSizeHint().height(), 768);
    for (const CheckRow &row : checkRows) {
        auto &box = part<QCheckBox>(row.name);
        box.setFocus();
        QCoreApplication::processEvents();
        EXPECT_FALSE(box.visibleRegion().isEmpty()) << row.name.toStdString();
    }
    QApplication::setFont(usual);
}
