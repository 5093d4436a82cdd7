// Signing by itself: how it is asked for, and the chain by kind of item.

#include "signing/signonlytest.h"
#include "document/documentcommands.h"
#include "signing/signingarguments.h"

#include "app/preferencekeys.h"

using namespace Qt::StringLiterals;

// The front end

TEST_F(SignOnly, byThePanelAsksForAnAppOrADirectory)
{
    launched().perform(document().signOnlyButton.action());
    ASSERT_TRUE(host.window().panel);
    const platform::OpenPanel panel = host.window().panel->panel;
    EXPECT_EQ(panel.message, u"Choose an app or a directory to copy and sign with the hardened runtime"_s);
    EXPECT_EQ(panel.allowedFileTypes, QStringList{u"app"_s});
    EXPECT_TRUE(panel.canChooseFiles);
    EXPECT_TRUE(panel.canChooseDirectories);
    EXPECT_FALSE(panel.shouldEnable(QUrl(u"file:///a/notes.txt"_s)));
    EXPECT_EQ(document().statusString(), u"interacting"_s);
    EXPECT_TRUE(document().isBusy());
    EXPECT_TRUE(document().isSubmitting());
    EXPECT_FALSE(document().canCancel());
    EXPECT_EQ(document().lastAction(), quint64(nothingToRepeat));
}

TEST_F(SignOnly, byThePanelGoesOnWithTheChosenItem)
{
    host.tools.answer(u"xattr"_s, {.hangs = true});
    launched().perform(Action::doSignOnly);
    host.window().choose(itempath::toUrl(host.item(u"Foo.app"_s)));
    EXPECT_EQ(document().statusString(), u"submitting"_s);
    EXPECT_EQ(document().lastAction(), quint64(signAction));
    EXPECT_EQ(document().originalFileName(), u"Foo.app"_s);
    EXPECT_EQ(document().originalAppletURL(), itempath::toUrl(host.item(u"Foo.app"_s)));
    EXPECT_EQ(document().appletNameField.stringValue(), u"Foo.app"_s);
    EXPECT_EQ(host.window().title(), u"Foo.app"_s);
    EXPECT_TRUE(document().progressIndicator.isAnimating());
    EXPECT_TRUE(document().canCancel());
    EXPECT_TRUE(document().isBusy());
    EXPECT_TRUE(document().isSubmitting());
    host.runUntil([this] { return !host.tools.callsOf(u"xattr"_s).isEmpty(); });
    host.tools.release(u"xattr"_s);
    host.settle();
    EXPECT_EQ(host.listing(), QStringList{u"Foo - Signed"_s});
}

TEST_F(SignOnly, byThePanelCancelledLeavesTheDocumentIdle)
{
    launched().perform(Action::doSignOnly);
    document().progressIndicator.startAnimation();
    host.window().choose({});
    EXPECT_EQ(document().statusString(), u"ready"_s);
    EXPECT_FALSE(document().isBusy());
    EXPECT_FALSE(document().isSubmitting());
    EXPECT_FALSE(document().progressIndicator.isAnimating());
    EXPECT_EQ(document().lastAction(), quint64(nothingToRepeat));
    EXPECT_EQ(host.listing(), QStringList{u"Foo.app"_s});
}

TEST_F(SignOnly, byThePanelKeepsTheIdentityThatWasChosenBeforeIt)
{
    host.tools.answer(u"security"_s,
                      {.output = "1) AA \"Developer ID Application: First (A1)\"\n"
                                 "2) BB \"Developer ID Application: Second (B2)\"\n"});
    launched().identitiesPopup.selectItemWithTitle(u"Second (B2)"_s);
    document().perform(Action::doSignOnly);
    document().identitiesPopup.selectItemWithTitle(u"First (A1)"_s);
    host.window().choose(itempath::toUrl(host.item(u"Foo.app"_s)));
    host.settle();
    const auto lines = host.tools.callsOf(u"codesign"_s);
    ASSERT_EQ(lines.size(), 2);
    for (const QStringList &arguments : lines)
        EXPECT_TRUE(arguments.contains(u"Developer ID Application: Second (B2)"_s));
}

TEST_F(SignOnly, byAPersonForgetsWhatAScriptHasSet)
{
    launched().isScripted.set(true);
    document().suppressDialogs.set(true);
    document().perform(Action::doSignOnly);
    EXPECT_FALSE(document().isScripted());
    EXPECT_FALSE(document().suppressDialogs());
}

TEST_F(SignOnly, whoseWindowClosedBelowThePanelHarmsNobody)
{
    launched().perform(Action::doSignOnly);
    const auto completion = host.window().panel->completion;
    const std::weak_ptr<MainWinController> closed = document().weak_from_this();
    host.window().close();
    host.settle();
    const DocumentPtr held = closed.lock();
    ASSERT_TRUE(held) << "the panel's answer needs the document";
    completion({});
    EXPECT_EQ(held->statusString(), u"ready"_s);
}

