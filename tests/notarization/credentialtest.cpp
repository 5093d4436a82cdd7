// The one cheap request that tells whether the credentials work together.

#include "document/documentcommands.h"
#include "notarization/altoolarguments.h"
#include "notarization/credentialcheck.h"
#include "run/credentials.h"

#include "app/preferencekeys.h"
#include "platform/itempath.h"
#include "platform/scriptcommand.h"
#include "support/steptest.h"

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

const QString historyTool = u"altool--notarization-history"_s;
const QString invalidMessage =
    u"Invalid Apple ID, or invalid key for app-specific password in login keychain."_s;
const QString unknownMessage =
    u"Unknown problem using altool. Check that the app-specific pasword, Apple ID, and team provider name are correct."_s;

} // namespace

TEST(HistoryArguments, withAProvider)
{
    EXPECT_EQ(altoolarguments::history(u"0"_s, {u"dev@example.com"_s, u"notary"_s, u"Team1"_s}),
              (QStringList{u"--notarization-history"_s, u"0"_s, u"-u"_s, u"dev@example.com"_s, u"-p"_s,
                           u"@keychain:notary"_s, u"--asc-provider"_s, u"Team1"_s}));
}

TEST(HistoryArguments, anEmptyProviderIsLeftOutAsNoneIs)
{
    const QStringList withoutProvider{u"--notarization-history"_s, u"0"_s,  u"-u"_s,
                                      u"dev@example.com"_s,        u"-p"_s, u"@keychain:notary"_s};
    EXPECT_EQ(altoolarguments::history(u"0"_s, {u"dev@example.com"_s, u"notary"_s, u""_s}), withoutProvider);
    EXPECT_EQ(altoolarguments::history(u"0"_s, {u"dev@example.com"_s, u"notary"_s, {}}), withoutProvider);
}

TEST(HistoryArguments, servesEachPage)
{
    EXPECT_EQ(altoolarguments::history(u"3"_s, {u"a"_s, u"b"_s, {}}).mid(0, 3),
              (QStringList{u"--notarization-history"_s, u"3"_s, u"-u"_s}));
}

struct MessageRow {
    const char *situation;
    const char *error;
    bool isKeychain;
};

class CredentialMessage : public testing::TestWithParam<MessageRow> { };

TEST_P(CredentialMessage, isChosenByTheKeychainSentence)
{
    EXPECT_EQ(credentialMessage(QString::fromUtf8(GetParam().error)),
              GetParam().isKeychain ? invalidMessage : unknownMessage);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, CredentialMessage,
    testing::Values(MessageRow{"theSentenceAmongOthers",
                               "Error: unable to read the password. The specified item could not be found in "
                               "the keychain. (-25300)\n",
                               true},
                    MessageRow{"otherCase", "the specified item could not be found in the keychain", false},
                    MessageRow{"wrongPassword", "Unable to authenticate. (-1011)", false},
                    MessageRow{"nothing", nullptr, false}),
    [](const auto &row) { return row.param.situation; });

class CredentialsTest : public StepTest {
protected:
    CredentialsTest()
    {
        items::makeBundle(host.item(u"Foo.app"_s));
        host.launch();
        isLaunched = true;
    }

    bool check(const Credentials &credentials = {u"dev@example.com"_s, u"notary"_s, {}})
    {
        return run([&] { return steps().credentials.checkAltool(credentials); });
    }
};

TEST_F(CredentialsTest, thatWorkLetTheRunGoOnAndShowNothingOfTheReply)
{
    host.tools.answer(historyTool, {.output = "secret history", .error = "and a warning"});
    EXPECT_TRUE(check());
    EXPECT_EQ(
        host.log(),
        QStringList{
            u"Checking if Apple ID, key for app-specific password in login keychain, and team provider are in sync..."_s});
    EXPECT_EQ(host.log(LogStyle::bold).size(), 1);
    expectNoReport();
}

TEST_F(CredentialsTest, areCheckedThroughXcrun)
{
    EXPECT_TRUE(check({u" dev@example.com"_s, u"my key"_s, u"Team1"_s}));
    EXPECT_EQ(
        host.tools.calls(),
        (QList<ToolCall>{{historyTool,
                          {u"altool"_s, u"--notarization-history"_s, u"0"_s, u"-u"_s, u" dev@example.com"_s,
                           u"-p"_s, u"@keychain:my key"_s, u"--asc-provider"_s, u"Team1"_s}}}));
}

