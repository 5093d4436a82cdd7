// Every control of a document: that the window has it under its name, that it says its label to screen
// readers, and that it agrees with the document both ways.

#include "windowtest.h"

#include "app/preferencekeys.h"
#include "document/documentcommands.h"
#include "document/providersheet.h"
#include "platform/itempath.h"
#include "support/items.h"
#include "ui/itempanel.h"
#include "ui/logview.h"

#include <QAccessible>
#include <QAccessibleActionInterface>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace {

class Controls : public WindowTest {
protected:
    Controls()
    {
        until([this] { return widget().isActiveWindow(); });
    }

    QPushButton &button(const QString &name) { return part<QPushButton>(name); }
};

struct ButtonRow {
    Button DocumentControls::*control;
    QString name;
    QString title;
    Action action;
};

const QList<ButtonRow> buttonRows{
    {&DocumentControls::submitAppButton, u"submitAppButton"_s, u"Submit…"_s, Action::doSubmit},
    {&DocumentControls::stapleOnlyButton, u"stapleOnlyButton"_s, u"Staple Only…"_s, Action::doStapleOnly},
    {&DocumentControls::signOnlyButton, u"signOnlyButton"_s, u"Sign Only…"_s, Action::doSignOnly},
    {&DocumentControls::fetchHistoryButton, u"fetchHistoryButton"_s, u"Fetch History"_s,
     Action::doFetchHistory},
    {&DocumentControls::chooseProviderButton, u"chooseProviderButton"_s, u"Choose…"_s,
     Action::doListProviderShortnames},
};

} // namespace

TEST_F(Controls, eachButtonShowsWhatItsControlHasAndCarriesItsCommand)
{
    for (const ButtonRow &row : buttonRows) {
        QPushButton &push = button(row.name);
        Button &control = document().*row.control;
        EXPECT_EQ(push.text(), row.title);
        EXPECT_EQ(push.accessibleName(), row.title);
        EXPECT_TRUE(push.isVisible() && push.isEnabled()) << row.name.toStdString();
        EXPECT_EQ(control.action(), row.action) << row.name.toStdString();
        control.setTitle(u"Another & title"_s);
        EXPECT_EQ(push.text(), u"Another && title"_s);
        control.setIsEnabled(false);
        EXPECT_FALSE(push.isEnabled()) << row.name.toStdString();
        control.setIsEnabled(true);
        control.setIsHidden(true);
        EXPECT_FALSE(push.isVisible()) << row.name.toStdString();
        control.setIsHidden(false);
        EXPECT_TRUE(push.isVisible()) << row.name.toStdString();
    }
}

TEST_F(Controls, eachControlOfADocumentIsInItsWindowUnderItsName)
{
    const QList<std::pair<const char *, QStringList>> names{
        {"sealwright::LogView", {u"statusTextView"_s}},
        {"QLineEdit",
         {u"providerNameField"_s, u"appleIDField"_s, u"appPassField"_s, u"appletNameField"_s,
          u"historyMaxPagesField"_s}},
        {"QComboBox", {u"identitiesPopup"_s, u"dropDMGConfigsPopup"_s, u"providerSheetPopup"_s}},
        {"QCheckBox",
         {u"eventsCheckbox"_s, u"calendarsCheckbox"_s, u"audioCheckbox"_s, u"cameraCheckbox"_s,
          u"locationCheckbox"_s, u"photosCheckbox"_s, u"addressBookCheckbox"_s, u"disableLibCheckbox"_s,
          u"allowJITCheckbox"_s, u"allowUnsignedExecMemCheckbox"_s, u"allowDYLDEnvCheckbox"_s,
          u"disableMemProtectionCheckbox"_s, u"isDebugToolCheckbox"_s, u"dontSignEnclosuresCheckbox"_s,
          u"dontClearCheckbox"_s, u"createDiskImageCheckbox"_s, u"useDropDMGCheckbox"_s,
          u"extraEntitlementsButton"_s}},
        {"QProgressBar", {u"progressIndicator"_s, u"providerSheetProgress"_s}},
        {"QLabel", {u"historyMaxPagesLabel"_s, u"providerSheetErrorText"_s, u"providerSheetDetailText"_s}},
        {"QPushButton",
         {u"fetchHistoryButton"_s, u"stapleOnlyButton"_s, u"submitAppButton"_s, u"signOnlyButton"_s,
          u"chooseProviderButton"_s}},
        {"QDialog", {u"providerSheetWindow"_s}},
        {"QStackedWidget", {u"providerSheetTabView"_s}},
    };
    window().beginSheetNamed(providerNameSheet, [](int) {});
    for (const auto &[kind, namesOfKind] : names) {
        for (const QString &name : namesOfKind) {
            const auto found = page().findChildren<QWidget *>(name);
            ASSERT_EQ(found.size(), 1) << name.toStdString();
            EXPECT_TRUE(found.first()->inherits(kind)) << name.toStdString();
        }
    }
}

