// The submit commands of a script, on the application and on a document.

#include "scripting/commandtest.h"

using namespace Qt::StringLiterals;

class SubmitCommand : public AScript, public testing::WithParamInterface<Receiver> {
protected:
    using AScript::send;
    void send(const QVariantMap &arguments) { send(arguments, GetParam()); }
};

TEST_P(SubmitCommand, withoutAnItemIsRefused)
{
    send({});
    expectRefused(6);
}

TEST_P(SubmitCommand, withATextInPlaceOfAUrlIsRefused)
{
    send({{argument::at, host.item(u"Foo.app"_s)}});
    expectRefused(6);
}

TEST_P(SubmitCommand, withAnotherExtensionIsRefused)
{
    items::makeFile(host.item(u"Foo.zip"_s), "zip");
    send(atItem(u"Foo.zip"_s));
    expectRefused(6);
}

TEST_P(SubmitCommand, withAMissingItemIsRefusedAndOpensNoWindow)
{
    send(atItem(u"Gone.app"_s));
    expectRefused(6);
}

TEST_P(SubmitCommand, withAnExtensionInCapitalsIsAccepted)
{
    items::makeBundle(host.item(u"Bar.APP"_s));
    send(atItem(u"Bar.APP"_s));
    host.settle();
    host.firePolls();
    ASSERT_TRUE(reply);
    EXPECT_FALSE(reply->isError());
}

TEST_P(SubmitCommand, takesEachOfTheFiveKinds)
{
    host.tools.answer(u"spctl"_s, {.error = "accepted"});
    host.document().identitiesPopup.selectItemWithTitle(u"Example Corp (A1B2C3D4E5)"_s);
    for (const QString &name : {u"Bar.plugin"_s, u"Baz.fmplugin"_s, u"Qux.dmg"_s, u"Foo.app"_s}) {
        if (name.endsWith(u".dmg"_s))
            items::makeFile(host.item(name), "koly");
        else
            items::makeBundle(host.item(name));
        send(atItem(name));
        host.settle();
        host.firePolls();
        ASSERT_TRUE(reply) << name.toStdString();
        EXPECT_FALSE(reply->isError()) << reply->errorText.toStdString();
    }
    items::makeFile(host.item(u"Quux.pkg"_s), "xar!");
    send(atItem(u"Quux.pkg"_s));
    host.settle();
    ASSERT_TRUE(reply);
    EXPECT_TRUE(reply->errorText.startsWith(u"Installer Identity Not Found: "_s))
        << "taken, and then checked";
}

TEST_P(SubmitCommand, onABusyReceiverGivesTheArgumentsErrorFirst)
{
    host.application().changeStatus(status::interacting);
    host.document().changeStatus(status::submitting);
    send({});
    expectRefused(6);
}

TEST_P(SubmitCommand, suspendsUntilTheItemIsStapled)
{
    send(atItem(u"Foo.app"_s));
    EXPECT_FALSE(reply);
    EXPECT_EQ(host.document().currentCommand(), command);
    EXPECT_FALSE(host.document().isScripted()); // the work is only queued
    host.settle();
    EXPECT_TRUE(host.document().isScripted());
    EXPECT_FALSE(reply);
    host.firePolls();
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->result.toUrl(), itempath::toUrl(host.item(u"Foo - Notarized/Foo.app"_s)));
}

TEST_P(SubmitCommand, withoutShowingDialogsSuppressesThem)
{
    send(atItem(u"Foo.app"_s));
    EXPECT_TRUE(host.document().suppressDialogs());
}

TEST_P(SubmitCommand, showingDialogsLeavesThemOn)
{
    QVariantMap arguments = atItem(u"Foo.app"_s);
    arguments.insert(argument::showingDialogs, true);
    send(arguments);
    EXPECT_FALSE(host.document().suppressDialogs());
}

TEST_P(SubmitCommand, thatFailsIsAnsweredWithNumberAndText)
{
    host.tools.answer(u"altool--notarization-history"_s, {.status = 1, .error = "no network"});
    send(atItem(u"Foo.app"_s));
    host.settle();
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->errorNumber, 1103);
    EXPECT_EQ(
        reply->errorText,
        u"Cannot Continue: Unknown problem using altool. Check that the app-specific pasword, Apple ID, and team provider name are correct."_s);
    EXPECT_FALSE(reply->result.isValid());
    EXPECT_EQ(host.document().statusString(), u"ready"_s);
    EXPECT_TRUE(host.window().sheets.isEmpty());
}

TEST_P(SubmitCommand, thatFailsAfterTheUploadNamesTheItem)
{
    host.tools.answer(u"altool--notarization-info"_s, {.output = "Status: invalid\n"});
    send(atItem(u"Foo.app"_s));
    host.settle();
    host.firePolls();
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->errorNumber, 1117);
    EXPECT_EQ(reply->offendingObject.toUrl(), itempath::toUrl(host.item(u"Foo - Submitted/Foo.app"_s)));
}

TEST_P(SubmitCommand, skippingStaplingIsAnsweredWhenTheUploadIsAccepted)
{
    QVariantMap arguments = atItem(u"Foo.app"_s);
    arguments.insert(argument::skippingStapling, true);
    send(arguments);
    host.settle();
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->result.toUrl(), itempath::toUrl(host.item(u"Foo - Submitted/Foo.app"_s)));
    EXPECT_TRUE(host.timers.armed().isEmpty());
    EXPECT_EQ(host.document().statusString(), u"ready"_s);
    EXPECT_FALSE(host.document().isBusy());
}

