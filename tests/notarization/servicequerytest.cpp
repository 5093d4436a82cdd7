// How the queries of the notary service begin and end, which is the same for all of them.

#include "notarization/altoolarguments.h"
#include "notarization/history.h"
#include "run/credentials.h"

#include "app/preferencekeys.h"
#include "document/documentcommands.h"
#include "platform/scriptcommand.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QByteArray historyOfOne =
    "<plist version=\"1.0\"><dict><key>notarization-history</key><dict><key>items</key><array><dict>"
    "<key>RequestUUID</key><string>1234-abcd</string></dict></array></dict></dict></plist>";

} // namespace

TEST(QueryArguments, ofTheHistoryMayAskForAPropertyList)
{
    EXPECT_EQ(
        altoolarguments::history(u"0"_s, {u" dev@example.com"_s, u"my key"_s, u"Team1"_s}, OutputFormat::xml),
        (QStringList{u"--notarization-history"_s, u"0"_s, u"-u"_s, u" dev@example.com"_s, u"-p"_s,
                     u"@keychain:my key"_s, u"--asc-provider"_s, u"Team1"_s, u"--output-format"_s,
                     u"xml"_s}));
    EXPECT_EQ(altoolarguments::history(u"0"_s, {u"a@b.c"_s, u"key"_s, u""_s}, OutputFormat::xml),
              (QStringList{u"--notarization-history"_s, u"0"_s, u"-u"_s, u"a@b.c"_s, u"-p"_s,
                           u"@keychain:key"_s, u"--output-format"_s, u"xml"_s}));
}

TEST(QueryArguments, ofARecordNameTheProviderIfThereIsOne)
{
    EXPECT_EQ(altoolarguments::info(u"1234-abcd"_s, {u"a@b.c"_s, u"key"_s, u"Team1"_s}),
              (QStringList{u"--notarization-info"_s, u"1234-abcd"_s, u"-u"_s, u"a@b.c"_s, u"-p"_s,
                           u"@keychain:key"_s, u"--asc-provider"_s, u"Team1"_s}));
    EXPECT_EQ(
        altoolarguments::info(u""_s, {u"a@b.c"_s, u"key"_s, {}}),
        (QStringList{u"--notarization-info"_s, u""_s, u"-u"_s, u"a@b.c"_s, u"-p"_s, u"@keychain:key"_s}));
}

TEST(QueryArguments, ofTheProvidersNeverNameOne)
{
    EXPECT_EQ(altoolarguments::listProviders({u" a@b.c"_s, u"key"_s, u"Team1"_s}),
              (QStringList{u"--list-providers"_s, u"-u"_s, u" a@b.c"_s, u"-p"_s, u"@keychain:key"_s,
                           u"--output-format"_s, u"xml"_s}));
}

TEST(HistoryFailureLine, showsWhatTheToolSaidOrThatItSaidNothing)
{
    EXPECT_EQ(
        historyFailureLine(u"Reason %2."_s, u"%1 said"_s),
        u"Reason %2.\nError message: %1 said\nCheck that both the app-specific pasword and Apple ID are correct."_s);
    EXPECT_EQ(
        historyFailureLine(u"Reason."_s, {}),
        u"Reason.\nError message: (null)\nCheck that both the app-specific pasword and Apple ID are correct."_s);
}

struct QueryRow {
    const char *name;
    QString tool;
    void (*start)(MainWinController &);
    QString blockedText; ///< null: a script is not told
};

class Query : public testing::TestWithParam<QueryRow> {
protected:
    Query()
    {
        host.tools.answer(u"altool--notarization-history"_s, {.output = historyOfOne});
        host.launch();
        beepsAtStart = host.applicationHost.beeps;
    }

    MainWinController &document() { return host.document(); }
    void start() { GetParam().start(document()); }

    /// Starts the query and lets its tool hang, until it is released.
    void startHanging()
    {
        host.tools.answer(GetParam().tool, {.output = historyOfOne, .hangs = true});
        start();
        host.runUntil([this] { return !host.tools.callsOf(GetParam().tool).isEmpty(); });
    }

