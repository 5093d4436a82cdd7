// Stapling by itself: how it is asked for, the check of the folder, and stapling again.

#include "notarization/stapleonlytest.h"
#include "document/documentcommands.h"

#include "app/preferencekeys.h"

using namespace Qt::StringLiterals;

// The panel

TEST_F(StapleOnly, byThePanelAsksForTheFiveKinds)
{
    launched().perform(Action::doStapleOnly);
    ASSERT_TRUE(host.window().panel);
    const platform::OpenPanel panel = host.window().panel->panel;
    EXPECT_EQ(panel.message, u"Choose an app, disk image, .pkg, .plugin or .fmplugin to try to staple"_s);
    EXPECT_EQ(panel.allowedFileTypes,
              (QStringList{u"app"_s, u"dmg"_s, u"pkg"_s, u"fmplugin"_s, u"plugin"_s}));
    EXPECT_TRUE(panel.canChooseFiles);
    EXPECT_FALSE(panel.canChooseDirectories);
    EXPECT_FALSE(panel.shouldEnable(QUrl(u"file:///a/notes.txt"_s)));
    EXPECT_EQ(document().statusString(), u"interacting"_s);
    EXPECT_TRUE(document().isBusy());
    EXPECT_FALSE(document().isSubmitting());
    EXPECT_FALSE(document().progressIndicator.isAnimating());
    EXPECT_EQ(document().lastAction(), quint64(nothingToRepeat));
}

TEST_F(StapleOnly, byThePanelCancelledLeavesTheDocumentIdle)
{
    launched().isSubmitting.set(true); // from a submission that a stale cancel has stopped
    document().perform(Action::doStapleOnly);
    host.window().choose({});
    EXPECT_EQ(document().statusString(), u"ready"_s);
    EXPECT_FALSE(document().isBusy());
    EXPECT_TRUE(document().isSubmitting()) << "that is not this workflow's";
    EXPECT_EQ(document().lastAction(), quint64(nothingToRepeat));
    EXPECT_TRUE(document().appletURL().isEmpty());
}

TEST_F(StapleOnly, byAPersonForgetsWhatAScriptHasSet)
{
    launched().isScripted.set(true);
    document().suppressDialogs.set(true);
    document().perform(Action::doStapleOnly);
    EXPECT_FALSE(document().isScripted());
    EXPECT_FALSE(document().suppressDialogs());
}

TEST_F(StapleOnly, whoseWindowClosedBelowThePanelHarmsNobody)
{
    launched().perform(Action::doStapleOnly);
    const auto completion = host.window().panel->completion;
    const std::weak_ptr<MainWinController> closed = document().weak_from_this();
    host.window().close();
    host.settle();
    const DocumentPtr held = closed.lock();
    ASSERT_TRUE(held) << "the panel's answer needs the document";
    completion({});
    EXPECT_EQ(held->statusString(), u"ready"_s);
}

// The check of the folder

TEST_F(StapleOnly, ofAnAppChosenInItsSubmittedFolderGoesStraightOn)
{
    choose(u"Foo - Submitted/Foo.app"_s);
    EXPECT_FALSE(host.window().sheet);
    EXPECT_EQ(host.applicationHost.beeps, 0);
    EXPECT_EQ(document().statusString(), u"stapling"_s);
    host.settle();
    expectStapled(u"Foo - Submitted/Foo.app"_s);
}

TEST_F(StapleOnly, ofAnAppChosenElsewhereAsksFirst)
{
    choose(u"Elsewhere/Foo.app"_s);
    ASSERT_TRUE(host.window().sheet);
    const platform::Alert alert = host.window().sheet->alert;
    EXPECT_EQ(alert.messageText, u"Incorrect Application?"_s);
    EXPECT_EQ(
        alert.informativeText,
        u"Are you sure that is the version of the app copied and submitted for notarizing, and not the original un-signed version? It should normally be found inside a folder called 'Foo - Submitted'.\n\nPress Continue if you think you have the correct version."_s);
    EXPECT_EQ(alert.buttons, (QStringList{u"Cancel"_s, u"Continue"_s}));
    EXPECT_EQ(host.applicationHost.beeps, 1);
    EXPECT_EQ(document().statusString(), u"interacting"_s);
    EXPECT_TRUE(document().isBusy());
    host.settle();
    EXPECT_TRUE(host.tools.calls().isEmpty());
}

