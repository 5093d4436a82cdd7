// From Submit to the upload: the checks, the kinds of item, cancels, Submit Again and direct-submit mode.

#include "support/items.h"
#include "support/testhost.h"

#include "app/preferencekeys.h"
#include "document/documentextensions.h"
#include "platform/itempath.h"
#include "scripting/scriptcommand.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString uploadTool = u"altool--notarize-app"_s;
const QString historyTool = u"altool--notarization-history"_s;

} // namespace

class Submit : public testing::Test {
protected:
    Submit()
    {
        items::makeBundle(host.item(u"Foo.app"_s));
        host.tools.answer(u"altool--notarization-info"_s,
                          {.output = FakeTools::infoReport(u"in progress"_s)});
    }

    MainWinController &launched()
    {
        if (host.application().allControllers().isEmpty())
            host.launch();
        return host.document();
    }

    void expectReport(const QString &title, const QString &text)
    {
        ASSERT_EQ(host.window().sheets.size(), 1);
        EXPECT_EQ(host.window().sheets.first().messageText, title);
        EXPECT_EQ(host.window().sheets.first().informativeText, text);
        EXPECT_EQ(host.log(LogStyle::error), QStringList{text});
        EXPECT_FALSE(host.document().isBusy());
        EXPECT_TRUE(host.tools.calls().isEmpty());
        EXPECT_FALSE(host.listing().contains(u"Foo - Working"_s));
    }

    QString argumentBehind(const QStringList &arguments, const QString &option)
    {
        return arguments.value(arguments.indexOf(option) + 1);
    }

    QString uploadIdentifier()
    {
        return argumentBehind(host.tools.callsOf(uploadTool).value(0), u"--primary-bundle-id"_s);
    }

    void offerInstallerIdentity()
    {
        host.tools.answer(u"security"_s,
                          {.output = "1) AA \"Developer ID Application: Example Corp (A1B2C3D4E5)\"\n"
                                     "2) BB \"Developer ID Installer: Example Corp (A1B2C3D4E5)\"\n"});
    }

    /// Lets the tool hang in its first run, submits Foo.app, cancels while it runs and waits for the end.
    void cancelDuring(const QString &tool)
    {
        host.tools.answerRun(tool, 1, {.hangs = true});
        launched().steps().submit.submitURL(itempath::toUrl(host.item(u"Foo.app"_s)));
        host.runUntil([&] { return !host.tools.callsOf(tool).isEmpty(); });
        host.document().doCancel();
        host.settle();
    }

    TestHost host;
};

// Checks

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
        document.steps().scripting.AESubmitForNotarizing(executing);
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

// The panel

TEST_F(Submit, byThePanelAsksForTheFiveKinds)
{
    MainWinController &document = launched();
    document.perform(Action::doSubmit);
    ASSERT_TRUE(host.window().panel);
    const platform::OpenPanel panel = host.window().panel->panel;
    EXPECT_EQ(panel.message,
              u"Choose an app, plugin, fmplugin, flat package or disk image to copy and submit"_s);
    EXPECT_EQ(panel.allowedFileTypes,
              (QStringList{u"app"_s, u"dmg"_s, u"pkg"_s, u"fmplugin"_s, u"plugin"_s}));
    EXPECT_TRUE(panel.canChooseFiles);
    EXPECT_FALSE(panel.canChooseDirectories);
    EXPECT_FALSE(panel.shouldEnable(QUrl(u"file:///a/notes.txt"_s)));
    EXPECT_EQ(document.statusString(), u"interacting"_s);
    EXPECT_TRUE(document.isBusy());
    EXPECT_TRUE(document.isSubmitting());
    EXPECT_EQ(document.lastAction(), quint64(nothingToRepeat));
}

TEST_F(Submit, byThePanelGoesOnWithTheChosenItem)
{
    launched().perform(Action::doSubmit);
    host.window().choose(itempath::toUrl(host.item(u"Foo.app"_s)));
    EXPECT_EQ(host.document().statusString(), u"submitting"_s);
    EXPECT_EQ(host.document().lastAction(), quint64(submitAction));
    EXPECT_EQ(host.document().appletNameField.stringValue(), u"Foo.app"_s);
    EXPECT_EQ(host.window().title(), u"Foo.app"_s);
    EXPECT_TRUE(host.document().progressIndicator.isAnimating());
    host.settle();
    EXPECT_EQ(host.document().statusString(), u"waiting"_s);
}

