// The account's history: how many pages are asked for, what is shown, and what a script gets.

#include "notarization/history.h"
#include "document/documentcommands.h"
#include "run/credentials.h"

#include "platform/scriptcommand.h"
#include "support/steptest.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace {

const QString historyTool = u"altool--notarization-history"_s;

QByteArray list(const QByteArray &history)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist "
           "version=\"1.0\"><dict><key>notarization-history"
           "</key>"
        + history + "</dict></plist>\n";
}

QByteArray listWithNextPage(const QByteArray &value)
{
    return list("<dict><key>items</key><array/><key>next-page</key>" + value + "</dict>");
}

} // namespace

struct NextPageRow {
    const char *situation;
    QByteArray reply;
    OutputFormat format;
    std::optional<quint64> page;
};

class NextPage : public testing::TestWithParam<NextPageRow> { };

TEST_P(NextPage, isRead)
{
    EXPECT_EQ(nextPage(QString::fromUtf8(GetParam().reply), GetParam().format), GetParam().page);
}

INSTANTIATE_TEST_SUITE_P(
    OfText, NextPage,
    testing::Values(
        NextPageRow{"neverFound", "items\nNext page value: 1\n", OutputFormat::normal, {}},
        NextPageRow{"norAsThePatternIsWritten", "Next page value: {Nd}\n", OutputFormat::normal, {}},
        NextPageRow{"noItems", "No items found.\n", OutputFormat::normal, {}},
        NextPageRow{"noItemsBesideAPage", "Next page value: 1\nNo items found.\n", OutputFormat::normal, {}},
        NextPageRow{"nothing", "", OutputFormat::normal, {}},
        NextPageRow{"aPropertyList", listWithNextPage("<integer>1</integer>"), OutputFormat::normal, {}}),
    [](const auto &row) { return row.param.situation; });

INSTANTIATE_TEST_SUITE_P(
    OfXml, NextPage,
    testing::Values(
        NextPageRow{"aNumber", listWithNextPage("<integer>4</integer>"), OutputFormat::xml, 4},
        NextPageRow{"aText", listWithNextPage("<string>4</string>"), OutputFormat::xml, 4},
        NextPageRow{"absent", list("<dict><key>items</key><array/></dict>"), OutputFormat::xml, 0},
        NextPageRow{"aHistoryThatIsNoDictionary", list("<array/>"), OutputFormat::xml, 0},
        NextPageRow{"atTheTop",
                    "<plist version=\"1.0\"><dict><key>next-page</key><integer>4</integer></dict></plist>",
                    OutputFormat::xml, 0},
        NextPageRow{"cutOff", listWithNextPage("<integer>4</integer>").chopped(20), OutputFormat::xml, {}},
        NextPageRow{"plainText", "Next page value: 4\n", OutputFormat::xml, {}},
        NextPageRow{"nothing", "", OutputFormat::xml, {}}),
    [](const auto &row) { return row.param.situation; });

class HistoryTest : public StepTest {
protected:
    HistoryTest()
    {
        host.launch();
        isLaunched = true;
    }

    void fetch()
    {
        document().perform(Action::doFetchHistory);
        host.settle();
    }

    /// Fetches one page for a script; its reply is in `reply`.
    void fetchByScript(quint64 page, bool asXml)
    {
        document().currentCommand.set(
            std::make_shared<ScriptCommand>(QVariantMap{{argument::xmlOutput, asXml}},
                                            [this](const ScriptReply &answer) { reply = answer; }));
        document().suppressDialogs.set(true);
        commands().history.fetchHistory(page);
        host.settle();
    }

    QList<QStringList> calls() { return host.tools.callsOf(historyTool); }
    QStringList pagesAsked()
    {
        QStringList pages;
        for (const QStringList &arguments : calls())
            pages.append(arguments.value(2));
        return pages;
    }

    void expectIdle()
    {
        EXPECT_EQ(document().statusString(), u"ready"_s);
        EXPECT_FALSE(document().isBusy());
        EXPECT_FALSE(document().isScripted());
        EXPECT_FALSE(document().suppressDialogs());
        EXPECT_FALSE(document().progressIndicator.isAnimating());
        expectNoReport();
    }

    std::optional<ScriptReply> reply;
};

TEST_F(HistoryTest, isShownAsTheToolPrintsIt)
{
    host.tools.answer(historyTool, {.output = "line one\nline two\n", .error = "a warning"});
    fetch();
    EXPECT_EQ(calls(),
              (QList<QStringList>{{u"altool"_s, u"--notarization-history"_s, u"0"_s, u"-u"_s,
                                   u"dev@example.com"_s, u"-p"_s, u"@keychain:notary"_s}}));
    EXPECT_EQ(host.log(), (QStringList{u"\nFetching notarizing history..."_s, u"line one\nline two\n"_s}));
    EXPECT_EQ(host.log(LogStyle::bold), QStringList{u"\nFetching notarizing history..."_s});
    expectIdle();
}

