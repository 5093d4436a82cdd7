// The menus of the account and of help.

#include "mainmenutest.h"

#include <QLineEdit>
#include <QPushButton>

using namespace Qt::StringLiterals;

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