TEST_F(Submit, byThePanelCancelledLeavesTheDocumentIdle)
{
    MainWinController &document = launched();
    document.perform(Action::doSubmit);
    host.window().choose({});
    EXPECT_EQ(document.statusString(), u"ready"_s);
    EXPECT_FALSE(document.isBusy());
    EXPECT_FALSE(document.isSubmitting());
    EXPECT_FALSE(document.progressIndicator.isAnimating());
}

TEST_F(Submit, clearsTheWindowLogUnlessItIsToBeKept)
{
    MainWinController &document = launched();
    document.logStringMain(u"earlier"_s, false);
    host.submit(host.item(u"Foo.app"_s));
    EXPECT_FALSE(host.log().contains(u"earlier"_s));
    document.doCancel();
    host.window().answerSheet();
    document.cancelPressed.set(false);
    document.dontClearCheckbox.setState(1);
    document.logStringMain(u"kept"_s, false);
    host.submit(host.item(u"Foo.app"_s));
    EXPECT_TRUE(host.log().contains(u"kept"_s));
}

// The chain by kind

struct KindRow {
    const char *name;
    QString file;
    QStringList tools;
};

class SubmitKind : public Submit, public testing::WithParamInterface<KindRow> { };

TEST_P(SubmitKind, runsItsSteps)
{
    const KindRow &row = GetParam();
    offerInstallerIdentity();
    const QString path = host.item(row.file);
    if (isBundleKind(itemKind(path)))
        items::makeBundle(path);
    else
        items::makeFile(path, "image or package");
    items::makeBundle(path + u"/Contents/PlugIns/Inner.bundle"_s);
    launched();
    host.submit(path);
    EXPECT_EQ(host.tools.order(), row.tools);
    EXPECT_EQ(host.document().statusString(), u"waiting"_s);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, SubmitKind,
    testing::Values(KindRow{"app",
                            u"Bar.app"_s,
                            {historyTool, u"xattr"_s, u"codesign"_s, u"codesign"_s, u"ditto"_s, uploadTool}},
                    KindRow{"plugin",
                            u"Bar.plugin"_s,
                            {historyTool, u"xattr"_s, u"codesign"_s, u"codesign"_s, u"ditto"_s, uploadTool}},
                    KindRow{"fmplugin",
                            u"Bar.fmplugin"_s,
                            {historyTool, u"xattr"_s, u"codesign"_s, u"codesign"_s, u"ditto"_s, uploadTool}}),
    [](const auto &row) { return std::string(row.param.name); });

TEST_F(Submit, ofAPackageSignsItAndUploadsItAsItIs)
{
    offerInstallerIdentity();
    items::makeFile(host.item(u"My Tool.PKG"_s), "xar!");
    host.tools.answer(u"spctl"_s, {.error = "accepted"});
    launched();
    host.submit(host.item(u"My Tool.PKG"_s));
    EXPECT_EQ(host.tools.order(), (QStringList{historyTool, u"spctl"_s, uploadTool}));
    EXPECT_EQ(argumentBehind(host.tools.callsOf(uploadTool).first(), u"-f"_s),
              host.item(u"My Tool - Working/My Tool.PKG"_s));
    EXPECT_EQ(host.listing(u"My Tool - Submitted"_s),
              (QStringList{u"My Tool.PKG"_s, u"RequestUUID.txt"_s, u"Submission Log.txt"_s}));
}

TEST_F(Submit, ofAPackageAlwaysUploadsTheFallbackIdentifier)
{
    offerInstallerIdentity();
    items::makeFile(host.item(u"Foo.pkg"_s), "xar!");
    host.tools.answer(u"spctl"_s, {.error = "accepted"});
    launched();
    host.submit(host.item(u"Foo.pkg"_s));
    EXPECT_TRUE(QRegularExpression(u"^[0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{12}pkg$"_s)
                    .match(uploadIdentifier())
                    .hasMatch())
        << uploadIdentifier().toStdString();
}

TEST_F(Submit, ofADiskImageSignsItWithoutEntitlements)
{
    items::makeFile(host.item(u"Foo.dmg"_s), "koly");
    items::makeBundle(host.item(u"volume/Inner.app"_s), u"com.example.inner"_s);
    host.tools.answerRun(u"hdiutil"_s, 1,
                         {.output = "/dev/disk2\tApple_HFS\t" + host.item(u"volume"_s).toUtf8() + "\n"});
    launched();
    host.submit(host.item(u"Foo.dmg"_s));
    EXPECT_EQ(host.tools.order(),
              (QStringList{historyTool, u"codesign"_s, u"hdiutil"_s, u"hdiutil"_s, uploadTool}));
    EXPECT_FALSE(host.tools.callsOf(u"codesign"_s).first().contains(u"--entitlements"_s));
    EXPECT_EQ(uploadIdentifier(), u"com.example.inner"_s);
    EXPECT_FALSE(host.listing(u"Foo - Submitted"_s).contains(u"Entitlements.plist"_s));
}

