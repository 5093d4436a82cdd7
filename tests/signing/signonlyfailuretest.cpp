// Signing by itself, where it fails or is cancelled: what is told, and what stays behind.

#include "document/documentcommands.h"
#include "signing/signonlytest.h"

#include "app/preferencekeys.h"

#include <future>

using namespace Qt::StringLiterals;

// Refused before anything happens

TEST_F(SignOnly, withoutAnIdentityIsRefusedBeforeAnythingIsCopied)
{
    host.tools.answer(u"security"_s, {.output = "     0 valid identities found\n"});
    sign(u"Foo.app"_s);
    const QString text = u"No Developer ID codesigning identities have been found."_s;
    expectReport(u"No Identities Found"_s, text, text);
    EXPECT_EQ(host.applicationHost.beeps, 1);
    EXPECT_EQ(host.listing(), QStringList{u"Foo.app"_s});
    EXPECT_TRUE(host.tools.calls().isEmpty());
    EXPECT_FALSE(document().isBusy());
    EXPECT_FALSE(document().isSubmitting());
    EXPECT_EQ(document().statusString(), u"interacting"_s);
    EXPECT_EQ(document().lastAction(), quint64(signAction));
    host.window().answerSheet();
    EXPECT_EQ(document().statusString(), u"ready"_s);
}

TEST_F(SignOnly, withoutAnIdentityOpensNoPanel)
{
    host.tools.answer(u"security"_s, {.output = "     0 valid identities found\n"});
    launched().perform(Action::doSignOnly);
    EXPECT_FALSE(host.window().panel);
    EXPECT_EQ(host.window().sheets.value(0).messageText, u"No Identities Found"_s);
    EXPECT_EQ(document().lastAction(), quint64(nothingToRepeat));
}

TEST_F(SignOnly, withoutAnIdentityTellsAScriptItsNumber)
{
    host.tools.answer(u"security"_s, {.output = "     0 valid identities found\n"});
    launched();
    runByScript([this] { commands().signOnly.scriptedSignOnly(itempath::toUrl(host.item(u"Foo.app"_s))); });
    ASSERT_TRUE(scriptReply);
    EXPECT_EQ(scriptReply->errorNumber, 1102);
    EXPECT_TRUE(host.window().sheets.isEmpty());
    EXPECT_EQ(document().statusString(), u"ready"_s);
}

TEST_F(SignOnly, doesNotStartWhenTheExtraEntitlementsCannotBeRead)
{
    launched().extraEntitlementsURL.set(itempath::toUrl(host.item(u"gone.plist"_s)));
    sign(u"Foo.app"_s);
    EXPECT_EQ(host.window().sheets.value(0).messageText, u"Cannot Read Extra Entitlements"_s);
    EXPECT_TRUE(host.tools.calls().isEmpty());
    EXPECT_EQ(host.listing(), QStringList{u"Foo.app"_s});
    EXPECT_FALSE(document().isBusy());
    EXPECT_FALSE(document().canCancel());
}

// Failures, and the folder that each leaves

namespace {

struct FileFailure {
    const char *name;
    QString operation;
    QString pathPart;
    QString title;
    QString folder; ///< that is left beside the item; null for none
};

class SignOnlyFileFailure : public SignOnly, public testing::WithParamInterface<FileFailure> { };

struct ToolFailure {
    const char *name;
    QString tool;
    int run;
    QString title;
};

class SignOnlyToolFailure : public SignOnly, public testing::WithParamInterface<ToolFailure> { };

} // namespace

