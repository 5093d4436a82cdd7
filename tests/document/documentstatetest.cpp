// What a new document holds, and how its controls and fields keep together.

#include "app/preferencekeys.h"
#include "document/mainwincontroller.h"
#include "platform/itempath.h"
#include "run/run.h"
#include "run/step.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class DocumentState : public testing::Test {
protected:
    void launchWithIdentities(const QStringList &names)
    {
        QByteArray listing;
        for (const QString &name : names)
            listing += "1) 01 \"Developer ID Application: " + name.toUtf8() + "\"\n";
        host.tools.answer(u"security"_s, {.output = listing});
        host.launch();
    }
    QString identity() { return host.document().identitiesPopup.titleOfSelectedItem(); }

    TestHost host;
};

} // namespace

TEST_F(DocumentState, aNewDocumentIsIdle)
{
    host.launch();
    MainWinController &document = host.document();
    EXPECT_EQ(document.statusString(), u"ready"_s);
    for (const bool flag : {document.isBusy(), document.isSubmitting(), document.isPolling(),
                            document.canCancel(), document.isScripted(), document.suppressDialogs(),
                            document.cancelPressed(), document.useDiskImage(), document.useDropDMG()})
        EXPECT_FALSE(flag);
    EXPECT_EQ(document.lastAction(), 0u);
    EXPECT_EQ(document.maxPageCount(), 1u);
    EXPECT_TRUE(document.skipPaths().isEmpty());
    EXPECT_TRUE(document.extraEntitlementsURL().isEmpty());
    EXPECT_TRUE(document.submitFilePath().isNull());
    EXPECT_EQ(document.logHandle(), nullptr);
    EXPECT_EQ(document.staplingTimer(), nullptr);
    EXPECT_EQ(document.currentCommand(), nullptr);
    EXPECT_EQ(document.appletNameField.stringValue(), u""_s);
    EXPECT_EQ(document.statusTextView.string(), u""_s);
    EXPECT_FALSE(document.progressIndicator.isAnimating());
}

TEST_F(DocumentState, aDocumentRunsAShellLineAsTheApplicationDoes)
{
    host.launch();
    host.tools.answer(u"codesign"_s, {.status = 3, .output = "text\n"});
    const QString line = u"codesign -d | tr a-z A-Z"_s;
    EXPECT_EQ(host.document().runCommandSimple(line), u"TEXT\n"_s);
    EXPECT_EQ(host.document().runCommandSimple(line), host.application().runCommandSimple(line));
    EXPECT_TRUE(host.document().runCommandSimple(u"printf 'caf\\351'"_s).isNull());
}

TEST_F(DocumentState, eachDocumentHasItsOwnOwnerToken)
{
    host.launch();
    const DocumentPtr other = host.application().addedDocument();
    EXPECT_FALSE(other->uniqueID.isEmpty());
    EXPECT_NE(host.application().allControllers().first()->uniqueID, other->uniqueID);
    EXPECT_NE(other->uniqueID, u"0"_s) << "the owner of the probe at launch";
}

// The identity

TEST_F(DocumentState, withOneIdentityTheStoredOneMakesNoDifference)
{
    host.preferences.setValue(key::lastUsedIdentity, u"Other (O1)"_s);
    launchWithIdentities({u"Example (E1)"_s});
    EXPECT_EQ(identity(), u"Example (E1)"_s);
    EXPECT_FALSE(host.preferences.wasRead(key::lastUsedIdentity));
}

TEST_F(DocumentState, withTwoIdentitiesTheStoredOneIsSelected)
{
    host.preferences.setValue(key::lastUsedIdentity, u"Other (O1)"_s);
    launchWithIdentities({u"Example (E1)"_s, u"Other (O1)"_s});
    EXPECT_EQ(identity(), u"Other (O1)"_s);
    EXPECT_TRUE(host.preferences.wasRead(key::lastUsedIdentity));
}

TEST_F(DocumentState, anIdentityThatIsNoLongerThereLeavesTheFirst)
{
    host.preferences.setValue(key::lastUsedIdentity, u"Gone (G1)"_s);
    launchWithIdentities({u"Example (E1)"_s, u"Other (O1)"_s});
    EXPECT_EQ(identity(), u"Example (E1)"_s);
}

TEST_F(DocumentState, withoutAStoredIdentityTheFirstIsSelected)
{
    launchWithIdentities({u"Example (E1)"_s, u"Other (O1)"_s});
    EXPECT_EQ(identity(), u"Example (E1)"_s);
}

// DropDMG's configuration

namespace {

class StoredConfiguration : public DocumentState {
protected:
    void launchWithConfigurations(const QStringList &names)
    {
        host.workspace.running.insert(u"com.c-command.DropDMG"_s);
        host.appleScript.result = {names, {}, {}};
        host.launch();
    }
    QString configuration() { return host.document().dropDMGConfigsPopup.titleOfSelectedItem(); }
};

} // namespace

