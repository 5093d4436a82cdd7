// The commands of a script besides submitting: stapling, signing, the history and preparing.

#include "document/documentcommands.h"
#include "platform/itempath.h"
#include "platform/scriptcommand.h"
#include "scripting/MainWinController+Scripting.h"
#include "scripting/NSApplication+Scripting.h"
#include "support/items.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

enum class Receiver { application, document };

const QString historyTool = u"altool--notarization-history"_s;

} // namespace

class OtherCommand : public testing::TestWithParam<Receiver> {
protected:
    OtherCommand()
    {
        host.tools.answer(u"security"_s,
                          {.output = "1) AA \"Developer ID Application: Example Corp (A1B2C3D4E5)\"\n"
                                     "2) BB \"Developer ID Application: Other Corp (B1B2C3D4E5)\"\n"});
        host.tools.answer(u"spctl"_s, {.error = "Foo.app: accepted\n"});
        items::makeBundle(host.item(u"Foo.app"_s));
        host.launch();
    }

    QVariantMap atItem(const QString &name) const
    {
        return {{argument::at, itempath::toUrl(host.item(name))}};
    }

    /// Has the receiver carry out the command, which goes by the same name on both.
    template <class OnApplication, class OnDocument>
    void send(const QVariantMap &arguments, OnApplication onApplication, OnDocument onDocument)
    {
        reply.reset();
        command = std::make_shared<ScriptCommand>(arguments, [this](const ScriptReply &answer) {
            EXPECT_FALSE(reply) << "answered twice";
            reply = answer;
        });
        command->execute([&](const ScriptCommandPtr &executing) {
            if (GetParam() == Receiver::application)
                (host.application().scripting().*onApplication)(executing);
            else
                (MainWinControllerScripting(host.document()).*onDocument)(executing);
        });
    }

    void staple(const QVariantMap &arguments)
    {
        send(arguments, &NSApplicationScripting::AEStapleOnly, &MainWinControllerScripting::AEStapleOnly);
    }
    void sign(const QVariantMap &arguments)
    {
        send(arguments, &NSApplicationScripting::AESignOnly, &MainWinControllerScripting::AESignOnly);
    }
    void fetchHistory(const QVariantMap &arguments)
    {
        send(arguments, &NSApplicationScripting::AEFetchHistory, &MainWinControllerScripting::AEFetchHistory);
    }
    void prepare(const QVariantMap &arguments)
    {
        send(arguments, &NSApplicationScripting::AEPrepareForNotarizing,
             &MainWinControllerScripting::AEPrepareForNotarizing);
    }

    /// Fetches the history so many times in a row, each in the turn behind the answer to the one before.
    void fetchHistoryInARow(int times)
    {
        command = std::make_shared<ScriptCommand>(QVariantMap(), [this, times](const ScriptReply &answer) {
            host.mainQueue.post([this, times, answer] {
                answers.append(answer.isError() ? answer.errorText : answer.result.toString());
                if (times > 1)
                    fetchHistoryInARow(times - 1);
            });
        });
        command->execute([this](const ScriptCommandPtr &executing) {
            MainWinControllerScripting(host.document()).AEFetchHistory(executing);
        });
    }

    void makeReceiverBusy()
    {
        host.application().changeStatus(status::interacting);
        host.document().changeStatus(status::interacting);
    }

    void expectRefused(qint64 number, const QString &text = {})
    {
        ASSERT_TRUE(reply);
        EXPECT_EQ(reply->errorNumber, number);
        EXPECT_EQ(reply->errorText, text);
        EXPECT_FALSE(reply->result.isValid());
        host.settle();
        EXPECT_EQ(host.application().allControllers().size(), 1);
        EXPECT_EQ(host.document().currentCommand(), nullptr);
        EXPECT_TRUE(host.tools.calls().isEmpty());
    }
    void expectBusy()
    {
        expectRefused(1199,
                      GetParam() == Receiver::application ? u"Application is busy, status: interacting."_s
                                                          : u"Document is busy, status: interacting."_s);
    }

    /// The command is answered without an error, on a document of its own if the application got it.
    void expectSuccess()
    {
        host.settle();
        ASSERT_TRUE(reply);
        EXPECT_FALSE(reply->isError()) << reply->errorText.toStdString();
        EXPECT_EQ(host.application().allControllers().size(), GetParam() == Receiver::application ? 2 : 1);
    }

    TestHost host;
    ScriptCommandPtr command;
    std::optional<ScriptReply> reply;
    QStringList answers;
};

INSTANTIATE_TEST_SUITE_P(On, OtherCommand, testing::Values(Receiver::application, Receiver::document),
                         [](const auto &row) {
                             return std::string(row.param == Receiver::application ? "application"
                                                                                   : "document");
                         });

// Staple

TEST_P(OtherCommand, staplesTheItemWhereItLies)
{
    staple(atItem(u"Foo.app"_s));
    EXPECT_FALSE(reply);
    EXPECT_EQ(host.document().currentCommand(), command);
    expectSuccess();
    EXPECT_EQ(reply->result.toUrl(), itempath::toUrl(host.item(u"Foo.app"_s)));
    EXPECT_EQ(host.tools.order(), (QStringList{u"spctl"_s, u"stapler"_s}));
}