TEST_F(SignOnly, stopsWhereTheWindowRefusesToGiveUpItsFocusAndRemembersTheItem)
{
    launched().infoFailureCount.set(3);
    host.window().refusesToGiveUpFocus = true;
    sign(u"Foo.app"_s);
    EXPECT_EQ(host.applicationHost.beeps, 1);
    EXPECT_EQ(host.window().editsEnded, 1);
    EXPECT_EQ(document().statusString(), u"ready"_s);
    EXPECT_FALSE(document().isBusy());
    EXPECT_FALSE(document().isSubmitting());
    EXPECT_EQ(document().infoFailureCount(), 3U);
    EXPECT_EQ(document().originalFileName(), u"Foo.app"_s);
    EXPECT_EQ(document().originalAppletURL(), itempath::toUrl(host.item(u"Foo.app"_s)));
    EXPECT_EQ(document().lastAction(), quint64(signAction));
    EXPECT_TRUE(host.window().sheets.isEmpty());
    EXPECT_EQ(host.listing(), QStringList{u"Foo.app"_s});
}

TEST_F(SignOnly, tellsAScriptThatTheInterfaceIsBlocked)
{
    launched();
    host.window().refusesToGiveUpFocus = true;
    runByScript([this] { commands().signOnly.scriptedSignOnly(itempath::toUrl(host.item(u"Foo.app"_s))); });
    ASSERT_TRUE(scriptReply);
    EXPECT_EQ(scriptReply->errorNumber, 7);
    EXPECT_EQ(scriptReply->errorText, u"Inteface is blocked."_s);
    EXPECT_FALSE(scriptReply->result.isValid());
    EXPECT_EQ(document().statusString(), u"ready"_s);
    EXPECT_EQ(document().lastAction(), quint64(signAction)) << "the item has been taken over by then";
    EXPECT_FALSE(document().isBusy());
    EXPECT_FALSE(document().isSubmitting());
    EXPECT_FALSE(document().canCancel());
    EXPECT_TRUE(document().isScripted()) << "the flags of the script are left as they are";
    EXPECT_TRUE(document().suppressDialogs());
    EXPECT_FALSE(document().progressIndicator.isAnimating());
}

TEST_F(SignOnly, beginsAnewWithTheFailuresOfPollingAndLeavesThoseOfStatus239)
{
    launched().infoFailureCount.set(3);
    document().info239FailureCount.set(4);
    sign(u"Foo.app"_s);
    EXPECT_EQ(document().infoFailureCount(), 0U);
    EXPECT_EQ(document().info239FailureCount(), 4U);
}

TEST_F(SignOnly, givenInAdvanceShowsItsNameInTheWindow)
{
    host.tools.answer(u"xattr"_s, {.hangs = true});
    start(u"Foo.app"_s);
    EXPECT_EQ(host.window().title(), u"Foo.app"_s);
    EXPECT_EQ(document().appletNameField.stringValue(), u"Foo.app"_s);
    EXPECT_TRUE(document().progressIndicator.isAnimating());
    host.runUntil([this] { return !host.tools.callsOf(u"xattr"_s).isEmpty(); });
    host.tools.release(u"xattr"_s);
    host.settle();
    EXPECT_FALSE(document().progressIndicator.isAnimating());
}

TEST_F(SignOnly, needsNoCredentialsAndUploadsNothing)
{
    host.preferences.setValue(key::appleIDValue, u""_s);
    host.preferences.setValue(key::appPassValue, u""_s);
    sign(u"Foo.app"_s);
    EXPECT_EQ(host.tools.order(), (QStringList{u"xattr"_s, u"codesign"_s, u"codesign"_s}));
    EXPECT_EQ(host.window().sheets.value(0).messageText, u"Signing Successful"_s);
}

TEST_F(SignOnly, clearsTheWindowLogUnlessItIsToBeKept)
{
    launched().logStringMain(u"earlier"_s, false);
    sign(u"Foo.app"_s);
    EXPECT_FALSE(host.log().contains(u"earlier"_s));
    host.window().answerSheet();
    document().dontClearCheckbox.setState(1);
    document().logStringMain(u"kept"_s, false);
    document().perform(Action::doSignAgain);
    host.settle();
    EXPECT_TRUE(host.log().contains(u"kept"_s));
}

// The chain