    void expectRefusal(TextField &lacking, const QString &title, const QString &text)
    {
        int beepsAtReport = 0;
        qsizetype sheetsAtFocus = -1;
        QObject::connect(&document().statusTextView, &LogText::appended,
                         [&] { beepsAtReport = host.applicationHost.beeps; });
        QObject::connect(&lacking, &TextField::focusRequested,
                         [&] { sheetsAtFocus = host.window().sheets.size(); });
        start();
        host.settle();
        EXPECT_EQ(beepsAtReport, beepsAtStart + 1) << "the beep comes first";
        EXPECT_EQ(sheetsAtFocus, 1) << "the focus comes last";
        ASSERT_TRUE(host.window().sheet);
        EXPECT_EQ(host.window().sheet->alert.messageText, title);
        EXPECT_EQ(host.window().sheet->alert.informativeText, text);
        EXPECT_EQ(host.log(), QStringList{text});
        EXPECT_EQ(host.log(LogStyle::error), QStringList{text});
        EXPECT_FALSE(document().isBusy());
        EXPECT_FALSE(document().progressIndicator.isAnimating());
        EXPECT_FALSE(host.window().namedSheet);
        EXPECT_TRUE(host.tools.calls().isEmpty());
        host.window().answerSheet();
        EXPECT_EQ(document().statusString(), u"ready"_s);
    }

    QString argumentBehind(const QString &option)
    {
        const QStringList arguments = host.tools.callsOf(GetParam().tool).value(0);
        return arguments.value(arguments.indexOf(option) + 1);
    }

    TestHost host;
    int beepsAtStart;
};

TEST_P(Query, withoutAnAppleIDIsRefused)
{
    document().appleIDField.setStringValue(u" ab "_s);
    expectRefusal(document().appleIDField, u"Missing Apple ID"_s, u"You need to enter your Apple ID."_s);
}

TEST_P(Query, withoutAPasswordKeyIsRefused)
{
    document().appPassField.setStringValue(u" x\n"_s);
    expectRefusal(
        document().appPassField, u"Missing Password"_s,
        u"You need to enter the key to an application-specific password you have added to your login Keychain."_s);
}

TEST_P(Query, keepsTheWindowLogWhereItIsRefused)
{
    document().logStringMain(u"earlier"_s, false);
    document().appPassField.setStringValue(u"x"_s);
    start();
    host.settle();
    EXPECT_EQ(host.log().value(0), u"earlier"_s) << "it is emptied when all has been checked";
    EXPECT_EQ(host.log().size(), 2);
}

TEST_P(Query, isOverForWhateverComesBehindItsReadiness)
{
    std::optional<bool> isBusyBehind;
    QObject::connect(&document().statusString, &Observable::changed, [&] {
        if (document().statusString() == status::ready)
            document().dispatchToMain([&] { isBusyBehind = document().isBusy(); });
    });
    start();
    host.settle();
    if (host.window().namedSheet)
        host.window().endSheet(0);
    host.settle();
    ASSERT_TRUE(isBusyBehind);
    EXPECT_FALSE(*isBusyBehind);
}

TEST_P(Query, sendsTheAppleIDAsTypedAndTheKeyTrimmed)
{
    document().appleIDField.setStringValue(u" abc"_s);
    document().appPassField.setStringValue(u"xy \n"_s);
    start();
    host.settle();
    EXPECT_EQ(argumentBehind(u"-u"_s), u" abc"_s);
    EXPECT_EQ(argumentBehind(u"-p"_s), u"@keychain:xy"_s);
    EXPECT_FALSE(host.tools.callsOf(GetParam().tool).first().contains(u"--asc-provider"_s));
}

TEST_P(Query, stopsWhereTheWindowRefusesToGiveUpItsFocus)
{
    host.window().refusesToGiveUpFocus = true;
    document().logStringMain(u"kept"_s, false);
    start();
    host.settle();
    EXPECT_EQ(host.applicationHost.beeps, beepsAtStart + 1);
    EXPECT_EQ(host.window().editsEnded, 1);
    EXPECT_EQ(document().statusString(), u"ready"_s);
    EXPECT_FALSE(document().isBusy());
    EXPECT_FALSE(document().progressIndicator.isAnimating());
    EXPECT_TRUE(host.window().sheets.isEmpty());
    EXPECT_EQ(host.log(), QStringList{u"kept"_s});
    EXPECT_TRUE(host.tools.calls().isEmpty());
}

TEST_P(Query, thatIsBlockedTellsAWaitingScriptInItsOwnWords)
{
    std::optional<ScriptReply> reply;
    document().isScripted.set(true);
    document().currentCommand.set(std::make_shared<ScriptCommand>(
        QVariantMap{}, [&reply](const ScriptReply &answer) { reply = answer; }));
    host.window().refusesToGiveUpFocus = true;
    start();
    ASSERT_EQ(reply.has_value(), !GetParam().blockedText.isNull());
    if (!reply)
        return;
    EXPECT_EQ(reply->errorText, GetParam().blockedText);
    EXPECT_EQ(reply->errorNumber, 7);
    EXPECT_FALSE(reply->result.isValid());
}