TEST_F(StapleOnly, goesOnWithAnAppFromElsewhereIfThePersonInsists)
{
    choose(u"Elsewhere/Foo.app"_s);
    host.window().answerSheet(platform::alertSecondButton);
    EXPECT_EQ(document().statusString(), u"stapling"_s);
    EXPECT_TRUE(document().progressIndicator.isAnimating());
    host.settle();
    expectStapled(u"Elsewhere/Foo.app"_s);
}

TEST_F(StapleOnly, ofAnAppFromElsewhereCancelledRemembersTheAppAndStops)
{
    choose(u"Elsewhere/Foo.app"_s);
    host.window().answerSheet(platform::alertFirstButton);
    host.settle();
    EXPECT_EQ(document().statusString(), u"ready"_s);
    EXPECT_FALSE(document().isBusy());
    EXPECT_TRUE(host.tools.calls().isEmpty());
    EXPECT_EQ(document().lastAction(), quint64(stapleAction));
    EXPECT_EQ(document().appletURL(), url(u"Elsewhere/Foo.app"_s));
}

TEST_F(StapleOnly, whoseWindowClosedBelowTheQuestionHarmsNobody)
{
    choose(u"Elsewhere/Foo.app"_s);
    const auto completion = host.window().sheet->completion;
    const std::weak_ptr<MainWinController> closed = document().weak_from_this();
    host.window().close();
    host.settle();
    const DocumentPtr held = closed.lock();
    ASSERT_TRUE(held);
    completion(platform::alertFirstButton);
    EXPECT_FALSE(held->isBusy());
}

namespace {

struct FolderRow {
    const char *name;
    QString item;
    bool isAsked;
};

class StapleOnlyFolder : public StapleOnly, public testing::WithParamInterface<FolderRow> { };

} // namespace

TEST_P(StapleOnlyFolder, isLookedAtByItsExactName)
{
    items::makeBundle(host.item(GetParam().item));
    choose(GetParam().item);
    EXPECT_EQ(host.window().sheet.has_value(), GetParam().isAsked);
    EXPECT_EQ(host.applicationHost.beeps, GetParam().isAsked ? 1 : 0);
    host.settle();
    EXPECT_EQ(host.tools.calls().isEmpty(), GetParam().isAsked);
}

INSTANTIATE_TEST_SUITE_P(Items, StapleOnlyFolder,
                         testing::Values(FolderRow{"lowerCaseName", u"foo - Submitted/Foo.app"_s, true},
                                         FolderRow{"lowerCaseSuffix", u"Foo - submitted/Foo.app"_s, true},
                                         FolderRow{"moreBehindTheName", u"Foo - Submitted 2/Foo.app"_s, true},
                                         FolderRow{"anotherApp", u"Foo - Submitted/Bar.app"_s, true},
                                         FolderRow{"notarizedAlready", u"Foo - Notarized/Foo.app"_s, true},
                                         FolderRow{"upperCaseExtension", u"Elsewhere/Foo.APP"_s, true},
                                         FolderRow{"upperCaseExtensionInPlace", u"Foo - Submitted/Foo.APP"_s,
                                                   false},
                                         FolderRow{"twoDots", u"My.Tool - Submitted/My.Tool.app"_s, false},
                                         FolderRow{"diskImage", u"Elsewhere/Foo.dmg"_s, false},
                                         FolderRow{"package", u"Elsewhere/Foo.pkg"_s, false},
                                         FolderRow{"plugin", u"Elsewhere/Foo.plugin"_s, false},
                                         FolderRow{"fmplugin", u"Elsewhere/Foo.fmplugin"_s, false}),
                         [](const auto &row) { return row.param.name; });