TEST_F(Submit, ofADiskImageIsNotStoppedByACancelBetweenItsIdentifierAndTheUpload)
{
    items::makeFile(host.item(u"Foo.dmg"_s), "koly");
    host.tools.answerRun(u"hdiutil"_s, 1, {.hangs = true});
    launched().steps().submit.submitURL(itempath::toUrl(host.item(u"Foo.dmg"_s)));
    host.runUntil([this] { return !host.tools.callsOf(u"hdiutil"_s).isEmpty(); });
    host.document().doCancel();
    host.settle();
    EXPECT_EQ(host.tools.callsOf(uploadTool).size(), 1);
    EXPECT_EQ(host.document().statusString(), u"waiting"_s);
}

TEST_F(Submit, ofAnAppUploadsItsIdentifier)
{
    launched();
    host.submit(host.item(u"Foo.app"_s));
    EXPECT_EQ(uploadIdentifier(), u"com.example.foo"_s);
}

TEST_F(Submit, ofAnAppWithoutAnIdentifierUploadsTheFallbackWithItsExtensionAsWritten)
{
    items::makeBundle(host.item(u"Bar.APP"_s), {});
    launched();
    host.submit(host.item(u"Bar.APP"_s));
    EXPECT_TRUE(QRegularExpression(u"^[0-9a-f-]{36}APP$"_s).match(uploadIdentifier()).hasMatch());
}

TEST_F(Submit, readsTheIdentifierBeforeADiskImageTakesTheBundlesPlace)
{
    host.preferences.setValue(key::createDiskImage, true);
    launched();
    host.submit(host.item(u"Foo.app"_s));
    EXPECT_EQ(uploadIdentifier(), u"com.example.foo"_s);
}

TEST_F(Submit, ofTheMainItemOnlyLeavesOutTheMembersAndNothingElse)
{
    items::makeBundle(host.item(u"Foo.app/Contents/PlugIns/Inner.bundle"_s));
    items::makeFile(host.item(u"Foo.app/Contents/Resources/Scripts/main.scpt"_s), "script");
    launched().dontSignEnclosuresCheckbox.setState(1);
    host.submit(host.item(u"Foo.app"_s));
    EXPECT_EQ(host.tools.order(),
              (QStringList{historyTool, u"xattr"_s, u"codesign"_s, u"ditto"_s, uploadTool}));
    EXPECT_FALSE(host.log().contains(u"Examining contents..."_s));
    EXPECT_TRUE(host.listing(u"Foo - Submitted"_s).contains(u"Entitlements.plist"_s));
    EXPECT_EQ(host.text(u"Foo - Submitted/Submission Log.txt"_s).count(u"Locking main.scpt"_s), 2);
}

TEST_F(Submit, ofAPluginDoesNotLockTheScriptASecondTime)
{
    items::makeBundle(host.item(u"Bar.plugin"_s));
    items::makeFile(host.item(u"Bar.plugin/Contents/Resources/Scripts/main.scpt"_s), "script");
    launched();
    host.submit(host.item(u"Bar.plugin"_s));
    EXPECT_EQ(host.text(u"Bar - Submitted/Submission Log.txt"_s).count(u"Locking main.scpt"_s), 1);
}

// State

TEST_F(Submit, isNotCancellableWhileTheUploadRuns)
{
    host.tools.answer(uploadTool, {.hangs = true});
    MainWinController &document = launched();
    document.steps().submit.submitURL(itempath::toUrl(host.item(u"Foo.app"_s)));
    EXPECT_TRUE(document.canCancel());
    EXPECT_TRUE(document.isSubmitting());
    host.runUntil([this] { return !host.tools.callsOf(uploadTool).isEmpty() && host.mainQueue.isEmpty(); });
    EXPECT_FALSE(document.canCancel());
    EXPECT_TRUE(document.isBusy());
    EXPECT_TRUE(document.isSubmitting());
    EXPECT_EQ(document.statusString(), u"submitting"_s);
    document.uploadTaskRunner()->terminateTaskFor(document.uniqueID);
    host.settle();
    EXPECT_EQ(host.window().sheets.first().messageText, u"Error Uploading File"_s);
}

