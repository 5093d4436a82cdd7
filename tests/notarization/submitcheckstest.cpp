// What is checked before a submission starts.

#include "notarization/submittest.h"
#include "scripting/MainWinController+Scripting.h"

#include "app/preferencekeys.h"
#include "platform/scriptcommand.h"

using namespace Qt::StringLiterals;

TEST_F(Submit, withoutAnAppleIDIsRefused)
{
    host.preferences.setValue(key::appleIDValue, u" ab "_s);
    int focused = 0;
    QObject::connect(&launched().appleIDField, &TextField::focusRequested, [&focused] { ++focused; });
    host.submit(host.item(u"Foo.app"_s));
    expectReport(u"Missing Apple ID"_s, u"You need to enter your Apple ID."_s);
    EXPECT_EQ(focused, 1);
    EXPECT_EQ(host.applicationHost.beeps, 1);
}

TEST_F(Submit, withoutAPasswordKeyIsRefused)
{
    host.preferences.setValue(key::appPassValue, u" x\n"_s);
    int focused = 0;
    QObject::connect(&launched().appPassField, &TextField::focusRequested, [&focused] { ++focused; });
    host.submit(host.item(u"Foo.app"_s));
    expectReport(
        u"Missing Password"_s,
        u"You need to enter the key to an application-specific password you have added to your login Keychain."_s);
    EXPECT_EQ(focused, 1);
}

TEST_F(Submit, withoutAnIdentityIsRefused)
{
    host.tools.answer(u"security"_s, {.output = "     0 valid identities found\n"});
    launched();
    host.submit(host.item(u"Foo.app"_s));
    expectReport(u"No Identities Found"_s, u"No Developer ID codesigning identities have been found."_s);
    EXPECT_EQ(host.applicationHost.beeps, 1);
}

TEST_F(Submit, ofAPackageGivenInAdvanceWithoutItsInstallerIdentityIsRefused)
{
    items::makeFile(host.item(u"Foo.pkg"_s), "xar!");
    launched();
    host.submit(host.item(u"Foo.pkg"_s));
    expectReport(
        u"Installer Identity Not Found"_s,
        u"Packages require a 'Developer ID Installer' certificate that matches the identity you have chosen (Example Corp (A1B2C3D4E5))."_s);
}

TEST_F(Submit, ofAPackageChosenInThePanelFailsLaterInSigning)
{
    items::makeFile(host.item(u"Foo.pkg"_s), "xar!");
    host.tools.answer(u"spctl"_s, {.status = 3, .error = "rejected"});
    host.tools.answer(u"productsign"_s, {.status = 1, .error = "no identity"});
    launched().perform(Action::doSubmit);
    host.window().choose(itempath::toUrl(host.item(u"Foo.pkg"_s)));
    host.settle();
    EXPECT_EQ(host.tools.order(), (QStringList{historyTool, u"spctl"_s, u"productsign"_s}));
    EXPECT_EQ(host.window().sheets.first().messageText, u"Error Signing .pkg File"_s);

    host.window().answerSheet();
    host.tools.forgetCalls();
    host.document().perform(Action::doSubmitAgain); // now it is given in advance
    host.settle();
    EXPECT_EQ(host.window().sheets.last().messageText, u"Installer Identity Not Found"_s);
    EXPECT_TRUE(host.tools.calls().isEmpty());
}

TEST_F(Submit, ofAnotherKindOfItemIsRefusedBeforeAnythingIsCopied)
{
    items::makeFile(host.item(u"Notes.txt"_s), "text");
    launched();
    host.submit(host.item(u"Notes.txt"_s));
    expectReport(u"Cannot Submit Item"_s,
                 u"'%1' is not an app, plugin, fmplugin, flat package or disk image."_s.arg(
                     host.item(u"Notes.txt"_s)));
    EXPECT_EQ(host.listing(), (QStringList{u"Foo.app"_s, u"Notes.txt"_s}));
}

TEST_F(Submit, ofAnotherKindOfItemChosenInThePanelIsRefusedAsWell)
{
    items::makeFile(host.item(u"Notes.txt"_s), "text");
    launched().perform(Action::doSubmit);
    host.window().choose(itempath::toUrl(host.item(u"Notes.txt"_s))); // a panel may let a name be typed
    host.settle();
    expectReport(u"Cannot Submit Item"_s,
                 u"'%1' is not an app, plugin, fmplugin, flat package or disk image."_s.arg(
                     host.item(u"Notes.txt"_s)));
    EXPECT_EQ(host.listing(), (QStringList{u"Foo.app"_s, u"Notes.txt"_s}));
}

