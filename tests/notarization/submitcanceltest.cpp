// A cancel before the upload: where it reaches the tool that runs, and where it does not.

#include "notarization/submittest.h"

using namespace Qt::StringLiterals;

class SubmitCancel : public Submit {
protected:
    /// Submits Foo.app and waits until the tool runs, which hangs in its first run.
    void beginUpTo(const QString &tool)
    {
        host.tools.answerRun(tool, 1, {.hangs = true});
        begin();
        host.runUntil([&] { return !host.tools.callsOf(tool).isEmpty(); });
    }
};

class SubmitCancelDuring : public SubmitCancel, public testing::WithParamInterface<QString> { };

TEST_P(SubmitCancelDuring, endsTheToolAndIsReportedOnce)
{
    const QByteArray original = items::fingerprint(host.item(u"Foo.app"_s));
    beginUpTo(GetParam());
    host.document().doCancel();
    host.settle();
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

INSTANTIATE_TEST_SUITE_P(Tools, SubmitCancelDuring,
                         testing::Values(u"altool--notarization-history"_s, u"xattr"_s, u"codesign"_s,
                                         u"ditto"_s),
                         [](const auto &row) {
                             QString name = row.param;
                             return name.remove(u'-').toStdString();
                         });

TEST_F(SubmitCancel, afterACancelThatFoundNoToolStopsSilentlyUntilAReportHasUsedTheFlagUp)
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

TEST_F(SubmitCancel, onSharedRunnersIsNotReachedByACancelAndStopsAtItsNextTest)
{
    shareRunners();
    host.tools.answer(u"xattr"_s, {.hangs = true});
    MainWinController &document = launched();
    begin();
    host.runUntil([this] { return !host.tools.callsOf(u"xattr"_s).isEmpty(); });
    document.doCancel();
    document.taskRunner()->terminateTaskFor(document.uniqueID); // stands for the tool's own end
    host.settle();
    EXPECT_EQ(host.tools.order().last(), u"xattr"_s);
    EXPECT_EQ(host.window().sheets.size(), 1);
}

TEST_F(SubmitCancel, ofADiskImageIsNotStoppedByACancelBetweenItsIdentifierAndTheUpload)
{
    items::makeFile(host.item(u"Foo.dmg"_s), "koly");
    host.tools.answerRun(u"hdiutil"_s, 1, {.hangs = true});
    begin(u"Foo.dmg"_s);
    host.runUntil([this] { return !host.tools.callsOf(u"hdiutil"_s).isEmpty(); });
    host.document().doCancel();
    host.settle();
    EXPECT_EQ(host.tools.callsOf(uploadTool).size(), 1);
    EXPECT_EQ(host.document().statusString(), u"waiting"_s);
}
