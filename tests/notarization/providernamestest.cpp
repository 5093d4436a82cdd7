// The sheet with the teams of the account.

#include "notarization/providernames.h"
#include "document/documentcommands.h"
#include "document/providersheet.h"

#include "support/steptest.h"

using namespace Qt::StringLiterals;

namespace {

const QString providersTool = u"altool--list-providers"_s;
const QString problem = u"Problem With Apple Team Details"_s;

QByteArray list(const QByteArray &entries)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + entries
        + "</dict></plist>\n";
}

QByteArray providers(const QByteArray &array)
{
    return list("<key>providers</key><array>" + array + "</array>");
}

QByteArray team(const QByteArray &shortName, const QByteArray &name, const QByteArray &identifier)
{
    return "<dict><key>ProviderName</key><string>" + name + "</string><key>ProviderShortname</key><string>"
        + shortName + "</string><key>WWDRTeamID</key><string>" + identifier + "</string></dict>";
}

const QByteArray oneTeam = providers(team("Zebra", "Zebra Corp", "Z1"));
const QByteArray twoTeams =
    providers(team("Zebra", "Zebra Corp", "Z1") + team("Ant", "Ant &amp; Co %1", "A1"));

SLWTaskResponsePtr response(qint64 status, const QByteArray &output, const QByteArray &error = {})
{
    const auto made = SLWTaskResponse::responseWithPath(u"/usr/bin/xcrun"_s, {});
    made->status.set(status);
    made->setData(std::make_shared<OutputBuffer>(output), std::make_shared<OutputBuffer>(error));
    return made;
}

} // namespace

// The reply

struct TagRow {
    const char *situation;
    const char *error;
    const char *kept;
};

class ErrorTag : public testing::TestWithParam<TagRow> { };

TEST_P(ErrorTag, isCutOff)
{
    const QString kept = withoutTag(QString::fromUtf8(GetParam().error));
    EXPECT_EQ(kept, QString::fromUtf8(GetParam().kept));
    EXPECT_EQ(kept.isNull(), GetParam().kept == nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ErrorTag,
    testing::Values(TagRow{"inFront", "2026 altool[17:5] *** Error: no.\n", "*** Error: no."},
                    TagRow{"theFirstOfTwo", "[a] b [c] d", "b [c] d"}, TagRow{"nothingBehind", "[a]", ""},
                    TagRow{"openAlone", " [a b\n", " [a b\n"}, TagRow{"none", " whole \n", " whole \n"},
                    TagRow{"nothing", nullptr, nullptr}),
    [](const auto &row) { return row.param.situation; });

struct UnusableRow {
    const char *situation;
    SLWTaskResponsePtr response;
    QString heading;
    QString detail;
};

class UnusableReply : public testing::TestWithParam<UnusableRow> { };

TEST_P(UnusableReply, isAMessage)
{
    const auto reply = readProviders(*GetParam().response);
    ASSERT_TRUE(std::holds_alternative<ProviderMessage>(reply));
    EXPECT_EQ(std::get<ProviderMessage>(reply).heading, GetParam().heading);
    EXPECT_EQ(std::get<ProviderMessage>(reply).detail, GetParam().detail);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, UnusableReply,
    testing::Values(
        UnusableRow{
            "ofAFailure", response(1, twoTeams, "altool[1] *** Error: no.\n"),
            u"Problem Retrieving Apple Team Details"_s,
            u"Error returned: *** Error: no.\n\nCheck that both the app-specific pasword and Apple ID are correct."_s},
        UnusableRow{
            "ofAFailureWithoutText", response(1, "said on the other stream"),
            u"Problem Retrieving Apple Team Details"_s,
            u"Error returned: (null)\n\nCheck that both the app-specific pasword and Apple ID are correct."_s},
        UnusableRow{
            "ofAToolThatDidNotStart",
            [] {
                const auto skipped = SLWTaskResponse::responseWithPath(u"/usr/bin/xcrun"_s, {});
                skipped->status.set(statusSkipped);
                return skipped;
            }(),
            u"Problem Retrieving Apple Team Details"_s,
            u"Error returned: (null)\n\nCheck that both the app-specific pasword and Apple ID are correct."_s},
        UnusableRow{"withoutProviders", response(0, list("<key>teams</key><array/>")), problem,
                    u"No providers were found in the data returned."_s},
        UnusableRow{"withAText", response(0, list("<key>providers</key><string>none</string>")), problem,
                    u"No providers were found in the data returned."_s},
        UnusableRow{"thatIsAnArray", response(0, "<plist version=\"1.0\"><array/></plist>"), problem,
                    u"No providers were found in the data returned."_s}),
    [](const auto &row) { return row.param.situation; });

TEST(ProvidersReply, thatIsNoPropertyListShowsTheReadersError)
{
    for (const QByteArray &data : {twoTeams.chopped(30), QByteArray()}) {
        const auto reply = readProviders(*response(0, data));
        ASSERT_TRUE(std::holds_alternative<ProviderMessage>(reply));
        const ProviderMessage message = std::get<ProviderMessage>(reply);
        EXPECT_EQ(message.heading, problem);
        EXPECT_TRUE(message.detail.startsWith(u"Error returned: "_s));
        EXPECT_GT(message.detail.size(), u"Error returned: "_s.size());
    }
}

TEST(ProvidersReply, namesTheTeamsInItsOrder)
{
    const auto reply = readProviders(*response(0, twoTeams, "a warning"));
    ASSERT_TRUE(std::holds_alternative<Providers>(reply));
    const Providers teams = std::get<Providers>(reply);
    ASSERT_EQ(teams.size(), 2);
    EXPECT_EQ(teams.at(0).title, u"Zebra (Name: Zebra Corp, Team ID: Z1)"_s);
    EXPECT_EQ(teams.at(0).representedObject, u"Zebra"_s);
    EXPECT_EQ(teams.at(1).title, u"Ant (Name: Ant & Co %1, Team ID: A1)"_s);
    EXPECT_EQ(teams.at(1).representedObject, u"Ant"_s);
}

TEST(ProvidersReply, showsWhatATeamLacks)
{
    const auto reply = readProviders(*response(0, providers("<dict/>" + team("a", "b", "c"))));
    EXPECT_EQ(std::get<Providers>(reply).at(0).title, u"(null) (Name: (null), Team ID: (null))"_s);
    EXPECT_EQ(std::get<Providers>(reply).at(0).representedObject, QString());
}

// The command and the sheet

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
