// The menu's commands that close windows, and what stands in their way.

#include "mainmenutest.h"

#include <QPushButton>

using namespace Qt::StringLiterals;

TEST_F(MainMenuTest, closeAllClosesEveryWindowThatAgrees)
{
    const DocumentPtr busy = host.application().allControllers().first();
    busy->isBusy.set(true);
    host.application().newDocument(1);
    host.application().newDocument(2);
    EXPECT_EQ(host.application().allControllers().size(), 3);
    item(u"fileMenu"_s, u"Close All"_s).trigger();
    until([this] { return host.application().allControllers().size() == 1; });
    EXPECT_EQ(awaitSheet().text(), u"Continue Closing?"_s);
    answer(u"Close"_s);
    EXPECT_TRUE(host.application().allControllers().isEmpty());
}

TEST_F(MainMenuTest, closeAllTabsOfALoneWindowDoesNothing)
{
    item(u"fileMenu"_s, u"Close All Tabs"_s).trigger();
    host.settle();
    EXPECT_EQ(host.application().allControllers().size(), 1);
}

namespace {

struct ClosingRow {
    const char *situation;
    void (*prepare)(MainWinController &);
    QString warning;
    QString statusAfterCancel;
};

class Closing : public MainMenuTest, public testing::WithParamInterface<ClosingRow> { };

} // namespace

TEST_P(Closing, asksAndStaysOnCancel)
{
    GetParam().prepare(document());
    press(Qt::Key_W, Qt::ControlModifier);
    AlertBox &box = awaitSheet();
    EXPECT_EQ(box.text(), u"Continue Closing?"_s);
    EXPECT_EQ(box.informativeText(), GetParam().warning);
    EXPECT_EQ(host.applicationHost.beeps, 1);
    answer(u"Cancel"_s);
    host.settle();
    EXPECT_TRUE(widget().isVisible());
    EXPECT_EQ(document().statusString(), GetParam().statusAfterCancel);
}

TEST_P(Closing, asksAndGoesOnClose)
{
    GetParam().prepare(document());
    press(Qt::Key_W, Qt::ControlModifier);
    answer(u"Close"_s);
    EXPECT_TRUE(host.application().allControllers().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Questions, Closing,
    testing::Values(ClosingRow{"submitting",
                               [](MainWinController &document) {
                                   document.isBusy.set(true);
                                   document.isSubmitting.set(true);
                                   document.isPolling.set(true);
                               },
                               u"Closing now may abort the uploading of your app."_s, u"submitting"_s},
                    ClosingRow{"polling",
                               [](MainWinController &document) {
                                   document.isBusy.set(true);
                                   document.isPolling.set(true);
                               },
                               u"The app is not yet approved and stapled."_s, u"waiting"_s},
                    ClosingRow{"otherwiseBusy",
                               [](MainWinController &document) { document.isBusy.set(true); },
                               u"This window is busy."_s, u"interacting"_s}),
    [](const auto &row) { return row.param.situation; });

TEST_F(MainMenuTest, closingDuringAnUploadLetsTheToolGoOnUntilItEnds)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    host.tools.answer(u"altool--notarize-app"_s, {.output = FakeTools::uploadReply(), .hangs = true});
    document().commands().submit.submitURL(itempath::toUrl(host.item(u"Foo.app"_s)));
    host.runUntil([this] { return !host.tools.callsOf(u"altool--notarize-app"_s).isEmpty(); });
    press(Qt::Key_W, Qt::ControlModifier);
    answer(u"Close"_s);
    EXPECT_TRUE(host.application().allControllers().isEmpty());
    EXPECT_FALSE(host.workers().isIdle()) << "the tool still runs";
    host.tools.release(u"altool--notarize-app"_s);
    host.settle();
    EXPECT_TRUE(host.listing().contains(u"Foo - Submitted"_s));
    host.timers.forgetAll();
}

TEST_F(MainMenuTest, aScriptsCloseOfABusyDocumentShowsItsSheetAsForAPerson)
{
    document().isBusy.set(true);
    document().doCloseDocument(CloseSender::script);
    EXPECT_EQ(awaitSheet().text(), u"Continue Closing?"_s);
    answer(u"Close"_s);
    EXPECT_TRUE(host.application().allControllers().isEmpty());
}

TEST_F(MainMenuTest, cancelWhilePollingTakesTheTimerAwayAndTellsOfStapleOnly)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    host.submit(host.item(u"Foo.app"_s));
    ASSERT_EQ(host.timers.armed().size(), 1);
    press(Qt::Key_Period, Qt::ControlModifier);
    EXPECT_TRUE(awaitSheet().informativeText().contains(u"using the Staple Only button."_s));
    EXPECT_TRUE(host.timers.armed().isEmpty());
    answer(u"OK"_s);
    EXPECT_FALSE(part<QPushButton>(u"cancelButton"_s).isVisible());
    EXPECT_TRUE(part<QPushButton>(u"stapleOnlyButton"_s).isEnabled());
}
