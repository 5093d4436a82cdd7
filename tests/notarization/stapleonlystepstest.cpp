// What the list of steps shows of stapling by itself.

#include "document/documentcommands.h"
#include "notarization/stapleonlytest.h"
#include "support/steprows.h"

using namespace Qt::StringLiterals;

class StapleOnlySteps : public StapleOnly {
protected:
    QStringList rows() { return stepRows(document().stepList); }
};

TEST_F(StapleOnlySteps, areAllDoneAtItsEnd)
{
    staple(u"Foo - Submitted/Foo.app"_s);
    EXPECT_EQ(rows(), allDone({u"Check code signature"_s, u"Staple"_s}));
}

TEST_F(StapleOnlySteps, failWhereTheItemIsNotAccepted)
{
    host.tools.answer(u"spctl"_s, {.status = 3, .error = "rejected"});
    staple(u"Foo - Submitted/Foo.app"_s);
    EXPECT_EQ(rows(), (QStringList{u"Check code signature: failed"_s, u"Staple: skipped"_s}));
}

TEST_F(StapleOnlySteps, failWhereTheStaplerFails)
{
    host.tools.answer(u"stapler"_s, {.status = 65, .error = "no"});
    staple(u"Foo - Submitted/Foo.app"_s);
    EXPECT_EQ(rows(), (QStringList{u"Check code signature: done"_s, u"Staple: failed"_s}));
}

TEST_F(StapleOnlySteps, areCancelledWhereACancelEndsTheTool)
{
    host.tools.answer(u"spctl"_s, {.hangs = true});
    launched().commands().stapleOnly.stapleOnly(url(u"Foo - Submitted/Foo.app"_s));
    host.runUntil([this] { return !host.tools.callsOf(u"spctl"_s).isEmpty() && host.mainQueue.isEmpty(); });
    EXPECT_EQ(rows(), (QStringList{u"Check code signature: running"_s, u"Staple: waiting"_s}));
    document().isPolling.set(true); // a cancel then reaches the runner that assesses
    document().doCancel();
    host.settle();
    EXPECT_EQ(rows(), (QStringList{u"Check code signature: cancelled"_s, u"Staple: skipped"_s}));
}
