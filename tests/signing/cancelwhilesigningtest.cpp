// A person cancels while the item is being signed.

#include "app/appdelegate.h"
#include "document/documentcommands.h"
#include "platform/itempath.h"
#include "support/steptest.h"

using namespace Qt::StringLiterals;

class CancelWhileSigning : public StepTest {
protected:
    CancelWhileSigning()
    {
        host.files.sortsListings = true;
        items::makeBundle(host.item(u"Foo.app"_s));
        items::makeBundle(host.item(u"Foo.app/Contents/PlugIns/P.app"_s));
        items::makeBundle(host.item(u"Foo.app/Contents/PlugIns/Q.plugin"_s));
        items::makeFile(host.item(u"Foo.app/Contents/PlugIns/P.app/Contents/Resources/Scripts/main.scpt"_s),
                        "script");
    }

    /// Submits, and cancels while the tool runs for the first time, which would otherwise never end.
    void cancelDuring(const QString &tool)
    {
        host.tools.answerRun(tool, 1, {.hangs = true});
        host.launch();
        document().commands().submit.submitURL(itempath::toUrl(host.item(u"Foo.app"_s)));
        host.runUntil([&] { return !host.tools.callsOf(tool).isEmpty(); });
        document().doCancel();
        host.settle();
    }

    void expectOnlyTheCancelReported()
    {
        ASSERT_EQ(host.window().sheets.size(), 1);
        EXPECT_EQ(host.window().sheets.first().messageText, u"Process Cancelled"_s);
        EXPECT_EQ(host.log(LogStyle::error),
                  QStringList{u"Uploading of the app may not have been completed."_s});
    }
};

TEST_F(CancelWhileSigning, endsTheRunningCodesignAndItsFailureIsNotReported)
{
    const QByteArray original = items::fingerprint(host.item(u"Foo.app"_s));
    cancelDuring(u"codesign"_s);
    expectOnlyTheCancelReported();
    EXPECT_EQ(host.tools.callsOf(u"codesign"_s).size(), 1);
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Failed"_s, u"Foo.app"_s}));
    EXPECT_FALSE(document().cancelPressed());
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
    expectUsableFor(u"Foo.app"_s);
}

TEST_F(CancelWhileSigning, endsTheClearingOfAttributes)
{
    cancelDuring(u"xattr"_s);
    expectOnlyTheCancelReported();
    EXPECT_EQ(host.tools.callsOf(u"codesign"_s).size(), 0);
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Failed"_s, u"Foo.app"_s}));
    EXPECT_FALSE(document().cancelPressed());
    expectUsableFor(u"Foo.app"_s);
}

TEST_F(CancelWhileSigning, betweenTwoMembersStopsOnlyTheStepsThatFollow)
{
    // Locking the nested app's script comes between the signing of Q.plugin and that of P.app.
    host.files.failure = [this](const QString &operation, const QString &) {
        if (operation == "setPermissions"_L1)
            document().cancelPressed.set(true);
        return QString();
    };
    host.launch();
    host.submit(host.item(u"Foo.app"_s));
    const auto lines = host.tools.callsOf(u"codesign"_s);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0].last().endsWith(u"/Q.plugin"_s));
    EXPECT_TRUE(lines[1].last().endsWith(u"/P.app"_s));
    expectNoReport();
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Working"_s, u"Foo.app"_s}));
    EXPECT_TRUE(document().cancelPressed());
}

TEST_F(CancelWhileSigning, behindTheToolOfAMemberStopsNoMemberThatFollows)
{
    host.launcher.afterRun = [this](const QString &path) {
        if (path.endsWith(u"/codesign"_s))
            document().cancelPressed.set(true);
    };
    host.launch();
    host.submit(host.item(u"Foo.app"_s));
    const auto lines = host.tools.callsOf(u"codesign"_s);
    ASSERT_EQ(lines.size(), 2) << "both members, and not the item";
    EXPECT_TRUE(lines[1].last().endsWith(u"/P.app"_s));
    expectNoReport();
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Working"_s, u"Foo.app"_s}));
}

TEST_F(CancelWhileSigning, leavesTheToolAloneWhereTheRunnersAreShared)
{
    host.tools.answer(u"altool-h"_s, {.output = "Version 3.9.9 (1)\n"});
    host.tools.answerRun(u"codesign"_s, 1, {.hangs = true});
    host.launch();
    ASSERT_FALSE(document().ownTaskRunner());
    document().commands().submit.submitURL(itempath::toUrl(host.item(u"Foo.app"_s)));
    host.runUntil([&] { return !host.tools.callsOf(u"codesign"_s).isEmpty(); });
    EXPECT_FALSE(
        document().uploadTaskRunner()->terminateTaskFor(document().uniqueID)); // all that a cancel does
    document().doCancel();
    EXPECT_TRUE(document().taskRunner()->terminateTaskFor(document().uniqueID)); // it was still running
    host.settle();
    expectOnlyTheCancelReported();
}