TEST_F(StapleOnly, ofAnAppGivenInAdvanceAsksNothing)
{
    staple(u"Elsewhere/Foo.app"_s);
    expectStapled(u"Elsewhere/Foo.app"_s);
    ASSERT_EQ(host.window().sheets.size(), 1);
    EXPECT_EQ(host.window().sheets.first().messageText, u"Stapling Successful"_s);
    EXPECT_EQ(host.applicationHost.beeps, 0);
}

TEST_F(StapleOnly, byAScriptOfAnAppFromAnywhereAsksNothing)
{
    stapleByScript(u"Elsewhere/Foo.app"_s);
    expectStapled(u"Elsewhere/Foo.app"_s);
    EXPECT_TRUE(host.window().sheets.isEmpty());
}

// The front end

TEST_F(StapleOnly, stopsWhereTheWindowRefusesToGiveUpItsFocusAndChangesNothing)
{
    launched();
    host.window().refusesToGiveUpFocus = true;
    staple(u"Elsewhere/Foo.app"_s);
    EXPECT_EQ(host.applicationHost.beeps, 1);
    EXPECT_EQ(host.window().editsEnded, 1);
    EXPECT_EQ(document().statusString(), u"ready"_s);
    EXPECT_FALSE(document().isBusy());
    EXPECT_FALSE(document().loggingToFile());
    EXPECT_TRUE(document().appletURL().isEmpty());
    EXPECT_TRUE(document().originalFileName().isEmpty());
    EXPECT_EQ(document().lastAction(), quint64(nothingToRepeat));
}

TEST_F(StapleOnly, tellsAScriptThatTheInterfaceIsBlockedInItsOwnWords)
{
    launched();
    host.window().refusesToGiveUpFocus = true;
    stapleByScript(u"Elsewhere/Foo.app"_s);
    ASSERT_TRUE(scriptReply);
    EXPECT_EQ(scriptReply->errorNumber, 7);
    EXPECT_EQ(scriptReply->errorText, u"Interface is blocked."_s);
    EXPECT_FALSE(scriptReply->result.isValid());
}

TEST_F(StapleOnly, givenInAdvanceShowsTheItemTwiceAndSoCountsItsOwnTitleAsTaken)
{
    int cleared = 0;
    QObject::connect(&launched().statusTextView, &LogText::cleared, [&cleared] { ++cleared; });
    staple(u"Elsewhere/Foo.app"_s);
    EXPECT_EQ(cleared, 2);
    EXPECT_EQ(host.window().title(), u"Foo.app-2"_s);
    EXPECT_EQ(document().appletNameField.stringValue(), u"Foo.app"_s);
}

TEST_F(StapleOnly, byThePanelShowsTheItemOnce)
{
    int cleared = 0;
    QObject::connect(&launched().statusTextView, &LogText::cleared, [&cleared] { ++cleared; });
    choose(u"Foo - Submitted/Foo.app"_s);
    EXPECT_EQ(cleared, 1);
    EXPECT_EQ(host.window().title(), u"Foo.app"_s);
    EXPECT_EQ(document().appletNameField.stringValue(), u"Foo.app"_s);
    EXPECT_TRUE(document().progressIndicator.isAnimating());
    host.settle();
}

TEST_F(StapleOnly, keepsTheWindowLogThatIsToBeKept)
{
    launched().dontClearCheckbox.setState(1);
    document().logStringMain(u"kept"_s, false);
    staple(u"Elsewhere/Foo.app"_s);
    EXPECT_TRUE(host.log().contains(u"kept"_s));
}

TEST_F(StapleOnly, needsNoCredentialsAndNoNotaryTool)
{
    host.preferences.setValue(key::appleIDValue, u""_s);
    host.preferences.setValue(key::appPassValue, u""_s);
    launched().infoFailureCount.set(3);
    document().info239FailureCount.set(4);
    staple(u"Elsewhere/Foo.app"_s);
    EXPECT_EQ(host.tools.order(), (QStringList{u"spctl"_s, u"stapler"_s}));
    EXPECT_EQ(document().infoFailureCount(), 3U);
    EXPECT_EQ(document().info239FailureCount(), 4U);
}

