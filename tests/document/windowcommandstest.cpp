// The small commands of a document's window.

#include "document/documentcommands.h"
#include "document/mainwincontroller.h"
#include "platform/itempath.h"
#include "platform/scriptcommand.h"
#include "support/items.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class WindowCommands : public testing::Test {
protected:
    WindowCommands() { host.launch(); }

    MainWinController &document() { return host.document(); }

    TestHost host;
};

} // namespace

// Extra entitlements

TEST_F(WindowCommands, extraEntitlementsAreAskedForInAPanel)
{
    document().perform(Action::doExtraEntitlements);
    ASSERT_TRUE(host.window().panel);
    const platform::OpenPanel panel = host.window().panel->panel;
    EXPECT_EQ(panel.message, u"Choose an entitlements property list file"_s);
    EXPECT_EQ(panel.allowedFileTypes, QStringList{u"plist"_s});
    EXPECT_TRUE(panel.canChooseFiles);
    EXPECT_FALSE(panel.canChooseDirectories);
    EXPECT_FALSE(panel.shouldEnable);
    EXPECT_EQ(document().statusString(), u"interacting"_s);
}

TEST_F(WindowCommands, aChosenEntitlementsFileIsKeptAndNotRead)
{
    const QUrl missing = itempath::toUrl(host.item(u"No Such.plist"_s));
    document().doExtraEntitlements();
    host.window().choose(missing);
    EXPECT_EQ(document().extraEntitlementsURL(), missing);
    EXPECT_TRUE(document().extraEntitlementsButton.isOn());
    EXPECT_EQ(document().statusString(), u"ready"_s);
    EXPECT_TRUE(host.window().sheets.isEmpty());
}

TEST_F(WindowCommands, cancellingTheEntitlementsPanelDropsAnEarlierFile)
{
    document().doExtraEntitlements();
    host.window().choose(itempath::toUrl(host.item(u"Extra.plist"_s)));
    document().doExtraEntitlements();
    EXPECT_TRUE(document().extraEntitlementsButton.isOn()) << "not before the answer";
    host.window().choose({});
    EXPECT_TRUE(document().extraEntitlementsURL().isEmpty());
    EXPECT_FALSE(document().extraEntitlementsButton.isOn());
    EXPECT_EQ(document().statusString(), u"ready"_s);
}

TEST_F(WindowCommands, cancellingTheEntitlementsPanelTurnsOffABoxThatAPersonHasTicked)
{
    document().extraEntitlementsButton.setState(1);
    document().doExtraEntitlements();
    host.window().choose({});
    EXPECT_FALSE(document().extraEntitlementsButton.isOn());
}

// Clearing the log

TEST_F(WindowCommands, clearingEmptiesTheWindowLogAndAnswersNobodyIfNobodyWaits)
{
    document().logStringMain(u"a line"_s, false);
    document().perform(Action::doClearStatus);
    EXPECT_TRUE(document().statusTextView.runs().isEmpty());
}

TEST_F(WindowCommands, clearingAnswersTheCommandThatTheDocumentStillHolds)
{
    QList<ScriptReply> replies;
    const auto command = std::make_shared<ScriptCommand>(
        QVariantMap{}, [&replies](const ScriptReply &reply) { replies.append(reply); });
    command->execute([this](const ScriptCommandPtr &executing) {
        document().currentCommand.set(executing);
        executing->suspendExecution();
    });
    document().logStringMain(u"a line"_s, false);
    document().doClearStatus();
    ASSERT_EQ(replies.size(), 1);
    EXPECT_FALSE(replies.first().result.isValid());
    EXPECT_FALSE(replies.first().isError());
    document().doClearStatus();
    EXPECT_EQ(replies.size(), 1) << "a command is answered once";
}

// Printing

TEST_F(WindowCommands, printingIsTheWindowsTask)
{
    document().perform(Action::doPrint);
    EXPECT_EQ(host.window().prints, 1);
    EXPECT_EQ(host.applicationHost.pageLayouts, 0);
    EXPECT_EQ(document().statusString(), u"ready"_s);
}