TEST_F(CredentialsTest, areCheckedByTheToolsOwnPathWhereItHasOne)
{
    const QString tool = u"/Applications/Transporter.app/Contents/itms/bin/altool"_s;
    host.tools.add(tool);
    document().altoolPath.set(tool);
    EXPECT_TRUE(check());
    EXPECT_EQ(host.tools.calls().value(0).arguments.value(0), u"--notarization-history"_s);
}

struct CheckRow {
    const char *situation;
    ToolAnswer answer;
    bool isKeychain;
};

class CredentialFailure : public CredentialsTest, public testing::WithParamInterface<CheckRow> { };

TEST_P(CredentialFailure, endsTheRunBeforeAnythingIsCopied)
{
    const QByteArray original = items::fingerprint(host.item(u"Foo.app"_s));
    host.tools.answer(historyTool, GetParam().answer);
    host.submit(host.item(u"Foo.app"_s));
    const QString message = GetParam().isKeychain ? invalidMessage : unknownMessage;
    expectReport(u"Cannot Continue"_s, message, message);
    EXPECT_EQ(host.tools.order(), QStringList{historyTool});
    EXPECT_EQ(host.listing(), QStringList{u"Foo.app"_s});
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
    EXPECT_FALSE(document().isBusy());
    host.tools.answer(historyTool, {.output = "history"});
    expectUsableFor(u"Foo.app"_s);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, CredentialFailure,
    testing::Values(
        CheckRow{"aKeychainItemThatDoesNotExist",
                 {.status = 1, .error = "The specified item could not be found in the keychain.\n"},
                 true},
        CheckRow{"theKeychainSentenceOnStandardOutput",
                 {.status = 1, .output = "The specified item could not be found in the keychain.\n"},
                 false},
        CheckRow{"aWrongPassword", {.status = 3, .error = "Unable to authenticate."}, false},
        CheckRow{"nothingSaid", {.status = 1}, false},
        CheckRow{"garbage", {.status = 1, .error = QByteArray("\xff\x00\xfe", 3)}, false},
        CheckRow{"bySignal", {.signal = SIGKILL}, false}),
    [](const auto &row) { return row.param.situation; });

TEST_F(CredentialsTest, cannotBeCheckedByAToolThatCannotStart)
{
    document().altoolPath.set(u"/no/such/tool"_s);
    EXPECT_FALSE(check());
    expectReport(u"Cannot Continue"_s, unknownMessage, unknownMessage);
}

TEST_F(CredentialsTest, thatFailTellAScriptTheMessage)
{
    host.tools.answer(historyTool, {.status = 1});
    ScriptReply reply;
    const auto command =
        std::make_shared<ScriptCommand>(QVariantMap{}, [&](const ScriptReply &given) { reply = given; });
    document().currentCommand.set(command);
    document().suppressDialogs.set(true);
    commands().submit.scriptedSubmit(itempath::toUrl(host.item(u"Foo.app"_s)));
    host.settle();
    EXPECT_EQ(reply.errorText, u"Cannot Continue: "_s + unknownMessage);
    EXPECT_TRUE(host.window().sheets.isEmpty());
    EXPECT_EQ(document().statusString(), u"ready"_s);
}

TEST_F(CredentialsTest, whoseCheckIsCancelledLeaveOneReportAndNothingOnDisk)
{
    host.tools.answerRun(historyTool, 1, {.hangs = true});
    commands().submit.submitURL(itempath::toUrl(host.item(u"Foo.app"_s)));
    host.runUntil([this] { return !host.tools.callsOf(historyTool).isEmpty(); });
    document().doCancel();
    host.settle();
    ASSERT_EQ(host.window().sheets.size(), 1);
    EXPECT_EQ(host.window().sheets.first().messageText, u"Process Cancelled"_s);
    EXPECT_EQ(host.listing(), QStringList{u"Foo.app"_s});
    expectUsableFor(u"Foo.app"_s);
}
