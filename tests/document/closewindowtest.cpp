// What a document says to the closing of its window.

#include "app/appdelegate.h"
#include "document/documentcommands.h"
#include "platform/itempath.h"
#include "support/steptest.h"

using namespace Qt::StringLiterals;

namespace {

class CloseWindow : public StepTest {
protected:
    CloseWindow()
    {
        items::makeBundle(host.item(u"Foo.app"_s));
        host.launch();
        isLaunched = true;
    }

    bool isOpen() { return !host.application().allControllers().isEmpty(); }

    /// As many documents as the tabs of one window.
    void openTabs(qsizetype count)
    {
        const auto tag = 2; // of the item that makes a tab
        for (qsizetype open = 1; open < count; ++open)
            host.application().newDocument(tag);
    }
};

struct BusyRow {
    const char *name;
    bool isSubmitting;
    bool isPolling;
    QString warning;
    QString statusAfterCancel;
};

class BusyDocument : public CloseWindow, public testing::WithParamInterface<BusyRow> {
protected:
    BusyDocument()
    {
        document().isBusy.set(true);
        document().isSubmitting.set(GetParam().isSubmitting);
        document().isPolling.set(GetParam().isPolling);
        beepsBefore = host.applicationHost.beeps;
    }

    int beepsBefore;
};

} // namespace

TEST_P(BusyDocument, asksFirst)
{
    EXPECT_FALSE(document().windowShouldClose());
    ASSERT_TRUE(host.window().sheet);
    const platform::Alert alert = host.window().sheet->alert;
    EXPECT_EQ(alert.messageText, u"Continue Closing?"_s);
    EXPECT_EQ(alert.informativeText, GetParam().warning);
    EXPECT_EQ(alert.buttons, (QStringList{u"Cancel"_s, u"Close"_s}));
    EXPECT_EQ(host.applicationHost.beeps, beepsBefore + 1);
    EXPECT_EQ(document().statusString(), u"interacting"_s);
    EXPECT_TRUE(isOpen());
}

TEST_P(BusyDocument, staysOnCancelAndPutsItsStatusBack)
{
    host.window().performClose();
    host.window().answerSheet(platform::alertFirstButton);
    EXPECT_TRUE(isOpen());
    EXPECT_FALSE(host.window().isClosed);
    EXPECT_EQ(document().statusString(), GetParam().statusAfterCancel);
    EXPECT_TRUE(document().isBusy());
}

