// The page of a document at work: its commands, its keys, and where the focus goes.

#include "documentpagetest.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

using namespace Qt::StringLiterals;

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