TEST_F(Controls, eachButtonIsOffWhileAWorkflowRuns)
{
    const QStringList helpButtons{u"appPassHelpButton"_s, u"teamProviderHelpButton"_s,
                                  u"extraEntitlementsHelpButton"_s, u"dropDMGHelpButton"_s};
    document().progressIndicator.startAnimation();
    for (const ButtonRow &row : buttonRows)
        EXPECT_FALSE(button(row.name).isEnabled()) << row.name.toStdString();
    for (const QString &name : helpButtons)
        EXPECT_FALSE(part<QToolButton>(name).isEnabled()) << name.toStdString();
    EXPECT_FALSE(part<QCheckBox>(u"extraEntitlementsButton"_s).isEnabled());
    document().progressIndicator.stopAnimation();
    for (const ButtonRow &row : buttonRows)
        EXPECT_TRUE(button(row.name).isEnabled()) << row.name.toStdString();
    for (const QString &name : helpButtons)
        EXPECT_TRUE(part<QToolButton>(name).isEnabled()) << name.toStdString();
}

TEST_F(Controls, chooseIsOffWithANotaryToolThatCannotListProviders)
{
    host.application().altoolVersionNumber.set(3);
    host.application().newDocument(0);
    EXPECT_FALSE(button(u"chooseProviderButton"_s).isEnabled());
    document().progressIndicator.startAnimation();
    document().progressIndicator.stopAnimation();
    EXPECT_FALSE(button(u"chooseProviderButton"_s).isEnabled());
}

TEST_F(Controls, theDiskImageOptionsAgreeWithTheirFieldsBothWays)
{
    auto &create = part<QCheckBox>(u"createDiskImageCheckbox"_s);
    auto &use = part<QCheckBox>(u"useDropDMGCheckbox"_s);
    EXPECT_EQ(create.accessibleName(), u"Upload as a disk image"_s);
    EXPECT_EQ(use.accessibleName(), u"Made by DropDMG with"_s);
    EXPECT_FALSE(use.isEnabled()) << "it needs a disk image";
    QTest::keyClick(&create, Qt::Key_Space);
    EXPECT_TRUE(document().useDiskImage());
    ASSERT_TRUE(use.isEnabled());
    QTest::keyClick(&use, Qt::Key_Space);
    EXPECT_TRUE(document().useDropDMG());
    document().useDropDMG.set(false);
    EXPECT_FALSE(use.isChecked());
    document().useDiskImage.set(false);
    EXPECT_FALSE(create.isChecked());
    EXPECT_FALSE(use.isEnabled());
}

TEST_F(Controls, theConfigurationsOfDropDMGAgreeWithTheirControlBothWays)
{
    auto &combo = part<QComboBox>(u"dropDMGConfigsPopup"_s);
    EXPECT_EQ(combo.accessibleName(), u"Made by DropDMG with"_s);
    host.application().dropDMGConfigNames.set({u"Plain"_s, u"Fancy"_s});
    document().useDiskImage.set(true);
    EXPECT_FALSE(combo.isEnabled());
    document().useDropDMG.set(true);
    ASSERT_TRUE(combo.isEnabled());
    EXPECT_EQ(combo.currentText(), u"Plain"_s);
    QTest::keyClick(&combo, Qt::Key_Down);
    EXPECT_EQ(document().dropDMGConfiguration(), u"Fancy"_s);
    document().dropDMGConfigsPopup.selectItemWithTitle(u"Plain"_s);
    EXPECT_EQ(combo.currentText(), u"Plain"_s);
    EXPECT_TRUE(combo.isEnabled()) << "another selection does not change what is offered";
    document().useDropDMG.set(false);
    document().dropDMGConfigsPopup.selectItemWithTitle(u"Fancy"_s);
    EXPECT_FALSE(combo.isEnabled());
}