TEST_P(OtherCommand, staplesAFlatPackage)
{
    items::makeFile(host.item(u"Foo.PKG"_s), "xar!");
    staple(atItem(u"Foo.PKG"_s));
    expectSuccess();
}

TEST_P(OtherCommand, staplesNothingThatIsMissingOrOfAnotherKind)
{
    items::makeFolder(host.item(u"Folder"_s));
    for (const QString &name : {u"Gone.app"_s, u"Folder"_s}) {
        staple(atItem(name));
        expectRefused(6);
    }
    staple({});
    expectRefused(6);
}

TEST_P(OtherCommand, staplesNothingWhileBusy)
{
    makeReceiverBusy();
    staple(atItem(u"Foo.app"_s));
    expectBusy();
}

TEST_P(OtherCommand, tellsOfAStaplingThatFails)
{
    host.tools.answer(u"spctl"_s, {.status = 3, .error = "rejected"});
    staple(atItem(u"Foo.app"_s));
    host.settle();
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->errorNumber, 1112);
    EXPECT_TRUE(host.window().sheets.isEmpty());
}

// Sign

TEST_P(OtherCommand, signsACopyOfAnApp)
{
    sign(atItem(u"Foo.app"_s));
    expectSuccess();
    EXPECT_EQ(reply->result.toUrl(), itempath::toUrl(host.item(u"Foo - Signed/Foo.app"_s)));
}

TEST_P(OtherCommand, signsWhatIsInAPlainFolder)
{
    items::makeBundle(host.item(u"Tools/Bar.app"_s));
    sign(atItem(u"Tools"_s));
    expectSuccess();
    EXPECT_EQ(reply->result.toUrl(), itempath::toUrl(host.item(u"Tools - Signed/Tools"_s)));
}

TEST_P(OtherCommand, signsAnAppWithAnExtensionInCapitals)
{
    items::makeBundle(host.item(u"Bar.APP"_s));
    sign(atItem(u"Bar.APP"_s));
    expectSuccess();
}

TEST_P(OtherCommand, signsNeitherFilesNorOtherBundles)
{
    items::makeFile(host.item(u"Foo.pkg"_s), "xar!");
    items::makeFile(host.item(u"Foo.dmg"_s), "koly");
    items::makeFile(host.item(u"Foo"_s), "text");
    items::makeBundle(host.item(u"Foo.plugin"_s));
    items::makeBundle(host.item(u"Foo.framework"_s));
    for (const QString &name :
         {u"Foo.pkg"_s, u"Foo.dmg"_s, u"Foo"_s, u"Foo.plugin"_s, u"Foo.framework"_s, u"Gone"_s}) {
        SCOPED_TRACE(name.toStdString());
        sign(atItem(name));
        expectRefused(6);
    }
}

TEST_P(OtherCommand, signsNothingWhileBusy)
{
    makeReceiverBusy();
    sign(atItem(u"Foo.app"_s));
    expectBusy();
}

// Dialogs

TEST_P(OtherCommand, suppressesDialogsUnlessTheyAreAskedFor)
{
    QVariantMap showing = atItem(u"Foo.app"_s);
    showing.insert(argument::showingDialogs, true);
    sign(atItem(u"Foo.app"_s));
    EXPECT_TRUE(host.document().suppressDialogs());
    expectSuccess();
    EXPECT_TRUE(host.window().sheets.isEmpty());
    items::makeBundle(host.item(u"Foo.app"_s));
    staple(showing);
    EXPECT_FALSE(host.document().suppressDialogs());
    host.settle();
    ASSERT_TRUE(reply); // before anybody has dismissed the sheet
    EXPECT_EQ(host.window().sheets.size(), 1);
}

TEST_P(OtherCommand, suppressesDialogsForTheHistoryWhateverIsAskedFor)
{
    fetchHistory({{argument::showingDialogs, true}});
    EXPECT_TRUE(host.document().suppressDialogs());
    expectSuccess();
}

// History

TEST_P(OtherCommand, fetchesTheOnePageThatIsAskedFor)
{
    host.tools.answer(historyTool, {.output = "a page\nNext page value: 4\n"});
    host.document().maxPageCount.set(5);
    fetchHistory({{argument::pageToFetch, 3}});
    expectSuccess();
    EXPECT_EQ(reply->result.toString(), u"a page\nNext page value: 4\n"_s);
    ASSERT_EQ(host.tools.callsOf(historyTool).size(), 1);
    EXPECT_EQ(host.tools.callsOf(historyTool).first().value(2), u"3"_s);
}

TEST_P(OtherCommand, fetchesTheFirstPageIfNoneIsAskedFor)
{
    fetchHistory({});
    host.document().maxPageCount.set(0); // which a person's fetch would keep to
    expectSuccess();
    ASSERT_EQ(host.tools.callsOf(historyTool).size(), 1);
    EXPECT_EQ(host.tools.callsOf(historyTool).first().value(2), u"0"_s);
    EXPECT_FALSE(host.tools.callsOf(historyTool).first().contains(u"--output-format"_s));
}