TEST_P(Query, clearsTheWindowLogUnlessItIsToBeKept)
{
    document().logStringMain(u"earlier"_s, false);
    document().dontClearCheckbox.setState(1);
    start();
    host.settle();
    EXPECT_TRUE(host.log().contains(u"earlier"_s));
    document().dontClearCheckbox.setState(0);
    start();
    EXPECT_FALSE(host.log().contains(u"earlier"_s));
    host.settle();
}

TEST_P(Query, keepsTheDocumentBusyAndCannotBeCancelled)
{
    startHanging();
    EXPECT_TRUE(document().isBusy());
    EXPECT_FALSE(document().canCancel());
    EXPECT_FALSE(document().isSubmitting());
    EXPECT_TRUE(document().progressIndicator.isAnimating());
    EXPECT_EQ(document().statusString(), u"fetching"_s);
    host.tools.release(GetParam().tool);
    host.settle();
    document().commands().providers.doProviderNameCancel(); // of the one query that has a sheet
    host.settle();
    EXPECT_FALSE(document().isBusy());
    EXPECT_FALSE(document().progressIndicator.isAnimating());
    EXPECT_EQ(document().statusString(), u"ready"_s);
}

TEST_P(Query, leavesWhatASubmissionHasLeftAsItIs)
{
    document().lastAction.set(stapleAction);
    document().appletURL.set(QUrl(u"file:///items/Foo.app"_s));
    document().infoFailureCount.set(2);
    document().info239FailureCount.set(5);
    start();
    host.settle();
    EXPECT_EQ(document().lastAction(), quint64(stapleAction));
    EXPECT_EQ(document().appletURL(), QUrl(u"file:///items/Foo.app"_s));
    EXPECT_EQ(document().infoFailureCount(), 2u);
    EXPECT_EQ(document().info239FailureCount(), 5u);
    EXPECT_EQ(document().logHandle(), nullptr);
    EXPECT_EQ(host.listing(), QStringList());
    EXPECT_TRUE(host.timers.armed().isEmpty());
}

TEST_P(Query, writesNoReportOfItsToolToALogFileThatIsStillOpen)
{
    document().loggingToFile.set(true);
    host.openLog(document(), host.item(u"log.txt"_s), u"of an earlier run"_s);
    start();
    host.settle();
    EXPECT_FALSE(host.tools.callsOf(GetParam().tool).isEmpty());
    const QString logged = host.text(u"log.txt"_s);
    EXPECT_TRUE(logged.contains(u"of an earlier run"_s));
    EXPECT_FALSE(logged.contains(u"Result for "_s)) << logged.toStdString();
}

TEST_P(Query, inFlightWhenItsDocumentClosesLeavesNothingBehind)
{
    host.application().newDocument(0); // so that an application is left to look at
    const std::weak_ptr<MainWinController> watched = document().weak_from_this();
    startHanging();
    host.window().performClose();
    ASSERT_TRUE(host.window().sheet);
    EXPECT_EQ(host.window().sheet->alert.informativeText, u"This window is busy."_s);
    host.window().answerSheet(platform::alertSecondButton);
    EXPECT_FALSE(watched.expired()) << "the job holds its document";
    host.tools.release(GetParam().tool);
    host.settle();
    EXPECT_TRUE(watched.expired());
    EXPECT_EQ(host.application().allControllers().size(), 1);
    EXPECT_EQ(host.log(), QStringList());
    EXPECT_TRUE(host.window().sheets.isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Queries, Query,
    testing::Values(
        QueryRow{"ofARecord", u"altool--notarization-info"_s,
                 [](MainWinController &document) {
                     document.commands().requestInfo.infoForRequestUUID(u"1234-abcd"_s);
                 },
                 u"Interface is blocked."_s},
        QueryRow{"ofTheNewestRecord", u"altool--notarization-history"_s,
                 [](MainWinController &document) { document.perform(Action::doInfoForUUIDOfLastUpload); },
                 u"Interface is blocked."_s},
        QueryRow{"ofTheHistory", u"altool--notarization-history"_s,
                 [](MainWinController &document) { document.perform(Action::doFetchHistory); },
                 u"Inteface is blocked."_s},
        QueryRow{"ofTheProviders",
                 u"altool--list-providers"_s,
                 [](MainWinController &document) { document.perform(Action::doListProviderShortnames); },
                 {}}),
    [](const auto &row) { return row.param.name; });