TEST_F(Submit, takesAnAppleIDOfThreeCharactersAndAKeyOfTwo)
{
    host.preferences.setValue(key::appleIDValue, u"abc"_s);
    host.preferences.setValue(key::appPassValue, u"xy"_s);
    launched();
    host.submit(host.item(u"Foo.app"_s));
    EXPECT_EQ(host.document().statusString(), u"waiting"_s);
}

TEST_F(Submit, passesTheAppleIDAsTypedAndTheKeyTrimmed)
{
    host.preferences.setValue(key::appleIDValue, u" dev@example.com "_s);
    host.preferences.setValue(key::appPassValue, u" notary\n"_s);
    launched();
    host.submit(host.item(u"Foo.app"_s));
    for (const QString &tool : {historyTool, uploadTool}) {
        const QStringList arguments = host.tools.callsOf(tool).value(0);
        EXPECT_EQ(argumentBehind(arguments, u"-u"_s), u" dev@example.com "_s);
        EXPECT_EQ(argumentBehind(arguments, u"-p"_s), u"@keychain:notary"_s);
    }
}

TEST_F(Submit, stopsWhereTheWindowRefusesToGiveUpItsFocus)
{
    MainWinController &document = launched();
    host.window().refusesToGiveUpFocus = true;
    host.submit(host.item(u"Foo.app"_s));
    EXPECT_EQ(host.applicationHost.beeps, 1);
    EXPECT_EQ(document.statusString(), u"ready"_s);
    EXPECT_FALSE(document.isBusy());
    EXPECT_EQ(document.originalFileName(), u"Foo.app"_s);
    EXPECT_EQ(document.lastAction(), quint64(submitAction));
    EXPECT_EQ(host.window().editsEnded, 1);
    EXPECT_TRUE(host.window().sheets.isEmpty());
}

TEST_F(Submit, tellsAScriptThatTheInterfaceIsBlocked)
{
    MainWinController &document = launched();
    host.window().refusesToGiveUpFocus = true;
    std::optional<ScriptReply> reply;
    const auto command =
        std::make_shared<ScriptCommand>(QVariantMap{{argument::at, itempath::toUrl(host.item(u"Foo.app"_s))}},
                                        [&reply](const ScriptReply &answer) { reply = answer; });
    command->execute([&document](const ScriptCommandPtr &executing) {
        MainWinControllerScripting(document).AESubmitForNotarizing(executing);
    });
    host.settle();
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->errorNumber, 7);
    EXPECT_EQ(reply->errorText, u"Inteface is blocked."_s);
    EXPECT_TRUE(document.isScripted());
    EXPECT_TRUE(document.suppressDialogs());
}

TEST_F(Submit, doesNotStartWhenTheExtraEntitlementsCannotBeRead)
{
    launched().extraEntitlementsURL.set(itempath::toUrl(host.item(u"gone.plist"_s)));
    host.submit(host.item(u"Foo.app"_s));
    EXPECT_TRUE(host.tools.calls().isEmpty());
    EXPECT_EQ(host.window().sheets.first().messageText, u"Cannot Read Extra Entitlements"_s);
    EXPECT_FALSE(host.document().isBusy());
    EXPECT_EQ(host.listing(), QStringList{u"Foo.app"_s});
}

// The beep comes before the report of a missing field and after that of a missing identity.

class SubmitBeep : public Submit {
protected:
    /// How many beeps had been heard when the report of the refused item came up.
    int beepsBeforeTheReport(const QString &name = u"Foo.app"_s)
    {
        MainWinController &document = launched();
        int beeps = -1;
        const QObject watcher;
        QObject::connect(&document.statusString, &Observable::changed, &watcher, [&] {
            if (document.statusString() == status::interacting)
                beeps = host.applicationHost.beeps;
        });
        host.submit(host.item(name));
        EXPECT_EQ(host.window().sheets.size(), 1);
        EXPECT_EQ(host.applicationHost.beeps, 1);
        return beeps;
    }
};

TEST_F(SubmitBeep, precedesTheReportOfAMissingAppleID)
{
    host.preferences.setValue(key::appleIDValue, u""_s);
    EXPECT_EQ(beepsBeforeTheReport(), 1);
}

TEST_F(SubmitBeep, precedesTheReportOfAMissingPasswordKey)
{
    host.preferences.setValue(key::appPassValue, u""_s);
    EXPECT_EQ(beepsBeforeTheReport(), 1);
}

TEST_F(SubmitBeep, followsTheReportOfMissingIdentities)
{
    host.tools.answer(u"security"_s, {.output = "     0 valid identities found\n"});
    EXPECT_EQ(beepsBeforeTheReport(), 0);
}

TEST_F(SubmitBeep, followsTheReportOfAMissingInstallerIdentity)
{
    items::makeFile(host.item(u"Foo.pkg"_s), "xar!");
    EXPECT_EQ(beepsBeforeTheReport(u"Foo.pkg"_s), 0);
}