TEST_F(HistoryTest, ofATeamNamesIt)
{
    document().providerNameField.setStringValue(u"Team1"_s);
    fetch();
    EXPECT_EQ(calls().value(0).mid(7), (QStringList{u"--asc-provider"_s, u"Team1"_s}));
}

TEST_F(HistoryTest, withoutSubmissionsIsOneRequest)
{
    document().maxPageCount.set(5);
    host.tools.answer(historyTool, {.output = "No items found.\n"});
    fetch();
    EXPECT_EQ(pagesAsked(), QStringList{u"0"_s});
    EXPECT_EQ(host.log().last(), u"No items found.\n"_s);
    expectIdle();
}

TEST_F(HistoryTest, ofManyPagesIsStillOneRequest)
{
    document().maxPageCount.set(5);
    host.tools.answer(historyTool, {.output = "items\nNext page value: 1\n"});
    fetch();
    EXPECT_EQ(pagesAsked(), QStringList{u"0"_s});
    EXPECT_EQ(host.log().size(), 2);
    expectIdle();
}

TEST_F(HistoryTest, ofNoPagesAsksForNothing)
{
    document().maxPageCount.set(0);
    fetch();
    EXPECT_TRUE(host.tools.calls().isEmpty());
    EXPECT_EQ(host.log(), QStringList{u"\nFetching notarizing history..."_s});
    expectIdle();
}

TEST_F(HistoryTest, ofAToolThatPrintsNothingShowsThat)
{
    host.tools.answer(historyTool, {.error = "a warning"});
    fetch();
    EXPECT_EQ(host.log().last(), u"(null)"_s);
    expectIdle();
}

TEST_F(HistoryTest, byAPersonTurnsDialogsOnAgain)
{
    document().suppressDialogs.set(true);
    host.tools.answer(historyTool, {.status = 1});
    fetch();
    EXPECT_EQ(host.window().sheets.size(), 1);
}

TEST_F(HistoryTest, byAPersonDoesNotAnswerACommandThatHasItsAnswer)
{
    fetchByScript(0, false);
    host.tools.answer(historyTool, {.output = "later\n"});
    fetch();
    EXPECT_EQ(reply->result.toString(), u"Notarization History - page 0\n"_s);
}

// The most pages

TEST_F(HistoryTest, takesTheMostPagesFromItsField)
{
    EXPECT_EQ(document().historyMaxPagesField.stringValue(), u"1"_s);
    document().historyMaxPagesField.setStringValue(u"12"_s);
    EXPECT_EQ(document().maxPageCount(), 12u);
    for (const QString &noNumber : {u"many"_s, u""_s, u"-1"_s, u"1.5"_s, u"3x"_s, u"0"_s}) {
        document().historyMaxPagesField.setStringValue(noNumber);
        EXPECT_EQ(document().maxPageCount(), 12u) << noNumber.toStdString();
    }
    document().maxPageCount.set(5);
    EXPECT_EQ(document().historyMaxPagesField.stringValue(), u"5"_s);
}

// For a script

TEST_F(HistoryTest, byAScriptIsTheOnePageThatItNames)
{
    host.tools.answer(historyTool, {.output = "page three\nNext page value: 4\n"});
    fetchByScript(3, false);
    EXPECT_EQ(calls(),
              (QList<QStringList>{{u"altool"_s, u"--notarization-history"_s, u"3"_s, u"-u"_s,
                                   u"dev@example.com"_s, u"-p"_s, u"@keychain:notary"_s}}));
    ASSERT_TRUE(reply);
    EXPECT_FALSE(reply->isError());
    EXPECT_EQ(reply->result, QVariant(u"page three\nNext page value: 4\n"_s));
    EXPECT_EQ(host.log().last(), u"page three\nNext page value: 4\n"_s);
    expectIdle();
}

TEST_F(HistoryTest, byAScriptDoesNotHeedTheMostPagesOfAPerson)
{
    document().maxPageCount.set(0);
    fetchByScript(7, false);
    EXPECT_EQ(pagesAsked(), QStringList{u"7"_s});
}

TEST_F(HistoryTest, byAScriptMayBeXml)
{
    const QByteArray page = listWithNextPage("<integer>2</integer>");
    host.tools.answer(historyTool, {.output = page});
    fetchByScript(3, true);
    EXPECT_EQ(calls().value(0).mid(7), (QStringList{u"--output-format"_s, u"xml"_s}));
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->result, QVariant(QString::fromUtf8(page)));
    EXPECT_EQ(host.log().last(), QString::fromUtf8(page)) << "the log shows the raw text";
    expectIdle();
}

TEST_F(HistoryTest, byAScriptInXmlWithoutANextPageIsAnswered)
{
    host.tools.answer(historyTool, {.output = list("<dict><key>items</key><array/></dict>")});
    fetchByScript(0, true);
    ASSERT_TRUE(reply);
    EXPECT_FALSE(reply->isError());
    expectIdle();
}

TEST_F(HistoryTest, byAScriptInXmlThatCannotBeReadIsAnsweredAllTheSame)
{
    host.tools.answer(historyTool, {.output = "no list at all"});
    fetchByScript(3, true);
    ASSERT_TRUE(reply);
    EXPECT_FALSE(reply->isError());
    EXPECT_EQ(reply->result, QVariant(u"no list at all"_s));
    expectIdle();
}