TEST_P(OtherCommand, fetchesTheHistoryAsXml)
{
    host.tools.answer(historyTool, {.output = "no list"});
    fetchHistory({{argument::xmlOutput, true}});
    expectSuccess();
    EXPECT_EQ(host.tools.callsOf(historyTool).first().mid(7), (QStringList{u"--output-format"_s, u"xml"_s}));
}

TEST_P(OtherCommand, fetchesTheHistoryAnewAsSoonAsItHasBeenAnswered)
{
    host.tools.answer(historyTool, {.output = "a page"});
    fetchHistoryInARow(4);
    host.settle();
    EXPECT_EQ(answers, QStringList(4, u"a page"_s));
}

TEST_P(OtherCommand, isNeverAnsweredIfAPageInXmlNamesTheOneBehindIt)
{
    host.tools.answer(historyTool,
                      {.output = "<plist version=\"1.0\"><dict><key>notarization-history</key><dict>"
                                 "<key>next-page</key><integer>3</integer></dict></dict></plist>"});
    fetchHistory({{argument::pageToFetch, 2}, {argument::xmlOutput, true}});
    host.settle();
    EXPECT_FALSE(reply);
    EXPECT_EQ(host.document().statusString(), u"ready"_s);
    EXPECT_FALSE(host.document().isBusy());
}

TEST_P(OtherCommand, fetchesNothingWhileBusy)
{
    makeReceiverBusy();
    fetchHistory({});
    expectBusy();
}

// Prepare

TEST_P(OtherCommand, preparesForAPersonAndEndsAtOnce)
{
    const int activations = host.applicationHost.activations;
    prepare(atItem(u"Foo.app"_s));
    ASSERT_TRUE(reply);
    EXPECT_FALSE(reply->isError());
    EXPECT_FALSE(reply->result.isValid());
    EXPECT_EQ(host.document().statusString(), u"interacting"_s);
    EXPECT_EQ(host.document().submitAppButton.action(), Action::doDirectSubmit);
    EXPECT_EQ(host.document().currentCommand(), nullptr);
    EXPECT_FALSE(host.document().isScripted());
    EXPECT_FALSE(host.document().suppressDialogs());
    EXPECT_GT(host.applicationHost.activations, activations);
    EXPECT_TRUE(host.tools.calls().isEmpty());
    const auto next = std::make_shared<ScriptCommand>(atItem(u"Foo.app"_s),
                                                      [this](const ScriptReply &answer) { reply = answer; });
    next->execute([this](const ScriptCommandPtr &executing) {
        MainWinControllerScripting(host.document()).AESignOnly(executing);
    });
    EXPECT_EQ(reply->errorNumber, 1199);
    EXPECT_EQ(reply->errorText, u"Document is busy, status: interacting."_s);
}

TEST_P(OtherCommand, preparesWithTheIdentityThatIsNamedWithItsPrefixOrWithout)
{
    for (const QString &identity :
         {u"Developer ID Application: Other Corp (B1B2C3D4E5)"_s, u"Other Corp (B1B2C3D4E5)"_s}) {
        host.application().newDocument(0);
        QVariantMap arguments = atItem(u"Foo.app"_s);
        arguments.insert(argument::signingIdentity, identity);
        prepare(arguments);
        EXPECT_EQ(host.document().identitiesPopup.titleOfSelectedItem(), u"Other Corp (B1B2C3D4E5)"_s);
    }
}

TEST_P(OtherCommand, preparesWithThePresentIdentityIfAnUnknownOneIsNamed)
{
    QVariantMap arguments = atItem(u"Foo.app"_s);
    arguments.insert(argument::signingIdentity, u"Nobody"_s);
    prepare(arguments);
    ASSERT_TRUE(reply);
    EXPECT_FALSE(reply->isError());
    EXPECT_EQ(host.document().identitiesPopup.titleOfSelectedItem(), u"Example Corp (A1B2C3D4E5)"_s);
}

TEST_P(OtherCommand, onABusyReceiverGivesTheArgumentsErrorFirst)
{
    makeReceiverBusy();
    staple({});
    expectRefused(6);
    sign(atItem(u"Gone.app"_s));
    expectRefused(6);
    prepare(atItem(u"Gone.app"_s));
    expectRefused(6);
}

TEST_P(OtherCommand, goesAheadBesideABusyDocumentIfTheApplicationGetsIt)
{
    if (GetParam() == Receiver::document)
        host.application().newDocument(0);
    host.application().allControllers().first()->changeStatus(status::submitting);
    sign(atItem(u"Foo.app"_s));
    host.settle();
    ASSERT_TRUE(reply);
    EXPECT_FALSE(reply->isError());
}

TEST_P(OtherCommand, preparesNothingWhileBusyOrWithoutAnItem)
{
    prepare({});
    expectRefused(6);
    makeReceiverBusy();
    prepare(atItem(u"Foo.app"_s));
    expectBusy();
}
