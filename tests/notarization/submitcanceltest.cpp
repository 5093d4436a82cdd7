// A cancel before the upload: where it reaches the tool that runs, and where it does not.

#include "notarization/submittest.h"

#include <atomic>
#include <future>

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

// Where the cancel does not reach the tool

class SubmitCancelUnnoticed : public SubmitCancel {
protected:
    SubmitCancelUnnoticed()
    {
        items::makeBundle(host.item(u"Foo.app/Contents/PlugIns/Inner.bundle"_s));
        items::makeFile(host.item(u"Foo.app/Contents/Resources/Scripts/main.scpt"_s), "script");
        items::makeFile(host.item(u"Foo.pkg"_s), "xar!");
        offerInstallerIdentity();
        host.tools.answer(u"spctl"_s, {.status = 3, .error = "rejected"});
    }

    /// Cancels from the thread of a step.
    void cancelFromWorker()
    {
        std::promise<void> done;
        host.mainQueue.post([this, &done] {
            host.document().doCancel();
            done.set_value();
        });
        done.get_future().wait();
    }

    void expectSilentStopAfter(const QStringList &tools)
    {
        EXPECT_EQ(host.tools.order(), tools);
        EXPECT_EQ(host.listing().filter(u" - "_s), QStringList{u"Foo - Working"_s});
        EXPECT_TRUE(host.document().cancelPressed()) << "no report came to swallow";
        ASSERT_EQ(host.window().sheets.size(), 1);
        EXPECT_EQ(host.window().sheets.first().messageText, u"Process Cancelled"_s);
        EXPECT_EQ(host.log(LogStyle::error),
                  QStringList{u"Uploading of the app may not have been completed."_s});
        EXPECT_FALSE(host.document().isBusy());
    }
};

struct SharedRunnerRow {
    const char *name;
    QString item;
    QString tool; ///< during whose first run the cancel comes
    ToolAnswer answer;
    QStringList tools; ///< all that ran
};

class SubmitCancelOnSharedRunners : public SubmitCancelUnnoticed,
                                    public testing::WithParamInterface<SharedRunnerRow> { };

TEST_P(SubmitCancelOnSharedRunners, letsTheToolEndAndStopsBeforeTheNext)
{
    const SharedRunnerRow &row = GetParam();
    shareRunners();
    ToolAnswer answer = row.answer;
    answer.hangs = true;
    host.tools.answerRun(row.tool, 1, answer);
    begin(row.item);
    host.runUntil([&] { return !host.tools.callsOf(row.tool).isEmpty(); });
    host.document().doCancel();
    EXPECT_TRUE(host.document().taskRunner()->currentTask());
    host.tools.release(row.tool, 1);
    host.settle();
    expectSilentStopAfter(row.tools);
}

INSTANTIATE_TEST_SUITE_P(
    Tools, SubmitCancelOnSharedRunners,
    testing::Values(
        SharedRunnerRow{
            "xattr", u"Foo.app"_s, u"xattr"_s, {}, {u"altool--notarization-history"_s, u"xattr"_s}},
        SharedRunnerRow{"codesignOfAMember",
                        u"Foo.app"_s,
                        u"codesign"_s,
                        {},
                        {u"altool--notarization-history"_s, u"xattr"_s, u"codesign"_s}},
        SharedRunnerRow{
            "ditto",
            u"Foo.app"_s,
            u"ditto"_s,
            {.content = "zip"},
            {u"altool--notarization-history"_s, u"xattr"_s, u"codesign"_s, u"codesign"_s, u"ditto"_s}},
        SharedRunnerRow{"spctl",
                        u"Foo.pkg"_s,
                        u"spctl"_s,
                        {.error = "accepted"},
                        {u"altool--notarization-history"_s, u"spctl"_s}},
        SharedRunnerRow{"productsign",
                        u"Foo.pkg"_s,
                        u"productsign"_s,
                        {.content = "signed"},
                        {u"altool--notarization-history"_s, u"spctl"_s, u"productsign"_s}}),
    [](const auto &row) { return std::string(row.param.name); });

TEST_F(SubmitCancelUnnoticed, whileTheAttributesAreClearedLocksTheScriptNoSecondTime)
{
    std::atomic<int> locks = 0;
    host.files.failure = [&locks](const QString &operation, const QString &) {
        locks += operation == "setPermissions"_L1 ? 1 : 0;
        return QString();
    };
    shareRunners();
    beginUpTo(u"xattr"_s);
    host.document().doCancel();
    host.tools.release(u"xattr"_s, 1);
    host.settle();
    EXPECT_EQ(locks, 1); // that of the clearing itself
}

struct ChangeRow {
    const char *name;
    QString operation;
    int number; ///< of the change among those of its kind, counted from 1
    QStringList tools;
    QStringList working; ///< what lies in the working folder
};

class SubmitCancelAtAChange : public SubmitCancelUnnoticed, public testing::WithParamInterface<ChangeRow> { };

TEST_P(SubmitCancelAtAChange, stopsBeforeTheNextStep)
{
    const ChangeRow &row = GetParam();
    std::atomic<int> changes = 0;
    host.files.failure = [&](const QString &operation, const QString &) {
        if (operation == row.operation && ++changes == row.number)
            cancelFromWorker();
        return QString();
    };
    begin();
    host.settle();
    expectSilentStopAfter(row.tools);
    EXPECT_EQ(host.listing(u"Foo - Working"_s), row.working);
}

INSTANTIATE_TEST_SUITE_P(
    Changes, SubmitCancelAtAChange,
    testing::Values(ChangeRow{"theWorkingCopy",
                              u"copyItem"_s,
                              1,
                              {u"altool--notarization-history"_s},
                              {u"Foo.app"_s, u"Submission Log.txt"_s}},
                    ChangeRow{"theEntitlements",
                              u"writeFile"_s,
                              1,
                              {u"altool--notarization-history"_s},
                              {u"Entitlements.plist"_s, u"Foo.app"_s, u"Submission Log.txt"_s}},
                    ChangeRow{"theLockOfTheScript",
                              u"setPermissions"_s,
                              2,
                              {u"altool--notarization-history"_s, u"xattr"_s},
                              {u"Entitlements.plist"_s, u"Foo.app"_s, u"Submission Log.txt"_s}}),
    [](const auto &row) { return std::string(row.param.name); });

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