TEST_P(SubmitCommand, thatIsCancelledIsAnsweredOnce)
{
    host.tools.answer(u"xattr"_s, {.hangs = true});
    send(atItem(u"Foo.app"_s));
    host.runUntil([this] { return !host.tools.callsOf(u"xattr"_s).isEmpty(); });
    host.document().doCancel();
    host.settle();
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->errorNumber, 1118);
    EXPECT_EQ(reply->errorText, u"Process Cancelled: Uploading of the app may not have been completed."_s);
}

INSTANTIATE_TEST_SUITE_P(On, SubmitCommand, testing::Values(Receiver::application, Receiver::document),
                         [](const auto &row) {
                             return row.param == Receiver::application ? std::string("application")
                                                                       : std::string("document");
                         });

TEST_F(AScript, isToldThatTheApplicationIsLoadingAndOpensNoWindow)
{
    for (const QStringView word : {status::loading, status::interacting}) {
        host.application().changeStatus(word);
        send(atItem(u"Foo.app"_s), Receiver::application);
        expectRefused(1199, u"Application is busy, status: %1."_s.arg(word));
    }
}

TEST_F(AScript, isToldThatADocumentIsBusy)
{
    host.document().changeStatus(status::waiting);
    send(atItem(u"Foo.app"_s), Receiver::document);
    expectRefused(1199, u"Document is busy, status: waiting."_s);
}

TEST_F(AScript, submitsBesideABusyDocumentInASecondOne)
{
    host.tools.answerRun(u"xattr"_s, 1, {.hangs = true});
    MainWinController &first = host.document();
    first.commands().submit.submitURL(itempath::toUrl(host.item(u"Foo.app"_s)));
    host.runUntil([this] { return !host.tools.callsOf(u"xattr"_s).isEmpty(); });
    items::makeBundle(host.item(u"Bar.app"_s));
    send(atItem(u"Bar.app"_s), Receiver::application);
    EXPECT_EQ(host.application().allControllers().size(), 2);
    EXPECT_EQ(host.applicationHost.activations, 2);
    host.runUntil([this] { return host.document().statusString() == status::waiting; });
    EXPECT_EQ(host.timers.armed().size(), 1);
    EXPECT_EQ(first.statusString(), u"submitting"_s);
    first.doCancel();
    host.settle();
}

TEST_F(AScript, isRefusedByAPreparedDocument)
{
    host.document().commands().submit.prepareForDirectSubmit(itempath::toUrl(host.item(u"Foo.app"_s)), {});
    send(atItem(u"Foo.app"_s), Receiver::document);
    expectRefused(1199, u"Document is busy, status: interacting."_s);
}

TEST_F(AScript, isToldNothingOfAFailureOfAPersonsOwnRun)
{
    suspendStaleCommand();
    host.document().isScripted.set(true);
    host.tools.answer(u"altool--notarization-history"_s, {.status = 1});
    host.document().commands().submit.doSubmit();
    host.window().choose(itempath::toUrl(host.item(u"Foo.app"_s)));
    host.settle();
    EXPECT_EQ(host.window().sheets.last().messageText, u"Cannot Continue"_s);
    EXPECT_EQ(host.document().currentCommand(), command);
    EXPECT_FALSE(reply) << "the command still waits, and is not the run's";
}

TEST_F(AScript, thatIsRefusedLeavesTheDocumentsCommandAndDialogsAlone)
{
    suspendStaleCommand();
    const ScriptCommandPtr before = command;
    host.document().suppressDialogs.set(true);
    QVariantMap arguments = atItem(u"Gone.app"_s);
    arguments.insert(argument::showingDialogs, true);
    send(arguments, Receiver::document);
    expectRefused(6);
    host.document().changeStatus(status::waiting);
    arguments.insert(argument::at, itempath::toUrl(host.item(u"Foo.app"_s)));
    send(arguments, Receiver::document);
    expectRefused(1199, u"Document is busy, status: waiting."_s);
    EXPECT_EQ(host.document().currentCommand(), before);
    EXPECT_TRUE(host.document().suppressDialogs());
    EXPECT_FALSE(host.document().isScripted());
}

TEST_F(AScript, isServedByADocumentThatSaysReadyThoughItsBusyFlagIsOn)
{
    host.document().isBusy.set(true);
    send(atItem(u"Foo.app"_s), Receiver::document);
    EXPECT_FALSE(reply);
    host.settle();
    host.firePolls();
    ASSERT_TRUE(reply);
    EXPECT_FALSE(reply->isError());
}

TEST_F(AScript, submitsInADocumentWithItsFieldsAndInANewOneWithThePreferences)
{
    host.preferences.setValue(key::appleIDValue, u"preferred@example.com"_s);
    host.document().appleIDField.setStringValue(u"own@example.com"_s);
    items::makeBundle(host.item(u"Bar.app"_s));
    send(atItem(u"Foo.app"_s), Receiver::document);
    host.settle();
    send(atItem(u"Bar.app"_s), Receiver::application);
    host.settle();
    const auto uploads = host.tools.callsOf(u"altool--notarize-app"_s);
    ASSERT_EQ(uploads.size(), 2);
    EXPECT_TRUE(uploads.at(0).contains(u"own@example.com"_s));
    EXPECT_TRUE(uploads.at(1).contains(u"preferred@example.com"_s));
}

TEST_F(AScript, isRefusedIfAPersonBeginsBeforeItsTurnComes)
{
    send(atItem(u"Foo.app"_s), Receiver::document);
    host.document().perform(Action::doFetchHistory);
    host.runUntil([this] { return reply.has_value(); });
    EXPECT_EQ(reply->errorNumber, 1199);
    EXPECT_EQ(reply->errorText, u"Document is busy, status: fetching."_s);
    host.settle();
    EXPECT_EQ(host.document().statusString(), u"ready"_s);
    EXPECT_TRUE(host.tools.callsOf(u"altool--notarize-app"_s).isEmpty());
}