TEST_F(Controls, theHistorysPagesAgreeWithTheirFieldBothWays)
{
    auto &pages = part<QLineEdit>(u"historyMaxPagesField"_s);
    EXPECT_EQ(part<QLabel>(u"historyMaxPagesLabel"_s).text(), u"Pages at most"_s);
    EXPECT_EQ(pages.accessibleName(), u"Pages at most"_s);
    EXPECT_EQ(pages.text(), u"1"_s);
    pages.selectAll();
    QTest::keyClicks(&pages, u"25x"_s);
    EXPECT_EQ(document().maxPageCount(), 25u);
    document().historyMaxPagesField.setStringValue(u"7"_s);
    EXPECT_EQ(pages.text(), u"7"_s);
    document().historyMaxPagesLabel.setStringValue(u"Most pages"_s);
    EXPECT_EQ(part<QLabel>(u"historyMaxPagesLabel"_s).text(), u"Most pages"_s);
}

TEST_F(Controls, aNumberOfPagesThatIsNoneGivesWayToTheOneInForceAtTheEndOfTheEdit)
{
    auto &pages = part<QLineEdit>(u"historyMaxPagesField"_s);
    document().maxPageCount.set(3);
    EXPECT_EQ(pages.text(), u"3"_s);
    for (const QString &typed : {u""_s, u"0"_s, u"000"_s}) {
        pages.setFocus();
        pages.selectAll();
        QTest::keyClick(&pages, Qt::Key_Delete);
        QTest::keyClicks(&pages, typed);
        EXPECT_EQ(pages.text(), typed) << "an edit is not disturbed";
        EXPECT_EQ(document().maxPageCount(), 3u) << typed.toStdString();
        part<QLineEdit>(u"appleIDField"_s).setFocus();
        EXPECT_EQ(pages.text(), u"3"_s) << typed.toStdString();
        EXPECT_EQ(document().historyMaxPagesField.stringValue(), u"3"_s) << typed.toStdString();
    }
}

TEST_F(Controls, theLogShowsWhatItsControlHas)
{
    auto &log = part<LogView>(u"statusTextView"_s);
    EXPECT_EQ(log.accessibleName(), u"Log"_s);
    document().logErrorMain(u"gone wrong"_s);
    EXPECT_EQ(log.toPlainText(), document().statusTextView.string());
    QTest::mouseClick(&part<QToolButton>(u"clearLogButton"_s), Qt::LeftButton);
    EXPECT_EQ(document().statusTextView.string(), QString());
    EXPECT_EQ(log.toPlainText(), QString());
}

TEST_F(Controls, theExtraEntitlementsFileIsNamedBesideItsCheckbox)
{
    auto &name = part<QLabel>(u"extraEntitlementsFile"_s);
    EXPECT_EQ(name.text(), QString());
    document().extraEntitlementsURL.set(QUrl::fromLocalFile(u"/somewhere/Extra.plist"_s));
    EXPECT_EQ(name.text(), u"Extra.plist"_s);
    EXPECT_EQ(name.toolTip(), u"/somewhere/Extra.plist"_s);
    document().extraEntitlementsURL.set(QUrl::fromLocalFile(u"/elsewhere/Other.plist"_s));
    EXPECT_EQ(name.text(), u"Other.plist"_s);
    document().extraEntitlementsURL.set({});
    EXPECT_EQ(name.text(), QString());
}