TEST_P(BusyDocument, goesOnClose)
{
    host.window().performClose();
    host.window().answerSheet(platform::alertSecondButton);
    EXPECT_FALSE(isOpen());
    EXPECT_TRUE(host.applicationHost.onScreen.isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    States, BusyDocument,
    testing::Values(BusyRow{"submitting", true, false, u"Closing now may abort the uploading of your app."_s,
                            u"submitting"_s},
                    BusyRow{"submittingAndPolling", true, true,
                            u"Closing now may abort the uploading of your app."_s, u"submitting"_s},
                    BusyRow{"polling", false, true, u"The app is not yet approved and stapled."_s,
                            u"waiting"_s},
                    BusyRow{"busyOtherwise", false, false, u"This window is busy."_s, u"interacting"_s}),
    [](const auto &row) { return row.param.name; });

TEST_F(CloseWindow, ofAnIdleDocumentIsNotAskedAbout)
{
    EXPECT_TRUE(document().windowShouldClose());
    EXPECT_TRUE(host.window().sheets.isEmpty());
    EXPECT_EQ(host.applicationHost.beeps, 0);
    EXPECT_EQ(document().statusString(), u"ready"_s);
}

TEST_F(CloseWindow, ofAnIdleDocumentStopsATimerThatIsStillArmed)
{
    host.submit(host.item(u"Foo.app"_s));
    ASSERT_EQ(host.timers.armed().size(), 1);
    document().endWorkflow();
    EXPECT_TRUE(document().windowShouldClose());
    EXPECT_TRUE(host.timers.armed().isEmpty());
}

TEST_F(CloseWindow, duringAWorkflowThatAFinalSheetHasEndedIsNotAskedAbout)
{
    document().finalAlertOrMessage(u"Error Making Archive"_s, u"See the log for details."_s,
                                   u"ditto failed"_s);
    ASSERT_TRUE(host.window().sheet);
    host.window().performClose();
    EXPECT_FALSE(isOpen());
}

TEST_F(CloseWindow, whilePollingStopsTheTimerOnClose)
{
    host.submit(host.item(u"Foo.app"_s));
    host.window().performClose();
    EXPECT_EQ(host.timers.armed().size(), 1) << "not before the answer";
    host.window().answerSheet(platform::alertSecondButton);
    EXPECT_TRUE(host.timers.armed().isEmpty());
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Submitted"_s, u"Foo.app"_s}));
}

TEST_F(CloseWindow, whilePollingKeepsTheTimerOnCancel)
{
    host.submit(host.item(u"Foo.app"_s));
    host.window().performClose();
    host.window().answerSheet(platform::alertFirstButton);
    EXPECT_EQ(document().statusString(), u"waiting"_s);
    host.firePolls();
    EXPECT_EQ(host.window().sheet->alert.messageText, u"Stapling Successful"_s);
}

TEST_F(CloseWindow, duringAnUploadLetsTheToolGoOn)
{
    host.tools.answer(u"altool--notarize-app"_s, {.output = FakeTools::uploadReply(), .hangs = true});
    commands().submit.submitURL(itempath::toUrl(host.item(u"Foo.app"_s)));
    host.runUntil([this] { return host.tools.order().contains(u"altool--notarize-app"_s); });
    const SLWTaskMasterPtr runner = document().uploadTaskRunner();
    host.window().performClose();
    host.window().answerSheet(platform::alertSecondButton);
    EXPECT_FALSE(isOpen());
    EXPECT_NE(runner->currentTask(), nullptr);
    host.tools.release(u"altool--notarize-app"_s);
    host.settle();
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Submitted"_s, u"Foo.app"_s}));
    EXPECT_EQ(host.text(u"Foo - Submitted/RequestUUID.txt"_s), u"1234-abcd"_s);
}

TEST_F(CloseWindow, endsAnEditInProgress)
{
    const DocumentPtr held = host.application().allControllers().first();
    const int before = host.window().editsEnded;
    host.window().performClose();
    EXPECT_EQ(host.window(*held).editsEnded, before + 1);
    EXPECT_FALSE(isOpen());
}

TEST_F(CloseWindow, endsTheEditBeforeTheApplicationForgetsTheDocument)
{
    const DocumentPtr held = host.application().allControllers().first();
    const int before = host.window().editsEnded;
    int whenForgotten = before;
    QObject::connect(&host.application(), &AppDelegate::documentRemoved, &host.application(),
                     [&](MainWinController *gone) { whenForgotten = host.window(*gone).editsEnded; });
    held->windowWillClose();
    EXPECT_EQ(whenForgotten, before + 1);
}

TEST_F(CloseWindow, twiceWhileTheQuestionIsUpAsksAgain)
{
    document().isBusy.set(true);
    host.window().performClose();
    host.window().performClose();
    EXPECT_EQ(host.window().sheets.size(), 2);
    EXPECT_TRUE(isOpen());
}

// The commands

TEST_F(CloseWindow, byAPersonsCommandClosesAtOnce)
{
    document().perform(Action::doCloseDocument);
    EXPECT_FALSE(isOpen());
}

TEST_F(CloseWindow, byAScriptWaitsUntilItsCommandHasEnded)
{
    document().doCloseDocument(CloseSender::script);
    ASSERT_TRUE(isOpen());
    host.settle();
    EXPECT_FALSE(isOpen());
}

TEST_F(CloseWindow, byAScriptAsksWhileTheDocumentIsBusyAsForAPerson)
{
    document().isBusy.set(true);
    document().doCloseDocument(CloseSender::script);
    EXPECT_TRUE(host.window().sheets.isEmpty());
    host.settle();
    ASSERT_TRUE(isOpen());
    ASSERT_TRUE(host.window().sheet);
    EXPECT_EQ(host.window().sheet->alert.messageText, u"Continue Closing?"_s);
    EXPECT_EQ(host.window().sheet->alert.informativeText, u"This window is busy."_s);
    EXPECT_TRUE(isOpen());
}

TEST_F(CloseWindow, byAScriptFindsNothingToCloseIfAPersonWasFaster)
{
    const DocumentPtr held = host.application().allControllers().first();
    held->doCloseDocument(CloseSender::script);
    held->window().performClose();
    held->isBusy.set(true);
    host.settle();
    EXPECT_TRUE(host.window(*held).sheets.isEmpty());
    EXPECT_EQ(held->statusString(), u"ready"_s);
}

TEST_F(CloseWindow, ofATabLeavesTheOtherTabs)
{
    openTabs(2);
    document().perform(Action::doCloseDocument);
    EXPECT_EQ(host.application().allControllers().size(), 1);
}

TEST_F(CloseWindow, withItsTabsClosesEachInTheirOrderAndEachMayRefuse)
{
    openTabs(4);
    MainWinController &busy = *host.application().allControllers().at(1);
    busy.isPolling.set(true);
    QStringList closed;
    QObject::connect(&host.application(), &AppDelegate::documentRemoved, &host.application(),
                     [&closed](MainWinController *gone) { closed.append(gone->window().title()); });
    host.application().allControllers().at(2)->perform(Action::doCloseWindow);
    EXPECT_EQ(closed, (QStringList{u"Untitled"_s, u"Untitled-3"_s, u"Untitled-4"_s}));
    ASSERT_TRUE(host.window(busy).sheet);
    EXPECT_EQ(host.window(busy).sheet->alert.informativeText, u"The app is not yet approved and stapled."_s);
}

TEST_F(CloseWindow, withItsTabsLeavesOtherWindowsAlone)
{
    openTabs(2);
    const DocumentPtr other = host.application().addedDocument();
    host.application().allControllers().first()->perform(Action::doCloseWindow);
    EXPECT_EQ(host.application().allControllers(), QList<DocumentPtr>{other});
}

TEST_F(CloseWindow, withItsTabsDoesNothingToAWindowWithoutTabs)
{
    document().perform(Action::doCloseWindow);
    ASSERT_TRUE(isOpen());
    EXPECT_TRUE(host.window().sheets.isEmpty());
    EXPECT_EQ(document().statusString(), u"ready"_s);
}