TEST_F(HistoryTest, byAScriptInXmlWhosePageHasANextOneIsNeverAnswered)
{
    host.tools.answer(historyTool, {.output = listWithNextPage("<integer>4</integer>")});
    fetchByScript(3, true);
    EXPECT_FALSE(reply);
    EXPECT_EQ(pagesAsked(), QStringList{u"3"_s});
    expectIdle();
}

TEST_F(HistoryTest, byAScriptOfAToolThatPrintsNothingHasNoResult)
{
    host.tools.answer(historyTool, {});
    fetchByScript(0, false);
    ASSERT_TRUE(reply);
    EXPECT_FALSE(reply->isError());
    EXPECT_FALSE(reply->result.isValid());
}

TEST_F(HistoryTest, byAScriptOfTheLastPageThatCanBeCountedAsksForNothing)
{
    fetchByScript(std::numeric_limits<quint64>::max(), false);
    EXPECT_TRUE(host.tools.calls().isEmpty());
    EXPECT_FALSE(reply);
    expectIdle();
}

TEST_F(HistoryTest, byAScriptThatFailsIsAnErrorWithTheWholeLine)
{
    host.tools.answer(historyTool, {.status = 3, .error = "Unable to authenticate."});
    fetchByScript(0, false);
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->errorNumber, 1120);
    EXPECT_EQ(
        reply->errorText,
        u"Cannot Fetch History: Unknown problem using altool. Check that the app-specific pasword, Apple ID, and team provider name are correct.\nError message: Unable to authenticate.\nCheck that both the app-specific pasword and Apple ID are correct."_s);
    EXPECT_TRUE(host.window().sheets.isEmpty());
    EXPECT_EQ(document().statusString(), u"ready"_s);
    EXPECT_FALSE(document().isScripted());
}

struct RefusalRow {
    const char *situation;
    std::function<void(TestHost &)> arrange;
    int number;
    QString text;
};

class RefusedScript : public HistoryTest, public testing::WithParamInterface<RefusalRow> { };

TEST_P(RefusedScript, isToldTheNumberAndTheText)
{
    GetParam().arrange(host);
    fetchByScript(0, false);
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->errorNumber, GetParam().number);
    EXPECT_EQ(reply->errorText, GetParam().text);
    EXPECT_FALSE(reply->result.isValid());
    EXPECT_TRUE(host.tools.calls().isEmpty());
    EXPECT_FALSE(document().isBusy());
}

INSTANTIATE_TEST_SUITE_P(
    For, RefusedScript,
    testing::Values(
        RefusalRow{"theFocus", [](TestHost &host) { host.window().refusesToGiveUpFocus = true; }, 7,
                   u"Inteface is blocked."_s},
        RefusalRow{"theAppleID", [](TestHost &host) { host.document().appleIDField.setStringValue({}); },
                   1100, u"Missing Apple ID: You need to enter your Apple ID."_s},
        RefusalRow{
            "thePassword", [](TestHost &host) { host.document().appPassField.setStringValue({}); }, 1101,
            u"Missing Password: You need to enter the key to an application-specific password you have added to your login Keychain."_s}),
    [](const auto &row) { return row.param.situation; });

// Failures

struct FailureRow {
    const char *situation;
    ToolAnswer answer;
    QString reason;
    QString shownError;
};

class FailedFetch : public HistoryTest, public testing::WithParamInterface<FailureRow> { };

TEST_P(FailedFetch, isReported)
{
    host.tools.answer(historyTool, GetParam().answer);
    fetch();
    expectReport(
        u"Cannot Fetch History"_s,
        u"%1\nError message: %2\nCheck that both the app-specific pasword and Apple ID are correct."_s.arg(
            GetParam().reason, GetParam().shownError));
    EXPECT_EQ(host.log(LogStyle::plain), QStringList()) << "the page of a failed run is not shown";
    EXPECT_FALSE(document().isBusy());
    EXPECT_EQ(document().statusString(), u"interacting"_s);
    host.window().answerSheet();
    EXPECT_EQ(document().statusString(), u"ready"_s);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, FailedFetch,
    testing::Values(
        FailureRow{"aKeychainItemThatDoesNotExist",
                   {.status = 1, .error = "The specified item could not be found in the keychain."},
                   u"Invalid Apple ID, or invalid key for app-specific password in login keychain."_s,
                   u"The specified item could not be found in the keychain."_s},
        FailureRow{
            "anotherProblem",
            {.status = 3, .output = "page", .error = "Unable to authenticate."},
            u"Unknown problem using altool. Check that the app-specific pasword, Apple ID, and team provider name are correct."_s,
            u"Unable to authenticate."_s},
        // Where a lookup of the last upload blames the keychain.
        FailureRow{
            "nothingOnStandardError",
            {.status = 1},
            u"Unknown problem using altool. Check that the app-specific pasword, Apple ID, and team provider name are correct."_s,
            u"(null)"_s}),
    [](const auto &row) { return row.param.situation; });