TEST_F(Controls, cancellingThePanelOfTheExtraEntitlementsForgetsTheFileAndClearsTheBox)
{
    auto &box = part<QCheckBox>(u"extraEntitlementsButton"_s);
    document().extraEntitlementsURL.set(QUrl::fromLocalFile(u"/somewhere/Extra.plist"_s));
    document().extraEntitlementsButton.setState(1);
    QTest::keyClick(&box, Qt::Key_Space);
    auto &panel = part<ItemPanel>({});
    until([&] { return panel.isActiveWindow(); });
    QTest::keyClick(&panel, Qt::Key_Escape);
    until([this] { return document().extraEntitlementsURL().isEmpty(); });
    EXPECT_FALSE(box.isChecked());
    EXPECT_EQ(part<QLabel>(u"extraEntitlementsFile"_s).text(), QString());
}

TEST_F(Controls, togglingTheBoxOfTheExtraEntitlementsAsAScreenReaderDoesAsksForTheFile)
{
    auto &box = part<QCheckBox>(u"extraEntitlementsButton"_s);
    QAccessible::queryAccessibleInterface(&box)->actionInterface()->doAction(
        QAccessibleActionInterface::toggleAction());
    until([this] { return document().statusString() == status::interacting; });
    auto &panel = part<ItemPanel>({});
    until([&] { return panel.isActiveWindow(); });
    QTest::keyClick(&panel, Qt::Key_Escape);
    until([&] { return !box.isChecked() && document().statusString() == status::ready; });
}

TEST_F(Controls, aCaptionsLetterWithAltLeadsToItsField)
{
    const QList<std::pair<Qt::Key, QString>> letters{
        {Qt::Key_I, u"appleIDField"_s},      {Qt::Key_P, u"appPassField"_s},
        {Qt::Key_N, u"providerNameField"_s}, {Qt::Key_T, u"identitiesPopup"_s},
        {Qt::Key_G, u"statusTextView"_s},
    };
    for (const auto &[key, name] : letters) {
        QTest::keyClick(&widget(), key, Qt::AltModifier);
        EXPECT_TRUE(part<QWidget>(name).hasFocus()) << name.toStdString();
    }
}

// The mode in which a dropped item waits

namespace {

class ModeChange : public Controls {
protected:
    /// Where the visible parts of the window are.
    QHash<QString, QRect> places()
    {
        QCoreApplication::processEvents();
        QHash<QString, QRect> found;
        for (const QWidget *const child : page().findChildren<QWidget *>()) {
            const bool isNamed = !child->objectName().isEmpty() && !child->objectName().startsWith(u"qt_"_s);
            if (child->isVisible() && isNamed)
                found.insert(child->objectName(), QRect(child->mapTo(&page(), QPoint(0, 0)), child->size()));
        }
        return found;
    }
};

} // namespace

TEST_F(ModeChange, hidesWhatDoesNotBelongToItAndMovesNothing)
{
    const auto before = places();
    document().commands().submit.prepareForDirectSubmit(QUrl::fromLocalFile(u"/somewhere/Foo.app"_s), {});
    host.settle();
    const auto during = places();
    const QSet<QString> hidden{u"fetchHistoryButton"_s, u"historyMaxPagesField"_s, u"historyMaxPagesLabel"_s,
                               u"signOnlyButton"_s};
    for (auto place = before.cbegin(); place != before.cend(); ++place) {
        const QRect expected = hidden.contains(place.key()) ? QRect() : place.value();
        EXPECT_EQ(during.value(place.key()), expected) << place.key().toStdString();
    }
    document().perform(Action::doCancelDirectSubmit);
    EXPECT_EQ(places(), before);
}

TEST_F(ModeChange, whenARunStartsMovesNothing)
{
    const auto before = places();
    document().progressIndicator.startAnimation();
    document().canCancel.set(true);
    const auto during = places();
    for (auto place = before.cbegin(); place != before.cend(); ++place)
        EXPECT_EQ(during.value(place.key()), place.value()) << place.key().toStdString();
    EXPECT_TRUE(during.contains(u"progressIndicator"_s));
    EXPECT_TRUE(during.contains(u"cancelButton"_s));
}