TEST_F(StoredConfiguration, isSelectedWhereItIsOnOffer)
{
    host.preferences.setValue(key::dropDMGConfigName, u"Plain"_s);
    launchWithConfigurations({u"Fancy"_s, u"Plain"_s});
    EXPECT_EQ(configuration(), u"Plain"_s);
}

TEST_F(StoredConfiguration, thatIsNoLongerOnOfferLeavesThePopupAsItWas)
{
    host.preferences.setValue(key::dropDMGConfigName, u"Gone"_s);
    launchWithConfigurations({u"Fancy"_s, u"Plain"_s});
    EXPECT_EQ(configuration(), u"Fancy"_s);
}

// Controls and fields

TEST_F(DocumentState, aCheckboxAndTheFlagThatItShowsAgreeBothWays)
{
    host.launch();
    MainWinController &document = host.document();
    const std::pair<Checkbox &, ObservableProperty<bool> &> pairs[] = {
        {document.createDiskImageCheckbox, document.useDiskImage},
        {document.useDropDMGCheckbox, document.useDropDMG},
    };
    for (const auto &[checkbox, flag] : pairs) {
        checkbox.setState(1);
        EXPECT_TRUE(flag());
        flag.set(false);
        EXPECT_FALSE(checkbox.isOn());
        flag.set(true);
        EXPECT_TRUE(checkbox.isOn());
        checkbox.setState(0);
        EXPECT_FALSE(flag());
    }
}

TEST_F(StoredConfiguration, onShowIsWhatTheDocumentHolds)
{
    launchWithConfigurations({u"Fancy"_s, u"Plain"_s});
    MainWinController &document = host.document();
    EXPECT_EQ(document.dropDMGConfiguration(), u"Fancy"_s);
    document.dropDMGConfigsPopup.selectItemWithTitle(u"Plain"_s);
    EXPECT_EQ(document.dropDMGConfiguration(), u"Plain"_s);
    host.application().dropDMGConfigNames.set({u"New"_s, u"Newer"_s});
    EXPECT_EQ(document.dropDMGConfiguration(), u"New"_s);
}

// The open panels' filter

namespace {

struct PanelRow {
    const char *name;
    QString path;
    bool isEnabled;
};

class OpenPanelItem : public testing::TestWithParam<PanelRow> { };

} // namespace

TEST_P(OpenPanelItem, isEnabledOrNot)
{
    EXPECT_EQ(MainWinController::shouldEnableURL(itempath::toUrl(GetParam().path)), GetParam().isEnabled);
}

INSTANTIATE_TEST_SUITE_P(
    Items, OpenPanelItem,
    testing::Values(PanelRow{"requestRecord", u"/a/RequestUUID.txt"_s, true},
                    PanelRow{"otherText", u"/a/Notes.txt"_s, false},
                    PanelRow{"otherTextInUpperCase", u"/a/Notes.TXT"_s, false},
                    PanelRow{"recordInAnotherCase", u"/a/requestuuid.txt"_s, false},
                    PanelRow{"recordWithAnotherExtensionsCase", u"/a/RequestUUID.TXT"_s, false},
                    PanelRow{"longerName", u"/a/My RequestUUID.txt"_s, false},
                    PanelRow{"app", u"/a/Foo.app"_s, true}, PanelRow{"noExtension", u"/a/txt"_s, true},
                    PanelRow{"folderOfThatName", u"/a/b.txt/Foo.dmg"_s, true}),
    [](const auto &row) { return row.param.name; });

// Lifetime

TEST_F(DocumentState, aJobThatStillRunsKeepsAClosedDocumentAndItGoesOnTheMainThread)
{
    host.launch();
    const std::weak_ptr<MainWinController> document = host.application().allControllers().first();
    QThread *destroyedOn = nullptr;
    QObject::connect(document.lock().get(), &QObject::destroyed,
                     [&destroyedOn] { destroyedOn = QThread::currentThread(); });
    static std::atomic<bool> mayEnd = false;
    const auto wait = [](sealwright::Run &) -> StepResult {
        while (!mayEnd)
            std::this_thread::yield();
        return Done{};
    };
    document.lock()->startRun(document.lock()->runInputs(), {Step{.name = {}, .work = wait}}, {});
    host.window().performClose();
    host.runUntil([this] { return host.mainQueue.isEmpty(); });
    EXPECT_TRUE(host.application().allControllers().isEmpty());
    EXPECT_FALSE(document.expired());
    mayEnd = true;
    host.settle();
    EXPECT_TRUE(document.expired());
    EXPECT_EQ(destroyedOn, QThread::currentThread());
}

TEST_F(DocumentState, lateLinesAndReportsOfAClosedDocumentTouchNobodyElse)
{
    host.launch();
    const DocumentPtr closed = host.application().allControllers().first();
    host.window().performClose();
    host.application().newDocument(0);
    closed->logString(u"late"_s);
    closed->dispatchFinalAlertOrMessage(u"Error Signing Code"_s, u"See the log for details."_s, u"late"_s);
    host.settle();
    EXPECT_EQ(host.document().statusTextView.string(), u""_s);
    EXPECT_FALSE(host.window().sheet);
    EXPECT_EQ(host.document().statusString(), u"ready"_s);
}
