// The sheet with the teams of the account.

#include "notarization/providersreply.h"

using namespace Qt::StringLiterals;

namespace {

const QString providersTool = u"altool--list-providers"_s;

} // namespace

class ProviderNamesTest : public StepTest {
protected:
    ProviderNamesTest() { host.tools.answer(providersTool, {.output = twoTeams}); }

    void launch()
    {
        host.launch();
        isLaunched = true;
    }

    void list(const QByteArray &reply = twoTeams)
    {
        if (!isLaunched)
            launch();
        host.tools.answer(providersTool, {.output = reply});
        document().perform(Action::doListProviderShortnames);
        host.settle();
    }

    int page() { return document().providerSheetTabView.selectedIndex(); }

    void expectMessage(const QString &heading, const QString &detail)
    {
        EXPECT_EQ(page(), 2);
        EXPECT_EQ(document().providerSheetErrorText.stringValue(), heading);
        EXPECT_EQ(document().providerSheetDetailText.stringValue(), detail);
    }

    /// The sheet has gone, and the document may be used again.
    void expectEnded(int focused)
    {
        EXPECT_FALSE(host.window().namedSheet);
        EXPECT_FALSE(document().providerSheetProgress.isAnimating());
        EXPECT_FALSE(document().progressIndicator.isAnimating());
        EXPECT_FALSE(document().isBusy());
        EXPECT_FALSE(document().isScripted());
        EXPECT_FALSE(document().suppressDialogs());
        EXPECT_EQ(document().statusString(), u"ready"_s);
        EXPECT_EQ(focused, 1);
    }
};

TEST_F(ProviderNamesTest, waitForTheReplyInASheet)
{
    launch();
    host.tools.answer(providersTool, {.output = twoTeams, .hangs = true});
    document().suppressDialogs.set(true);
    document().perform(Action::doListProviderShortnames);
    host.runUntil([this] { return !host.tools.calls().isEmpty(); });
    EXPECT_FALSE(document().suppressDialogs());
    ASSERT_TRUE(host.window().namedSheet);
    EXPECT_EQ(host.window().namedSheet->interfaceName, u"ProviderNameSheet"_s);
    EXPECT_EQ(page(), 0);
    EXPECT_TRUE(document().providerSheetProgress.isAnimating());
    EXPECT_EQ(document().statusString(), u"fetching"_s);
    host.tools.release(providersTool);
    host.settle();
    EXPECT_EQ(page(), 1);
    EXPECT_TRUE(document().providerSheetProgress.isAnimating()) << "until the sheet ends";
    EXPECT_TRUE(document().isBusy());
    EXPECT_EQ(document().statusString(), u"fetching"_s);
    document().commands().providers.doProviderNameCancel();
}

TEST_F(ProviderNamesTest, areAskedForWithoutATeamAndNotShownInTheLog)
{
    launch();
    document().providerNameField.setStringValue(u"Team1"_s);
    list();
    EXPECT_EQ(host.tools.calls(),
              (QList<ToolCall>{{providersTool,
                                {u"altool"_s, u"--list-providers"_s, u"-u"_s, u"dev@example.com"_s, u"-p"_s,
                                 u"@keychain:notary"_s, u"--output-format"_s, u"xml"_s}}}));
    EXPECT_EQ(host.log(), QStringList());
    EXPECT_TRUE(host.window().sheets.isEmpty());
}

TEST_F(ProviderNamesTest, areOfferedWithTheFirstOneSelected)
{
    list();
    EXPECT_EQ(page(), 1);
    EXPECT_EQ(
        document().providerSheetPopup.itemTitles(),
        (QStringList{u"Zebra (Name: Zebra Corp, Team ID: Z1)"_s, u"Ant (Name: Ant & Co %1, Team ID: A1)"_s}));
    EXPECT_EQ(document().providerSheetPopup.titleOfSelectedItem(),
              u"Zebra (Name: Zebra Corp, Team ID: Z1)"_s);
    EXPECT_EQ(document().providerSheetErrorText.stringValue(), u""_s);
    EXPECT_EQ(document().providerSheetDetailText.stringValue(), u""_s);
}

