// Stapling by itself after a cancel of the wait for a verdict.

#include "notarization/stapleonlytest.h"

using namespace Qt::StringLiterals;

namespace {

class StapleAfterCancel : public StapleOnly {
protected:
    /// Submits Bar.app and cancels while its verdict is waited for.
    StapleAfterCancel()
    {
        items::makeBundle(host.item(u"Bar.app"_s));
        launched();
        host.submit(host.item(u"Bar.app"_s));
        document().doCancel();
        host.window().answerSheet();
        host.tools.forgetCalls();
    }
};

} // namespace

TEST_F(StapleAfterCancel, worksAndLeavesTheCancelWhereItIs)
{
    ASSERT_TRUE(document().cancelPressed());
    choose(u"Bar - Submitted/Bar.app"_s);
    host.settle();
    expectStapled(u"Bar - Submitted/Bar.app"_s);
    EXPECT_TRUE(host.listing().contains(u"Bar - Notarized"_s));
    EXPECT_EQ(host.window().sheets.last().messageText, u"Stapling Successful"_s);
    EXPECT_FALSE(document().isBusy());
    EXPECT_TRUE(document().cancelPressed());
}

TEST_F(StapleAfterCancel, swallowsItsFirstFailureAndTellsTheSecond)
{
    host.tools.answer(u"spctl"_s, {.status = 3, .error = "rejected"});
    const auto sheetsBefore = host.window().sheets.size();
    choose(u"Bar - Submitted/Bar.app"_s);
    host.settle();
    EXPECT_EQ(host.window().sheets.size(), sheetsBefore);
    EXPECT_TRUE(host.log(LogStyle::error).isEmpty());
    EXPECT_TRUE(document().isBusy());
    EXPECT_EQ(document().statusString(), u"stapling"_s);
    EXPECT_FALSE(document().cancelPressed());

    document().perform(Action::doStapleAgain);
    host.settle();
    EXPECT_EQ(host.window().sheets.last().messageText, u"Error Verifying Signing"_s);
    EXPECT_FALSE(document().isBusy());
}

TEST_F(StapleAfterCancel, swallowsAFailureOfTheStaplerAndStaysBusy)
{
    host.tools.answer(u"stapler"_s, {.status = 65, .error = "no ticket"});
    const auto sheetsBefore = host.window().sheets.size();
    choose(u"Bar - Submitted/Bar.app"_s);
    host.settle();
    EXPECT_EQ(host.tools.callsOf(u"stapler"_s).size(), 1);
    EXPECT_EQ(host.window().sheets.size(), sheetsBefore);
    EXPECT_TRUE(host.log(LogStyle::error).isEmpty());
    EXPECT_TRUE(host.listing().contains(u"Bar - Failed"_s)) << "the folder has its name all the same";
    EXPECT_TRUE(document().isBusy());
    EXPECT_EQ(document().statusString(), u"stapling"_s);
    EXPECT_FALSE(document().cancelPressed());
}
