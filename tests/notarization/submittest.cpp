// From Submit to the upload: the panel, the kinds of item and what a document shows meanwhile.

#include "notarization/submittest.h"
#include "document/documentcommands.h"
#include "run/item.h"

#include "app/preferencekeys.h"
#include "platform/scriptcommand.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

Submit::Submit()
{
    items::makeBundle(host.item(u"Foo.app"_s));
    host.tools.answer(infoTool, {.output = FakeTools::infoReport(u"in progress"_s)});
}

MainWinController &Submit::launched()
{
    if (host.application().allControllers().isEmpty())
        host.launch();
    return host.document();
}

void Submit::begin(const QString &name)
{
    launched().commands().submit.submitURL(itempath::toUrl(host.item(name)));
}

void Submit::expectReport(const QString &title, const QString &text)
{
    ASSERT_EQ(host.window().sheets.size(), 1);
    EXPECT_EQ(host.window().sheets.first().messageText, title);
    EXPECT_EQ(host.window().sheets.first().informativeText, text);
    EXPECT_EQ(host.log(LogStyle::error), QStringList{text});
    EXPECT_FALSE(host.document().isBusy());
    EXPECT_TRUE(host.tools.calls().isEmpty());
    EXPECT_FALSE(host.listing().contains(u"Foo - Working"_s));
}

QString Submit::argumentBehind(const QStringList &arguments, const QString &option)
{
    return arguments.value(arguments.indexOf(option) + 1);
}

void Submit::shareRunners()
{
    host.tools.answer(u"altool-h"_s, {.output = "Copyright (c) 2019, Apple Inc. Version 3.1.2\n"});
}

void Submit::offerInstallerIdentity()
{
    host.tools.answer(u"security"_s,
                      {.output = "1) AA \"Developer ID Application: Example Corp (A1B2C3D4E5)\"\n"
                                 "2) BB \"Developer ID Installer: Example Corp (A1B2C3D4E5)\"\n"});
}

TEST_F(Submit, forgetsWhatWasUploadedBeforeUntilThereIsAnUpload)
{
    host.tools.answerRun(historyTool, 1, {.hangs = true});
    launched().submitFilePath.set(u"/earlier/Foo.dmg"_s);
    begin();
    EXPECT_TRUE(host.document().submitFilePath().isNull());
    host.runUntil([this] { return !host.tools.callsOf(historyTool).isEmpty(); });
    host.tools.release(historyTool, 1);
    host.settle();
    EXPECT_EQ(host.document().submitFilePath(), host.item(u"Foo - Submitted/Foo.zip"_s));
}

TEST_F(Submit, checksTheCredentialsOnTheRunnerOfOrdinaryTools)
{
    shareRunners();
    host.tools.answerRun(historyTool, 1, {.hangs = true});
    launched();
    begin();
    host.runUntil([this] { return !host.tools.callsOf(historyTool).isEmpty(); });
    EXPECT_TRUE(host.application().taskMaster()->currentTask());
    EXPECT_FALSE(host.application().uploadTaskMaster()->currentTask());
    host.tools.release(historyTool, 1);
    host.settle();
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
    document.progressIndicator.startAnimation();
    document.perform(Action::doSubmit);
    host.window().choose({});
    EXPECT_EQ(document.statusString(), u"ready"_s);
    EXPECT_FALSE(document.isBusy());
    EXPECT_FALSE(document.isSubmitting());
    EXPECT_FALSE(document.progressIndicator.isAnimating());
}

TEST_F(Submit, byThePanelOffersNoOtherCancelThanBeforeUntilAnItemIsChosen)
{
    MainWinController &document = launched();
    for (const bool canCancel : {true, false}) {
        document.canCancel.set(canCancel);
        document.perform(Action::doSubmit);
        EXPECT_EQ(document.canCancel(), canCancel);
        host.window().choose({});
        EXPECT_EQ(document.canCancel(), canCancel);
    }
    document.perform(Action::doSubmit);
    host.window().choose(itempath::toUrl(host.item(u"Foo.app"_s)));
    EXPECT_TRUE(document.canCancel());
    host.settle();
}

TEST_F(Submit, byAPersonIsNoScriptsAndShowsDialogs)
{
    MainWinController &document = launched();
    document.isScripted.set(true); // an earlier script's
    document.suppressDialogs.set(true);
    document.perform(Action::doSubmit);
    EXPECT_FALSE(document.isScripted());
    EXPECT_FALSE(document.suppressDialogs());
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

namespace {

const QStringList bundleTools{
    u"altool--notarization-history"_s, u"xattr"_s, u"codesign"_s, u"codesign"_s, u"ditto"_s,
    u"altool--notarize-app"_s};

} // namespace

struct KindRow {
    const char *name;
    QString file;
    QStringList tools;
};

class SubmitKind : public Submit, public testing::WithParamInterface<KindRow> { };

class SubmitIdentifier : public Submit {
protected:
    QString uploadIdentifier()
    {
        return argumentBehind(host.tools.callsOf(uploadTool).value(0), u"--primary-bundle-id"_s);
    }
};

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

INSTANTIATE_TEST_SUITE_P(Kinds, SubmitKind,
                         testing::Values(KindRow{"app", u"Bar.app"_s, bundleTools},
                                         KindRow{"plugin", u"Bar.plugin"_s, bundleTools},
                                         KindRow{"fmplugin", u"Bar.fmplugin"_s, bundleTools}),
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

TEST_F(SubmitIdentifier, ofAPackageAlwaysUploadsTheFallbackIdentifier)
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

TEST_F(SubmitIdentifier, ofADiskImageSignsItWithoutEntitlements)
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

TEST_F(SubmitIdentifier, ofAnAppUploadsItsIdentifier)
{
    launched();
    host.submit(host.item(u"Foo.app"_s));
    EXPECT_EQ(uploadIdentifier(), u"com.example.foo"_s);
}

TEST_F(SubmitIdentifier, ofAnAppWithoutAnIdentifierUploadsTheFallbackWithItsExtensionAsWritten)
{
    items::makeBundle(host.item(u"Bar.APP"_s), {});
    launched();
    host.submit(host.item(u"Bar.APP"_s));
    EXPECT_TRUE(QRegularExpression(u"^[0-9a-f-]{36}APP$"_s).match(uploadIdentifier()).hasMatch());
}

TEST_F(SubmitIdentifier, readsTheIdentifierBeforeADiskImageTakesTheBundlesPlace)
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
    begin();
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

TEST_F(Submit, staysNotCancellableAfterAFailedUpload)
{
    host.tools.answer(uploadTool, {.status = 1, .error = "refused"});
    launched();
    host.submit(host.item(u"Foo.app"_s));
    EXPECT_EQ(host.window().sheets.first().messageText, u"Error Uploading File"_s);
    EXPECT_FALSE(host.document().canCancel());
}

TEST_F(Submit, staysNotCancellableWhereAScriptSkipsTheWait)
{
    MainWinController &document = launched();
    std::optional<ScriptReply> reply;
    document.currentCommand.set(
        std::make_shared<ScriptCommand>(QVariantMap{{argument::skippingStapling, true}},
                                        [&reply](const ScriptReply &answer) { reply = answer; }));
    document.commands().submit.scriptedSubmit(itempath::toUrl(host.item(u"Foo.app"_s)));
    host.settle();
    ASSERT_TRUE(reply);
    EXPECT_FALSE(reply->isError());
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Submitted"_s, u"Foo.app"_s}));
    EXPECT_FALSE(document.canCancel());
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