TEST_F(ProviderNamesTest, okWritesTheShortNameOfTheSelectedTeam)
{
    list();
    int focused = 0;
    QObject::connect(&document().providerNameField, &TextField::focusRequested, [&focused] { ++focused; });
    document().isScripted.set(true);
    document().providerSheetPopup.selectItemWithTitle(u"Ant (Name: Ant & Co %1, Team ID: A1)"_s);
    commands().providers.doProviderNameOK();
    host.settle();
    EXPECT_EQ(document().providerNameField.stringValue(), u"Ant"_s);
    expectEnded(focused);
}

TEST_F(ProviderNamesTest, cancelLeavesWhatWasTyped)
{
    launch();
    document().providerNameField.setStringValue(u"Team1"_s);
    list();
    int focused = 0;
    QObject::connect(&document().providerNameField, &TextField::focusRequested, [&focused] { ++focused; });
    commands().providers.doProviderNameCancel();
    host.settle();
    EXPECT_EQ(document().providerNameField.stringValue(), u"Team1"_s);
    expectEnded(focused);
}

TEST_F(ProviderNamesTest, endWhatAScriptHasSetWhenTheSheetGoesAndNotBefore)
{
    list();
    document().isScripted.set(true);
    document().suppressDialogs.set(true);
    EXPECT_TRUE(document().isBusy());
    EXPECT_EQ(document().statusString(), u"fetching"_s);
    commands().providers.doProviderNameCancel();
    EXPECT_FALSE(document().isScripted());
    EXPECT_FALSE(document().suppressDialogs());
    EXPECT_FALSE(document().isBusy());
}

TEST_F(ProviderNamesTest, theButtonsEndTheSheetWithCodesOfTheirOwn)
{
    list();
    QList<int> codes;
    for (int round = 0; round < 2; ++round) {
        host.window().beginSheetNamed(u"ProviderNameSheet"_s, [&codes](int code) { codes.append(code); });
        round == 0 ? commands().providers.doProviderNameOK() : commands().providers.doProviderNameCancel();
    }
    EXPECT_EQ(codes, (QList{1, 0}));
}

TEST_F(ProviderNamesTest, ofNoTeamAtAllAreAnEmptyChoiceWhoseOkWritesNothingUsable)
{
    list(providers(""));
    EXPECT_EQ(page(), 1);
    EXPECT_EQ(document().providerSheetPopup.itemTitles(), QStringList());
    commands().providers.doProviderNameOK();
    host.settle();
    EXPECT_EQ(document().providerNameField.stringValue(), u""_s);
    EXPECT_FALSE(document().isBusy());
    EXPECT_EQ(document().statusString(), u"ready"_s);
}

TEST_F(ProviderNamesTest, ofOneTeamAreNotNeededAndWhatWasTypedIsWiped)
{
    launch();
    document().providerNameField.setStringValue(u"Team1"_s);
    list(oneTeam);
    expectMessage(
        u"Provider Short Name Not Needed"_s,
        u"You belong to only one Apple development team, so you do not need to enter a provider short name."_s);
    EXPECT_EQ(document().providerNameField.stringValue(), u""_s);
    EXPECT_EQ(document().statusString(), u"fetching"_s);
    EXPECT_TRUE(document().isBusy());
}

TEST_F(ProviderNamesTest, thatCannotBeHadSaySoInTheSheet)
{
    launch();
    document().providerNameField.setStringValue(u"Team1"_s);
    host.tools.answer(providersTool,
                      {.status = 1, .output = twoTeams, .error = "altool[17:5] *** Error: bad login.\n"});
    document().perform(Action::doListProviderShortnames);
    host.settle();
    expectMessage(
        u"Problem Retrieving Apple Team Details"_s,
        u"Error returned: *** Error: bad login.\n\nCheck that both the app-specific pasword and Apple ID are correct."_s);
    EXPECT_EQ(document().providerNameField.stringValue(), u"Team1"_s);
    EXPECT_EQ(host.log(), QStringList());
    EXPECT_TRUE(host.window().sheets.isEmpty()) << "no alert";
    EXPECT_TRUE(document().isBusy()) << "until a button ends the sheet";
    commands().providers.doProviderNameCancel();
    EXPECT_FALSE(document().isBusy());
}