TEST_P(SignOnlyFileFailure, isReportedAndLeavesTheItemAlone)
{
    const FileFailure &row = GetParam();
    host.files.failure = [&row](const QString &operation, const QString &path) {
        return operation == row.operation && path.contains(row.pathPart) ? u"disk on fire"_s : QString();
    };
    sign(u"Foo.app"_s);
    ASSERT_EQ(host.window().sheets.size(), 1);
    EXPECT_EQ(host.window().sheets.first().messageText, row.title);
    EXPECT_EQ(host.window().sheets.first().informativeText, u"See the log for details."_s);
    EXPECT_TRUE(host.tools.calls().isEmpty());
    EXPECT_EQ(host.listing(),
              row.folder.isNull() ? QStringList{u"Foo.app"_s} : (QStringList{row.folder, u"Foo.app"_s}));
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
    EXPECT_EQ(document().lastAction(), quint64(signAction));
    EXPECT_FALSE(document().isBusy());
    EXPECT_EQ(document().logHandle(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Steps, SignOnlyFileFailure,
                         testing::Values(FileFailure{"folder",
                                                     u"createDirectory"_s,
                                                     u"Foo - Working"_s,
                                                     u"Cannot Create Working Folder"_s,
                                                     {}},
                                         FileFailure{"copy", u"copyItem"_s, u"Foo - Working"_s,
                                                     u"Cannot Copy File"_s, u"Foo - Working"_s},
                                         FileFailure{"entitlements", u"writeFile"_s, u"Entitlements.plist"_s,
                                                     u"Cannot Save Entitlements"_s, u"Foo - Failed"_s}),
                         [](const auto &row) { return row.param.name; });

TEST_F(SignOnly, withEntitlementsThatNoFileCanHoldLeavesTheWorkingFolder)
{
    items::makeFile(host.item(u"Extra.plist"_s), "{ a = \"\\001\"; }");
    launched().extraEntitlementsURL.set(itempath::toUrl(host.item(u"Extra.plist"_s)));
    sign(u"Foo.app"_s);
    EXPECT_EQ(host.window().sheets.value(0).messageText, u"Cannot Create Entitlements"_s);
    EXPECT_TRUE(host.tools.calls().isEmpty());
    EXPECT_EQ(host.listing(), (QStringList{u"Extra.plist"_s, u"Foo - Working"_s, u"Foo.app"_s}));
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
}

TEST_P(SignOnlyToolFailure, isReportedAndNamesTheFolderForIt)
{
    host.tools.answerRun(GetParam().tool, GetParam().run, {.status = 1, .error = "no such thing"});
    sign(u"Foo.app"_s);
    ASSERT_EQ(host.window().sheets.size(), 1);
    EXPECT_EQ(host.window().sheets.first().messageText, GetParam().title);
    EXPECT_EQ(host.tools.order().last(), GetParam().tool);
    EXPECT_EQ(host.tools.callsOf(GetParam().tool).size(), GetParam().run) << "nothing runs after it";
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Failed"_s, u"Foo.app"_s}));
    EXPECT_EQ(host.listing(u"Foo - Failed"_s),
              (QStringList{u"Entitlements.plist"_s, u"Foo.app"_s, u"Submission Log.txt"_s}));
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
    EXPECT_EQ(document().lastAction(), quint64(signAction));
    EXPECT_FALSE(document().isBusy());
    EXPECT_FALSE(host.log().contains(u"Code-signing succeeded."_s));

    host.window().answerSheet();
    document().perform(Action::doSignAgain);
    host.settle();
    EXPECT_EQ(host.window().sheets.last().messageText, u"Signing Successful"_s);
}

INSTANTIATE_TEST_SUITE_P(Tools, SignOnlyToolFailure,
                         testing::Values(ToolFailure{"attributes", u"xattr"_s, 1,
                                                     u"Error Clearing Attributes"_s},
                                         ToolFailure{"member", u"codesign"_s, 1, u"Error Signing Code"_s},
                                         ToolFailure{"mainFile", u"codesign"_s, 2, u"Error Signing Code"_s}),
                         [](const auto &row) { return row.param.name; });

TEST_F(SignOnly, ofAFolderWithNothingToSignFails)
{
    items::makeFile(host.item(u"Tools/read me.txt"_s), "text");
    sign(u"Tools"_s);
    expectReport(u"Error Signing Code"_s, u"No signable items found."_s);
    EXPECT_EQ(host.listing(), (QStringList{u"Foo.app"_s, u"Tools"_s, u"Tools - Failed"_s}));
}

TEST_F(SignOnly, thatFailsTellsAScript)
{
    host.tools.answer(u"codesign"_s, {.status = 1, .error = "no identity found"});
    launched();
    runByScript([this] { commands().signOnly.scriptedSignOnly(itempath::toUrl(host.item(u"Foo.app"_s))); });
    ASSERT_TRUE(scriptReply);
    EXPECT_EQ(scriptReply->errorNumber, 1110);
    EXPECT_TRUE(scriptReply->errorText.startsWith(u"Error Signing Code: Error "_s));
    EXPECT_TRUE(host.window().sheets.isEmpty());
}

// Cancels

namespace {

class SignOnlyCancel : public SignOnly, public testing::WithParamInterface<QString> { };

/// A cancel that comes while a file is worked on finds no tool to end.
struct QuietCancel {
    const char *name;
    QString operation; ///< during which the cancel comes
    QString pathPart;
    int occurrence; ///< of that operation, counted from 1
    QStringList tools; ///< that have run by then
};

class SignOnlyQuietCancel : public SignOnly, public testing::WithParamInterface<QuietCancel> { };

} // namespace

TEST_P(SignOnlyCancel, endsTheToolAndIsReportedOnce)
{
    host.tools.answerRun(GetParam(), 1, {.hangs = true});
    start(u"Foo.app"_s);
    host.runUntil([this] { return !host.tools.callsOf(GetParam()).isEmpty(); });
    document().doCancel();
    host.settle();
    ASSERT_EQ(host.window().sheets.size(), 1);
    EXPECT_EQ(host.window().sheets.first().messageText, u"Process Cancelled"_s);
    EXPECT_EQ(host.tools.order().last(), GetParam());
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Failed"_s, u"Foo.app"_s}));
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
    EXPECT_FALSE(document().cancelPressed()) << "the ended tool's report has used it up";
    EXPECT_FALSE(document().isBusy());
    host.window().answerSheet();
    sign(u"Foo.app"_s);
    EXPECT_EQ(host.window().sheets.last().messageText, u"Signing Successful"_s);
}

INSTANTIATE_TEST_SUITE_P(DuringTool, SignOnlyCancel, testing::Values(u"xattr"_s, u"codesign"_s),
                         [](const auto &row) { return row.param.toStdString(); });

TEST_P(SignOnlyQuietCancel, stopsAtTheNextTestAndLeavesTheFolder)
{
    const QuietCancel &row = GetParam();
    items::makeBundle(host.item(u"Foo.app/Contents/PlugIns/Inner.app"_s));
    items::makeFile(host.item(u"Foo.app/Contents/PlugIns/Inner.app/Contents/Resources/Scripts/main.scpt"_s),
                    "script");
    std::atomic<int> seen = 0;
    host.files.failure = [&](const QString &operation, const QString &path) {
        if (operation == row.operation && path.contains(row.pathPart) && ++seen == row.occurrence)
            document().cancelPressed.set(true);
        return QString();
    };
    sign(u"Foo.app"_s);
    EXPECT_EQ(seen, row.occurrence) << "and the next step has not begun";
    EXPECT_EQ(host.tools.order(), row.tools);
    expectNoReport();
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Working"_s, u"Foo.app"_s}));
    EXPECT_TRUE(document().cancelPressed());
    EXPECT_TRUE(document().isBusy()) << "it is the cancel's own report that clears the flags";
}

INSTANTIATE_TEST_SUITE_P(
    Moments, SignOnlyQuietCancel,
    testing::Values(QuietCancel{"copying", u"copyItem"_s, u"Foo - Working"_s, 1, {}},
                    QuietCancel{"savingEntitlements", u"writeFile"_s, u"Entitlements.plist"_s, 1, {}},
                    QuietCancel{"clearingAttributes", u"setPermissions"_s, u"main.scpt"_s, 1, {u"xattr"_s}},
                    QuietCancel{"lockingTheScript", u"setPermissions"_s, u"main.scpt"_s, 2, {u"xattr"_s}},
                    QuietCancel{"signingMembers",
                                u"setPermissions"_s,
                                u"Inner.app"_s,
                                1,
                                {u"xattr"_s, u"codesign"_s, u"codesign"_s}}),
    [](const auto &row) { return row.param.name; });

TEST_F(SignOnly, cancelledWhileTheResultIsCheckedDoesNotFinish)
{
    host.preferences.setValue(key::prefDoPostCodesignCheck, true);
    host.tools.answer(u"spctl"_s, {.hangs = true});
    start(u"Foo.app"_s);
    host.runUntil([this] { return !host.tools.callsOf(u"spctl"_s).isEmpty(); });
    document().doCancel();
    host.settle();
    EXPECT_EQ(host.window().sheets.size(), 1);
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Working"_s, u"Foo.app"_s}));
    EXPECT_FALSE(host.log().contains(u"Code-signing succeeded."_s));
    EXPECT_TRUE(document().cancelPressed()) << "no report came that could use it up";
}

TEST_F(SignOnly, cancelledBetweenTwoToolsStopsThereAndIsReportedOnce)
{
    launched();
    host.launcher.afterRun = [this](const QString &path) {
        if (!path.endsWith(u"xattr"_s))
            return;
        std::promise<void> done;
        host.mainQueue.post([this, &done] {
            document().doCancel();
            done.set_value();
        });
        done.get_future().wait();
    };
    sign(u"Foo.app"_s);
    ASSERT_EQ(host.window().sheets.size(), 1);
    EXPECT_EQ(host.window().sheets.first().messageText, u"Process Cancelled"_s);
    EXPECT_EQ(host.tools.order(), QStringList{u"xattr"_s});
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Working"_s, u"Foo.app"_s}));
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
    EXPECT_TRUE(document().cancelPressed()) << "no report came that could use it up";
    EXPECT_FALSE(document().isBusy());
}

TEST_F(SignOnly, cancelledOnSharedRunnersLetsTheToolEndAndStopsBehindIt)
{
    host.tools.answer(u"altool-h"_s, {.output = "Copyright (c) 2019, Apple Inc. Version 3.1.2\n"});
    host.tools.answer(u"xattr"_s, {.hangs = true});
    start(u"Foo.app"_s);
    ASSERT_EQ(document().ownTaskRunner(), nullptr);
    host.runUntil([this] { return !host.tools.callsOf(u"xattr"_s).isEmpty(); });
    document().doCancel();
    host.tools.release(u"xattr"_s);
    host.settle();
    EXPECT_EQ(host.window().sheets.size(), 1);
    EXPECT_EQ(host.tools.order(), QStringList{u"xattr"_s});
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Working"_s, u"Foo.app"_s})) << "the tool did not fail";
    EXPECT_TRUE(document().cancelPressed());
}