TEST_F(SignOnly, ofAnAppSignsItsMembersAndThenItsMainFileWithEntitlements)
{
    sign(u"Foo.app"_s);
    EXPECT_EQ(host.tools.order(), (QStringList{u"xattr"_s, u"codesign"_s, u"codesign"_s}));
    const auto lines = host.tools.callsOf(u"codesign"_s);
    const QString folder = host.item(u"Foo - Working"_s);
    EXPECT_EQ(lines[0],
              signingarguments::codesignMember(folder + u"/Foo.app/Contents/PlugIns/Inner.bundle"_s,
                                               u"Example Corp (A1B2C3D4E5)"_s,
                                               folder + u"/Entitlements.plist"_s, {.force = true}));
    EXPECT_EQ(lines[1],
              signingarguments::codesignMainFile(folder + u"/Foo.app"_s, u"Example Corp (A1B2C3D4E5)"_s,
                                                 folder + u"/Entitlements.plist"_s, {.force = true}));
    const QStringList bold = host.log(LogStyle::bold);
    EXPECT_EQ(bold.mid(0, 4),
              (QStringList{u"Creating working copy..."_s, u"Clearing extended attributes..."_s,
                           u"Examining contents..."_s, u"Signing '.../Contents/PlugIns/Inner.bundle'..."_s}));
    EXPECT_EQ(bold.last(), u"Code-signing succeeded."_s);
    EXPECT_EQ(host.text(u"Foo - Signed/Submission Log.txt"_s).count(u"Locking main.scpt"_s), 2);
}

TEST_F(SignOnly, takesAnExtensionInOtherLettersForAnApp)
{
    items::makeBundle(host.item(u"Bar.APP"_s));
    launched().dontSignEnclosuresCheckbox.setState(1);
    sign(u"Bar.APP"_s);
    const auto lines = host.tools.callsOf(u"codesign"_s);
    ASSERT_EQ(lines.size(), 1);
    EXPECT_EQ(lines[0].last(), host.item(u"Bar - Working/Bar.APP"_s));
}

TEST_F(SignOnly, ofAFolderSignsTheAppInItAsAMemberAndBeforeThatTheAppsOwnCode)
{
    items::makeBundle(host.item(u"Tools/Inner.app"_s));
    items::makeBundle(host.item(u"Tools/Inner.app/Contents/PlugIns/Deep.bundle"_s));
    items::makeFile(host.item(u"Tools/Contents/Resources/Scripts/main.scpt"_s), "script");
    sign(u"Tools"_s);
    const auto lines = host.tools.callsOf(u"codesign"_s);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0].last(), host.item(u"Tools - Working/Tools/Inner.app/Contents/PlugIns/Deep.bundle"_s));
    EXPECT_EQ(lines[1].last(), host.item(u"Tools - Working/Tools/Inner.app"_s));
    EXPECT_TRUE(host.log().contains(u"Examining contents..."_s));
    EXPECT_TRUE(host.log().filter(u"Signing main file"_s).isEmpty());
    EXPECT_EQ(host.text(u"Tools - Signed/Submission Log.txt"_s).count(u"Locking main.scpt"_s), 1)
        << "along with the attributes, and not by itself";
    EXPECT_EQ(host.listing(u"Tools - Signed"_s),
              (QStringList{u"Entitlements.plist"_s, u"Submission Log.txt"_s, u"Tools"_s,
                           u"Tools - Unmodified Original"_s}));
}

TEST_F(SignOnly, ofAFolderSignsItsMembersWhateverTheSettingForEnclosures)
{
    items::makeBundle(host.item(u"Tools/Inner.app"_s));
    launched().dontSignEnclosuresCheckbox.setState(1);
    sign(u"Tools"_s);
    ASSERT_EQ(host.tools.callsOf(u"codesign"_s).size(), 1);
    EXPECT_EQ(host.tools.callsOf(u"codesign"_s).first().last(),
              host.item(u"Tools - Working/Tools/Inner.app"_s));
}

TEST_F(SignOnly, ofAPluginInAFolderIsNoAppAndSoAMemberToo)
{
    items::makeBundle(host.item(u"Bar.plugin"_s));
    sign(u"Bar.plugin"_s);
    ASSERT_EQ(host.tools.callsOf(u"codesign"_s).size(), 1);
    EXPECT_EQ(host.tools.callsOf(u"codesign"_s).first().last(), host.item(u"Bar - Working/Bar.plugin"_s));
    EXPECT_TRUE(host.log().contains(u"Signing '...'..."_s));
}

TEST_F(SignOnly, ofTheMainFileOnlyDoesNotLookAtTheContents)
{
    launched().dontSignEnclosuresCheckbox.setState(1);
    sign(u"Foo.app"_s);
    EXPECT_EQ(host.tools.order(), (QStringList{u"xattr"_s, u"codesign"_s}));
    EXPECT_FALSE(host.log().contains(u"Examining contents..."_s));
    const QStringList line = host.tools.callsOf(u"codesign"_s).value(0);
    EXPECT_EQ(line.last(), host.item(u"Foo - Working/Foo.app"_s));
    EXPECT_TRUE(line.contains(u"--entitlements"_s));
}