TEST_F(Submit, keepsTheTitleUniqueAgainstItself)
{
    launched();
    host.submit(host.item(u"Foo.app"_s));
    host.document().doCancel();
    host.window().answerSheet();
    host.document().cancelPressed.set(false);
    host.submit(host.item(u"Foo.app"_s));
    EXPECT_EQ(host.window().title(), u"Foo.app-2"_s);
}

// Cancel

class SubmitCancel : public Submit, public testing::WithParamInterface<QString> { };

TEST_P(SubmitCancel, endsTheToolAndIsReportedOnce)
{
    const QByteArray original = items::fingerprint(host.item(u"Foo.app"_s));
    cancelDuring(GetParam());
    EXPECT_EQ(host.window().sheets.size(), 1);
    EXPECT_EQ(host.window().sheets.first().messageText, u"Process Cancelled"_s);
    EXPECT_EQ(host.tools.order().last(), GetParam());
    EXPECT_FALSE(host.document().cancelPressed()); // the tool's own report has used it up
    EXPECT_FALSE(host.document().isBusy());
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
    EXPECT_EQ(host.listing().contains(u"Foo - Failed"_s), GetParam() != historyTool);

    host.window().answerSheet();
    host.submit(host.item(u"Foo.app"_s));
    EXPECT_EQ(host.document().statusString(), u"waiting"_s);
}

INSTANTIATE_TEST_SUITE_P(DuringTool, SubmitCancel,
                         testing::Values(u"altool--notarization-history"_s, u"xattr"_s, u"codesign"_s,
                                         u"ditto"_s),
                         [](const auto &row) {
                             QString name = row.param;
                             return name.remove(u'-').toStdString();
                         });

TEST_F(Submit, afterACancelThatFoundNoToolStopsSilentlyUntilAReportHasUsedTheFlagUp)
{
    MainWinController &document = launched();
    document.doCancel(); // nothing runs
    host.window().answerSheet();
    for (int round = 0; round < 2; ++round) {
        host.tools.forgetCalls();
        host.submit(host.item(u"Foo.app"_s));
        EXPECT_EQ(host.tools.order(), QStringList{historyTool});
        EXPECT_TRUE(document.isBusy());
        EXPECT_EQ(document.statusString(), u"submitting"_s);
        EXPECT_EQ(host.listing(), QStringList{u"Foo.app"_s});
        document.doCancel();
        host.window().answerSheet();
        EXPECT_TRUE(document.cancelPressed());
    }
    host.tools.answer(historyTool, {.status = 1});
    host.submit(host.item(u"Foo.app"_s)); // its report is swallowed
    EXPECT_FALSE(document.cancelPressed());
    host.tools.answer(historyTool, {.output = "page 0"});
    host.submit(host.item(u"Foo.app"_s));
    EXPECT_EQ(document.statusString(), u"waiting"_s);
}

TEST_F(Submit, onSharedRunnersIsNotReachedByACancelAndStopsAtItsNextTest)
{
    host.tools.answer(u"altool-h"_s, {.output = "Copyright (c) 2019, Apple Inc. Version 3.1.2\n"});
    host.tools.answer(u"xattr"_s, {.hangs = true});
    MainWinController &document = launched();
    document.steps().submit.submitURL(itempath::toUrl(host.item(u"Foo.app"_s)));
    host.runUntil([this] { return !host.tools.callsOf(u"xattr"_s).isEmpty(); });
    document.doCancel();
    document.taskRunner()->terminateTaskFor(document.uniqueID); // stands for the tool's own end
    host.settle();
    EXPECT_EQ(host.tools.order().last(), u"xattr"_s);
    EXPECT_EQ(host.window().sheets.size(), 1);
}

// Submit Again

TEST_F(Submit, againAfterAFinishedRunCopiesTheItemBack)
{
    host.tools.answerRun(u"altool--notarization-info"_s, 1, {.output = FakeTools::infoReport(u"success"_s)});
    const QByteArray original = items::fingerprint(host.item(u"Foo.app"_s));
    launched();
    host.submitToTheEnd(host.item(u"Foo.app"_s));
    ASSERT_EQ(host.listing(), QStringList{u"Foo - Notarized"_s});
    host.window().answerSheet();
    host.document().suppressDialogs.set(true);
    host.document().perform(Action::doSubmitAgain);
    EXPECT_FALSE(host.document().suppressDialogs());
    host.settle();
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
    EXPECT_EQ(items::fingerprint(host.item(u"Foo - Notarized/Foo - Unmodified Original/Foo.app"_s)),
              original);
    EXPECT_EQ(host.document().statusString(), u"waiting"_s);
}

