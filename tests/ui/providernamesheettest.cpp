#include "windowtest.h"

#include "document/documentcommands.h"
#include "ui/providernamesheet.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QStackedWidget>

using namespace Qt::StringLiterals;

namespace {

const QString providersTool = u"altool--list-providers"_s;
const QByteArray twoTeams =
    "<plist version=\"1.0\"><dict><key>providers</key><array><dict><key>ProviderShortname</key><string>Zebra"
    "</string><key>ProviderName</key><string>Z &amp; Corp</string><key>WWDRTeamID</key><string>Z1</string>"
    "</dict><dict><key>ProviderShortname</key><string>Ant</string><key>ProviderName</key><string>Ant Corp"
    "</string><key>WWDRTeamID</key><string>A1</string></dict></array></dict></plist>";
const QString zebra = u"Zebra (Name: Z & Corp, Team ID: Z1)"_s;
const QString ant = u"Ant (Name: Ant Corp, Team ID: A1)"_s;

} // namespace

class ProviderSheetTest : public WindowTest {
protected:
    void list(const ToolAnswer &answer = {.output = twoTeams})
    {
        host.tools.answer(providersTool, answer);
        document().perform(Action::doListProviderShortnames);
        until([this] { return sheet() != nullptr; });
    }

    void listToTheEnd(const ToolAnswer &answer = {.output = twoTeams})
    {
        list(answer);
        host.settle();
    }

    /// The sheet that is up; null if there is none.
    ProviderNameSheet *sheet()
    {
        for (auto *const found : widget().findChildren<ProviderNameSheet *>()) {
            if (found->isVisible())
                return found;
        }
        return nullptr;
    }

    void press(const QString &button)
    {
        QTest::mouseClick(&part<QPushButton>(button), Qt::LeftButton);
        awaitEnd();
    }

    void awaitEnd()
    {
        until([this] { return widget().findChild<ProviderNameSheet *>() == nullptr; });
    }

    bool isShown(const QString &name) { return part<QWidget>(name).isVisible(); }
};

TEST_F(ProviderSheetTest, showsThatItWaitsAndCanBeLeft)
{
    list({.output = twoTeams, .hangs = true});
    EXPECT_EQ(sheet()->windowModality(), Qt::NonModal) << "other windows take input";
    EXPECT_EQ(part<QStackedWidget>(u"providerSheetTabView"_s).currentIndex(), 0);
    EXPECT_TRUE(isShown(u"providerSheetProgress"_s));
    EXPECT_FALSE(isShown(u"providerSheetOK"_s));
    EXPECT_TRUE(isShown(u"providerSheetCancel"_s));
    press(u"providerSheetCancel"_s);
    EXPECT_FALSE(document().isBusy());
    EXPECT_EQ(document().statusString(), u"ready"_s);
    host.tools.release(providersTool);
    host.settle();
    EXPECT_EQ(sheet(), nullptr);
}

TEST_F(ProviderSheetTest, offersTheTeamsAndTakesTheChosenOne)
{
    listToTheEnd();
    auto &popup = part<QComboBox>(u"providerSheetPopup"_s);
    ASSERT_TRUE(popup.isVisible());
    ASSERT_EQ(popup.count(), 2);
    EXPECT_EQ(popup.currentText(), zebra);
    EXPECT_EQ(popup.itemText(1), ant);
    EXPECT_TRUE(part<QPushButton>(u"providerSheetOK"_s).isDefault());
    popup.setFocus();
    QTest::keyClick(&popup, Qt::Key_Down);
    EXPECT_EQ(document().providerSheetPopup.titleOfSelectedItem(), ant);
    press(u"providerSheetOK"_s);
    EXPECT_EQ(part<QLineEdit>(u"providerNameField"_s).text(), u"Ant"_s);
    until([this] { return part<QLineEdit>(u"providerNameField"_s).hasFocus(); });
    EXPECT_FALSE(document().isBusy());
}

TEST_F(ProviderSheetTest, takesTheChosenTeamAndCanBeLeftByALetter)
{
    listToTheEnd();
    QTest::keyClick(sheet(), Qt::Key_C, Qt::AltModifier);
    awaitEnd();
    EXPECT_EQ(document().providerNameField.stringValue(), QString());
    listToTheEnd();
    QTest::keyClick(sheet(), Qt::Key_O, Qt::AltModifier);
    awaitEnd();
    EXPECT_EQ(document().providerNameField.stringValue(), u"Zebra"_s);
}

TEST_F(ProviderSheetTest, followsASelectionThatIsMadeForIt)
{
    listToTheEnd();
    document().providerSheetPopup.selectItemWithTitle(ant);
    EXPECT_EQ(part<QComboBox>(u"providerSheetPopup"_s).currentText(), ant);
}