TEST_F(ProviderNamesTest, beginEachTimeWithAFreshSheet)
{
    list();
    commands().providers.doProviderNameCancel();
    host.tools.answer(providersTool, {.status = 1, .error = "no"});
    document().perform(Action::doListProviderShortnames);
    EXPECT_EQ(page(), 0);
    EXPECT_EQ(document().providerSheetPopup.itemTitles(), QStringList());
    host.settle();
    commands().providers.doProviderNameCancel();
    list();
    EXPECT_EQ(page(), 1);
    EXPECT_EQ(document().providerSheetErrorText.stringValue(), u""_s);
}

TEST_F(ProviderNamesTest, thatArriveAfterTheSheetHasGoneOpenNothing)
{
    launch();
    host.tools.answer(providersTool, {.output = twoTeams, .hangs = true});
    document().perform(Action::doListProviderShortnames);
    host.runUntil([this] { return !host.tools.calls().isEmpty(); });
    commands().providers.doProviderNameCancel();
    EXPECT_FALSE(document().isBusy());
    host.tools.release(providersTool);
    host.settle();
    EXPECT_FALSE(host.window().namedSheet);
    EXPECT_FALSE(document().isBusy());
    EXPECT_EQ(document().statusString(), u"ready"_s);
}

TEST_F(ProviderNamesTest, thatArriveAfterTheSheetHasGoneLeaveTheFieldAlone)
{
    launch();
    host.tools.answer(providersTool, {.output = oneTeam, .hangs = true});
    document().perform(Action::doListProviderShortnames);
    host.runUntil([this] { return !host.tools.calls().isEmpty(); });
    commands().providers.doProviderNameCancel();
    document().providerNameField.setStringValue(u"typed meanwhile"_s);
    host.tools.release(providersTool);
    host.settle();
    EXPECT_EQ(document().providerNameField.stringValue(), u"typed meanwhile"_s);
}

TEST_F(ProviderNamesTest, ofAnEarlierSheetAreNotShownOnTheNext)
{
    launch();
    host.tools.answerRun(providersTool, 1, {.output = oneTeam, .hangs = true});
    host.tools.answerRun(providersTool, 2, {.output = twoTeams});
    document().perform(Action::doListProviderShortnames);
    host.runUntil([this] { return host.tools.calls().size() == 1; });
    commands().providers.doProviderNameCancel();
    document().perform(Action::doListProviderShortnames);
    host.tools.release(providersTool, 1);
    host.settle();
    EXPECT_EQ(document().providerSheetTabView.selectedIndex(), choicePage);
    EXPECT_EQ(document().providerSheetErrorText.stringValue(), u""_s);
}

TEST_F(ProviderNamesTest, takeAToolOfVersion4)
{
    host.tools.answer(u"altool-h"_s, {.output = "Copyright (c) 2019, Apple Inc. Version 3.9.9 (1)\n"});
    launch();
    document().perform(Action::doListProviderShortnames);
    ASSERT_TRUE(host.window().sheet);
    EXPECT_EQ(host.window().sheet->alert.messageText, u"Cannot List Provider Names"_s);
    EXPECT_EQ(host.window().sheet->alert.informativeText,
              u"This command relies on Xcode 11 or later being available."_s);
    EXPECT_EQ(host.window().sheet->alert.buttons, QStringList());
    EXPECT_EQ(document().statusString(), u"interacting"_s);
    EXPECT_FALSE(host.window().namedSheet);
    host.window().answerSheet();
    host.settle();
    EXPECT_EQ(document().statusString(), u"ready"_s);
    EXPECT_TRUE(host.tools.calls().isEmpty());
}