TEST_F(Submit, againWithTheItemGoneSaysSoAndForgetsTheAction)
{
    launched();
    host.submit(host.item(u"Foo.app"_s));
    host.document().doCancel();
    host.window().answerSheet();
    ASSERT_TRUE(host.files.removeItem(host.item(u"Foo.app"_s)));
    host.document().perform(Action::doSubmitAgain);
    ASSERT_TRUE(host.window().sheet);
    EXPECT_EQ(host.window().sheet->alert.messageText, u"File Not Found"_s);
    EXPECT_EQ(host.window().sheet->alert.informativeText,
              u"The file:\n\n‘%1’\n\nhas been moved or deleted."_s.arg(host.item(u"Foo.app"_s)));
    EXPECT_EQ(host.document().statusString(), u"interacting"_s);
    host.window().answerSheet();
    EXPECT_EQ(host.document().lastAction(), quint64(nothingToRepeat));
    EXPECT_EQ(host.document().statusString(), u"ready"_s);
}

// Direct-submit mode

TEST_F(Submit, preparedForAPersonStartsNothing)
{
    MainWinController &document = launched();
    document.steps().submit.prepareForDirectSubmit(itempath::toUrl(host.item(u"Foo.app"_s)), {});
    EXPECT_EQ(document.statusString(), u"interacting"_s);
    EXPECT_EQ(host.window().title(), u"Foo.app"_s);
    EXPECT_EQ(document.appletNameField.stringValue(),
              itempath::abbreviatedWithTilde(host.item(u"Foo.app"_s)));
    for (const Control *control :
         std::initializer_list<const Control *>{&document.fetchHistoryButton, &document.historyMaxPagesField,
                                                &document.historyMaxPagesLabel, &document.signOnlyButton})
        EXPECT_TRUE(control->isHidden());
    EXPECT_EQ(document.stapleOnlyButton.title(), u"Cancel"_s);
    EXPECT_EQ(document.stapleOnlyButton.keyEquivalent(), u"."_s);
    EXPECT_EQ(document.stapleOnlyButton.toolTip(), u""_s);
    EXPECT_EQ(document.stapleOnlyButton.action(), Action::doCancelDirectSubmit);
    EXPECT_EQ(document.submitAppButton.title(), u"Submit Now"_s);
    EXPECT_EQ(document.submitAppButton.action(), Action::doDirectSubmit);
    EXPECT_EQ(document.lastAction(), quint64(nothingToRepeat));
    EXPECT_TRUE(host.tools.calls().isEmpty());
}

TEST_F(Submit, preparedForAPersonTakesItsTitleEvenWhereItIsTaken)
{
    launched();
    host.application().loadDroppedURLs(
        {itempath::toUrl(host.item(u"Foo.app"_s)), itempath::toUrl(host.item(u"Foo.app"_s))});
    EXPECT_EQ(host.application().allControllers().at(1)->window().title(), u"Foo.app"_s);
    EXPECT_EQ(host.application().allControllers().at(2)->window().title(), u"Foo.app"_s);
}

TEST_F(Submit, cancelledBeforeItBeganTurnsTheControlsBack)
{
    MainWinController &document = launched();
    document.steps().submit.prepareForDirectSubmit(itempath::toUrl(host.item(u"Foo.app"_s)), {});
    document.perform(document.stapleOnlyButton.action());
    EXPECT_EQ(document.statusString(), u"ready"_s);
    EXPECT_FALSE(document.signOnlyButton.isHidden());
    EXPECT_EQ(document.stapleOnlyButton.title(), u"Staple Only…"_s);
    EXPECT_EQ(document.stapleOnlyButton.keyEquivalent(), u"o"_s);
    EXPECT_EQ(document.stapleOnlyButton.toolTip(),
              u"Attempts to staple an item that has already been submitted"_s);
    EXPECT_EQ(document.stapleOnlyButton.action(), Action::doStapleOnly);
    EXPECT_EQ(document.submitAppButton.title(), u"Submit…"_s);
    EXPECT_EQ(document.submitAppButton.action(), Action::doSubmit);
    EXPECT_EQ(document.appletNameField.stringValue(), u""_s);
}

TEST_F(Submit, confirmedByAPersonSubmitsTheStoredItem)
{
    MainWinController &document = launched();
    document.steps().submit.prepareForDirectSubmit(itempath::toUrl(host.item(u"Foo.app"_s)), {});
    document.perform(document.submitAppButton.action());
    EXPECT_EQ(document.submitAppButton.action(), Action::doSubmit);
    EXPECT_EQ(document.lastAction(), quint64(submitAction));
    host.settle();
    EXPECT_EQ(document.statusString(), u"waiting"_s);
}