TEST_F(ProviderSheetTest, takesTheChosenTeamOnReturn)
{
    listToTheEnd();
    QTest::keyClick(sheet(), Qt::Key_Return);
    awaitEnd();
    EXPECT_EQ(document().providerNameField.stringValue(), u"Zebra"_s);
}

TEST_F(ProviderSheetTest, changesNothingOnEscapeOrAClose)
{
    document().providerNameField.setStringValue(u"Team1"_s);
    listToTheEnd();
    QTest::keyClick(sheet(), Qt::Key_Escape);
    awaitEnd();
    EXPECT_FALSE(document().isBusy());
    listToTheEnd();
    sheet()->close();
    awaitEnd();
    EXPECT_FALSE(document().isBusy());
    EXPECT_EQ(document().providerNameField.stringValue(), u"Team1"_s);
}

TEST_F(ProviderSheetTest, showsAMessageLetterForLetterWithOneWayOut)
{
    listToTheEnd({.status = 1, .error = "altool[1] <b>no & none</b>"});
    EXPECT_TRUE(isShown(u"providerSheetErrorText"_s));
    EXPECT_EQ(part<QLabel>(u"providerSheetErrorText"_s).text(), u"Problem Retrieving Apple Team Details"_s);
    const auto &detail = part<QLabel>(u"providerSheetDetailText"_s);
    EXPECT_EQ(
        detail.text(),
        u"Error returned: <b>no & none</b>\n\nCheck that both the app-specific pasword and Apple ID are correct."_s);
    EXPECT_EQ(detail.textFormat(), Qt::PlainText);
    EXPECT_FALSE(isShown(u"providerSheetOK"_s));
    EXPECT_EQ(part<QPushButton>(u"providerSheetCancel"_s).text(), u"Close"_s);
    EXPECT_TRUE(part<QPushButton>(u"providerSheetCancel"_s).isDefault());
    press(u"providerSheetCancel"_s);
    EXPECT_FALSE(document().isBusy());
}

TEST_F(ProviderSheetTest, keepsItsButtonInSightUnderALongMessage)
{
    listToTheEnd({.status = 1, .error = QByteArray("a line of many\n").repeated(500)});
    const QRect room = widget().screen()->availableGeometry();
    EXPECT_LE(sheet()->height(), room.height());
    EXPECT_TRUE(sheet()->rect().contains(part<QPushButton>(u"providerSheetCancel"_s).geometry().center()));
    press(u"providerSheetCancel"_s);
}

TEST_F(ProviderSheetTest, agreesWithItsControlsBothWays)
{
    listToTheEnd();
    auto &pages = part<QStackedWidget>(u"providerSheetTabView"_s);
    pages.setCurrentIndex(2);
    EXPECT_EQ(document().providerSheetTabView.selectedIndex(), 2);
    document().providerSheetTabView.selectTabViewItemAtIndex(0);
    EXPECT_EQ(pages.currentIndex(), 0);
    document().providerSheetTabView.selectTabViewItemAtIndex(1);
    press(u"providerSheetCancel"_s);
    EXPECT_EQ(document().providerSheetTabView.selectedIndex(), 1) << "the sheet's end turns no page";
}

TEST_F(ProviderSheetTest, saysItsNamesToScreenReaders)
{
    listToTheEnd();
    EXPECT_EQ(part<QWidget>(u"providerSheetPopup"_s).accessibleName(), u"Development team"_s);
    EXPECT_EQ(part<QDialog>(u"providerSheetWindow"_s).accessibleName(), u"Provider Short Name"_s);
    EXPECT_EQ(part<QWidget>(u"providerSheetProgress"_s).accessibleName(),
              u"Asking Apple for your development teams…"_s);
    EXPECT_EQ(part<QWidget>(u"providerSheetOK"_s).accessibleName(), u"OK"_s);
    EXPECT_EQ(part<QWidget>(u"providerSheetCancel"_s).accessibleName(), u"Cancel"_s);
}

TEST_F(ProviderSheetTest, thatIsUpWhenItsWindowClosesLeavesNothingBehind)
{
    listToTheEnd();
    const std::weak_ptr<MainWinController> watched = document().weak_from_this();
    window().close();
    until([&] { return watched.expired(); });
}

TEST_F(ProviderSheetTest, isTheOnlySheetWithAName)
{
    window().beginSheetNamed(u"NoSuchSheet"_s, [](int) { ADD_FAILURE() << "there is no such sheet"; });
    window().endSheet(1);
    EXPECT_EQ(sheet(), nullptr);
}