TEST_F(StapleOnly, isBusyButNeitherSubmittingNorPollingNorCancellable)
{
    host.tools.answer(u"spctl"_s, {.error = accepted, .hangs = true});
    launched().commands().stapleOnly.stapleOnly(url(u"Elsewhere/Foo.app"_s));
    host.runUntil([this] { return !host.tools.callsOf(u"spctl"_s).isEmpty() && host.mainQueue.isEmpty(); });
    EXPECT_TRUE(document().isBusy());
    EXPECT_FALSE(document().isSubmitting());
    EXPECT_FALSE(document().isPolling());
    EXPECT_FALSE(document().canCancel());
    EXPECT_EQ(document().statusString(), u"stapling"_s);
    EXPECT_FALSE(document().windowShouldClose());
    EXPECT_EQ(host.window().sheet->alert.informativeText, u"This window is busy."_s);
    host.window().answerSheet(platform::alertFirstButton);
    host.tools.release(u"spctl"_s);
    host.settle();
    EXPECT_FALSE(document().isBusy());
}

// Stapling again

TEST_F(StapleOnly, againRepeatsTheRunWhereverTheItemLies)
{
    choose(u"Elsewhere/Foo.app"_s);
    host.window().answerSheet(platform::alertSecondButton);
    host.settle();
    host.window().answerSheet();
    EXPECT_EQ(document().lastAction(), quint64(stapleAction));
    host.tools.forgetCalls();
    document().isScripted.set(true);
    document().suppressDialogs.set(true);
    document().perform(Action::doStapleAgain);
    EXPECT_FALSE(document().isScripted());
    EXPECT_FALSE(document().suppressDialogs());
    EXPECT_FALSE(host.window().sheet);
    host.settle();
    expectStapled(u"Elsewhere/Foo.app"_s);
    EXPECT_EQ(document().lastAction(), quint64(stapleAction));
}

TEST_F(StapleOnly, againFollowsTheItemIntoTheRenamedFolder)
{
    choose(u"Foo - Submitted/Foo.app"_s);
    host.settle();
    EXPECT_EQ(host.listing(), (QStringList{u"Elsewhere"_s, u"Foo - Notarized"_s}));
    EXPECT_EQ(copy(), host.item(u"Foo - Notarized/Foo.app"_s));
    host.window().answerSheet();
    host.tools.forgetCalls();
    document().perform(Action::doStapleAgain);
    host.settle();
    expectStapled(u"Foo - Notarized/Foo.app"_s);
    EXPECT_EQ(host.listing(), (QStringList{u"Elsewhere"_s, u"Foo - Notarized"_s}));
}

TEST_F(StapleOnly, againWithTheItemGoneSaysSoAndForgetsTheAction)
{
    staple(u"Elsewhere/Foo.app"_s);
    host.window().answerSheet();
    ASSERT_TRUE(host.files.removeItem(host.item(u"Elsewhere/Foo.app"_s)));
    host.tools.forgetCalls();
    document().perform(Action::doStapleAgain);
    ASSERT_TRUE(host.window().sheet);
    EXPECT_EQ(host.window().sheet->alert.messageText, u"File Not Found"_s);
    EXPECT_EQ(host.window().sheet->alert.informativeText,
              u"The file:\n\n‘%1’\n\nhas been moved or deleted."_s.arg(host.item(u"Elsewhere/Foo.app"_s)));
    EXPECT_EQ(document().statusString(), u"interacting"_s);
    EXPECT_EQ(document().lastAction(), quint64(stapleAction));
    host.window().answerSheet();
    EXPECT_EQ(document().lastAction(), quint64(nothingToRepeat));
    EXPECT_EQ(document().statusString(), u"ready"_s);
    EXPECT_TRUE(host.tools.calls().isEmpty());
}