TEST_F(WindowCommands, pageSetupIsTheApplicationsTask)
{
    document().perform(Action::doRunPageLayout);
    EXPECT_EQ(host.applicationHost.pageLayouts, 1);
    EXPECT_EQ(host.window().prints, 0);
    EXPECT_EQ(document().statusString(), u"ready"_s);
}

// Menu items

namespace {

struct ItemRow {
    const char *name;
    Action action;
    bool isGuarded;
};

class MenuItem : public WindowCommands, public testing::WithParamInterface<ItemRow> {
protected:
    bool isEnabled() { return document().validateMenuItem(GetParam().action); }
};

} // namespace

TEST_P(MenuItem, isEnabledOnAnIdleDocument)
{
    EXPECT_TRUE(isEnabled());
}

TEST_P(MenuItem, ofAGuardedActionIsDisabledWhileTheDocumentIsBusy)
{
    document().isBusy.set(true);
    EXPECT_EQ(isEnabled(), !GetParam().isGuarded);
    document().isBusy.set(false);
    EXPECT_TRUE(isEnabled());
}

TEST_P(MenuItem, ofAGuardedActionIsDisabledWhileASubmissionRuns)
{
    host.tools.answer(u"altool--notarization-history"_s, {.status = 1, .hangs = true});
    items::makeBundle(host.item(u"Foo.app"_s));
    document().commands().submit.submitURL(itempath::toUrl(host.item(u"Foo.app"_s)));
    EXPECT_EQ(isEnabled(), !GetParam().isGuarded);
    host.tools.release(u"altool--notarization-history"_s);
    host.settle();
    EXPECT_TRUE(isEnabled());
}

TEST_P(MenuItem, ofAGuardedActionIsDisabledWhileADroppedItemWaits)
{
    document().commands().submit.prepareForDirectSubmit(itempath::toUrl(host.item(u"Foo.app"_s)), {});
    EXPECT_EQ(isEnabled(), !GetParam().isGuarded);
    document().commands().submit.doCancelDirectSubmit();
    EXPECT_TRUE(isEnabled());
}

INSTANTIATE_TEST_SUITE_P(
    Actions, MenuItem,
    testing::Values(
        ItemRow{"infoForUUIDOnClipboard", Action::doInfoForUUIDOnClipboard, true},
        ItemRow{"infoForUUIDOfLastUpload", Action::doInfoForUUIDOfLastUpload, true},
        ItemRow{"infoForUUIDInFile", Action::doInfoForUUIDInFile, true},
        ItemRow{"fetchHistory", Action::doFetchHistory, true}, ItemRow{"submit", Action::doSubmit, true},
        ItemRow{"stapleOnly", Action::doStapleOnly, true}, ItemRow{"signOnly", Action::doSignOnly, true},
        ItemRow{"submitAgain", Action::doSubmitAgain, true},
        ItemRow{"stapleAgain", Action::doStapleAgain, true}, ItemRow{"signAgain", Action::doSignAgain, true},
        ItemRow{"setDocumentDefaults", Action::doSetDocumentDefaults, true},
        ItemRow{"listProviderShortnames", Action::doListProviderShortnames, true},
        ItemRow{"cancel", Action::doCancel, false}, ItemRow{"clearStatus", Action::doClearStatus, false},
        ItemRow{"extraEntitlements", Action::doExtraEntitlements, false},
        ItemRow{"appPassHelp", Action::doAppPassHelp, false},
        ItemRow{"teamProviderHelp", Action::doTeamProviderHelp, false},
        ItemRow{"extraEntitlementsHelp", Action::doExtraEntitlementsHelp, false},
        ItemRow{"dropDMGHelp", Action::doDropDMGHelp, false}, ItemRow{"print", Action::doPrint, false},
        ItemRow{"runPageLayout", Action::doRunPageLayout, false},
        ItemRow{"closeDocument", Action::doCloseDocument, false},
        ItemRow{"closeWindow", Action::doCloseWindow, false},
        ItemRow{"directSubmit", Action::doDirectSubmit, false},
        ItemRow{"cancelDirectSubmit", Action::doCancelDirectSubmit, false}),
    [](const auto &row) { return row.param.name; });
