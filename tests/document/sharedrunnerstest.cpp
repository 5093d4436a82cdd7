// Documents whose notary tool is too old for a runner of their own.

#include "document/mainwincontroller.h"
#include "support/singlesteps.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

#include <thread>

using namespace Qt::StringLiterals;

namespace {

const QString xattr = u"/usr/bin/xattr"_s;
const QString ditto = u"/usr/bin/ditto"_s;

class TwoDocuments : public testing::Test {
protected:
    void launchWithVersion(const QByteArray &version)
    {
        host.tools.answer(u"altool-h"_s,
                          {.output = "Copyright (c) 2009, Apple Inc. Version " + version + "\n"});
        host.launch();
        host.application().newDocument(0);
        a = host.application().allControllers().first();
        b = host.application().allControllers().last();
    }

    /// The first document's tool runs and does not end.
    void startHangingTool()
    {
        host.tools.answer(u"xattr"_s, {.output = "a's text", .hangs = true});
        onWorker(*a, [this] { answerOfA = SingleSteps(*a).tools.run(xattr, {}); });
        host.runUntil([this] { return !host.tools.calls().isEmpty(); });
    }

    TestHost host;
    DocumentPtr a;
    DocumentPtr b;
    SLWTaskResponsePtr answerOfA;
    SLWTaskResponsePtr answerOfB;
};

} // namespace

TEST_F(TwoDocuments, ofVersionThreeTakeTurns)
{
    launchWithVersion("3.2.1");
    EXPECT_FALSE(a->chooseProviderButton.isEnabled());
    EXPECT_EQ(a->taskRunner(), b->taskRunner());
    startHangingTool();
    std::atomic<bool> isAtTheRunner = false;
    onWorker(*b, [&] {
        isAtTheRunner = true;
        answerOfB = SingleSteps(*b).tools.run(ditto, {host.item(u"x"_s)});
    });
    host.runUntil([&isAtTheRunner] { return isAtTheRunner.load(); });
    EXPECT_EQ(host.tools.order(), QStringList{u"xattr"_s});
    host.tools.release(u"xattr"_s);
    host.settle();
    EXPECT_EQ(host.tools.order(), (QStringList{u"xattr"_s, u"ditto"_s}));
    EXPECT_EQ(answerOfA->outputString(), u"a's text"_s) << "the next run may not empty what a document reads";
    EXPECT_EQ(answerOfB->status(), 0);
}

namespace {

/// Whether another thread could begin at the runner if the run itself let go of it: on the thread of a run,
/// which holds the monitor once more than the caller who wants the output does.
bool isFreeBehindItsRun(SLWTaskMaster &runner)
{
    runner.monitor().unlock();
    bool isFree = false;
    std::thread([&] {
        isFree = runner.monitor().try_lock();
        if (isFree)
            runner.monitor().unlock();
    }).join();
    runner.monitor().lock();
    return isFree;
}

} // namespace

/// The next run empties the buffers that a response has of its runner until it keeps copies.
TEST_F(TwoDocuments, ofVersionThreeKeepTheRunnerUntilTheirOutputIsTheirs)
{
    launchWithVersion("3.2.1");
    host.tools.answer(u"xattr"_s, {.output = "a's text"});
    host.tools.answer(u"altool--notarization-info"_s, {.output = "a's verdict"});
    host.tools.answer(u"altool--notarize-app"_s, {.output = "a's receipt"});
    SLWTaskMasterPtr runner;
    int runs = 0;
    host.launcher.afterRun = [&](const QString &path) {
        ++runs;
        EXPECT_FALSE(isFreeBehindItsRun(*runner)) << path.toStdString();
    };
    QStringList texts;
    onWorker(*a, [&] {
        const SingleSteps::Tools tools = SingleSteps(*a).tools;
        runner = a->taskRunner();
        texts = {tools.run(xattr, {})->outputString(),
                 tools.askService({u"--notarization-info"_s})->outputString()};
        runner = a->uploadTaskRunner();
        texts += tools.upload({u"--notarize-app"_s})->outputString();
    });
    host.settle();
    EXPECT_EQ(texts, (QStringList{u"a's text"_s, u"a's verdict"_s, u"a's receipt"_s}));
    EXPECT_EQ(runs, 3);
}

TEST_F(TwoDocuments, ofVersionThreeUploadBesideAnothersTool)
{
    launchWithVersion("3.2.1");
    EXPECT_EQ(a->uploadTaskRunner(), b->uploadTaskRunner());
    EXPECT_NE(a->uploadTaskRunner(), a->taskRunner());
    startHangingTool();
    onWorker(*b, [this] { answerOfB = SingleSteps(*b).tools.upload({u"--notarize-app"_s}); });
    host.runUntil([this] { return host.tools.order().contains(u"altool--notarize-app"_s); });
    EXPECT_NE(a->taskRunner()->currentTask(), nullptr) << "the first one's tool still runs";
    host.tools.release(u"xattr"_s);
    host.settle();
    EXPECT_EQ(answerOfB->status(), 0);
}

TEST_F(TwoDocuments, ofVersionThreeCancelOnlyTheirOwnRuns)
{
    launchWithVersion("3.2.1");
    startHangingTool();
    EXPECT_TRUE(b->taskRunner()->terminateTaskFor(b->uniqueID));
    host.tools.release(u"xattr"_s);
    host.settle();
    EXPECT_EQ(answerOfA->status(), 0);
    onWorker(*b, [this] { answerOfB = SingleSteps(*b).tools.run(ditto, {host.item(u"x"_s)}); });
    host.settle();
    EXPECT_EQ(answerOfB->status(), 1001);
    EXPECT_EQ(host.tools.order(), QStringList{u"xattr"_s});
}

TEST_F(TwoDocuments, ofVersionFourRunSideBySide)
{
    launchWithVersion("4.0.1");
    EXPECT_NE(a->taskRunner(), b->taskRunner());
    startHangingTool();
    onWorker(*b, [this] { answerOfB = SingleSteps(*b).tools.run(ditto, {host.item(u"x"_s)}); });
    host.runUntil([this] { return host.tools.order().contains(u"ditto"_s); });
    EXPECT_NE(a->taskRunner()->currentTask(), nullptr);
    host.tools.release(u"xattr"_s);
    host.settle();
    EXPECT_EQ(answerOfB->status(), 0);
}
