// Documents whose notary tool is too old for a runner of their own.

#include "document/mainwincontroller.h"
#include "support/singlesteps.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

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
        a->dispatchToWorker([this] { answerOfA = SingleSteps(*a).tools.run(xattr, {}); });
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
    b->dispatchToWorker([&] {
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

/// Has the calling thread run on the first processor alone, so that of two such threads the one that gives
/// way is behind the other one.
void keepToOneProcessor()
{
#ifdef __linux__
    cpu_set_t allowed;
    sched_getaffinity(0, sizeof allowed, &allowed);
    int first = 0;
    while (!CPU_ISSET(first, &allowed))
        ++first;
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(first, &one);
    sched_setaffinity(0, sizeof one, &one);
#endif
}

void giveWay()
{
#ifdef __linux__
    setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), 19);
#endif
}

} // namespace

TEST_F(TwoDocuments, ofVersionThreeHaveTheirOutputBeforeTheNextRunEmptiesIt)
{
    launchWithVersion("3.2.1");
    host.tools.answer(u"xattr"_s, {.output = "a's text", .hangs = true});
    std::atomic<int> atTheRunner = 0;
    QString textOfA;
    a->dispatchToWorker([&] {
        keepToOneProcessor();
        giveWay();
        textOfA = SingleSteps(*a).tools.run(xattr, {})->outputString();
    });
    host.runUntil([this] { return !host.tools.calls().isEmpty(); });
    b->dispatchToWorker([&] { // is awake before the slower thread has done anything more
        keepToOneProcessor();
        ++atTheRunner;
        answerOfB = SingleSteps(*b).tools.run(ditto, {host.item(u"x"_s)});
    });
    host.runUntil([&] { return atTheRunner > 0; });
    host.tools.release(u"xattr"_s);
    host.settle();
    EXPECT_EQ(textOfA, u"a's text"_s);
    EXPECT_EQ(answerOfB->status(), 0);
}

TEST_F(TwoDocuments, ofVersionThreeUploadBesideAnothersTool)
{
    launchWithVersion("3.2.1");
    EXPECT_EQ(a->uploadTaskRunner(), b->uploadTaskRunner());
    EXPECT_NE(a->uploadTaskRunner(), a->taskRunner());
    startHangingTool();
    b->dispatchToWorker([this] { answerOfB = SingleSteps(*b).tools.upload({u"--notarize-app"_s}); });
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
    b->dispatchToWorker([this] { answerOfB = SingleSteps(*b).tools.run(ditto, {host.item(u"x"_s)}); });
    host.settle();
    EXPECT_EQ(answerOfB->status(), 1001);
    EXPECT_EQ(host.tools.order(), QStringList{u"xattr"_s});
}

TEST_F(TwoDocuments, ofVersionFourRunSideBySide)
{
    launchWithVersion("4.0.1");
    EXPECT_NE(a->taskRunner(), b->taskRunner());
    startHangingTool();
    b->dispatchToWorker([this] { answerOfB = SingleSteps(*b).tools.run(ditto, {host.item(u"x"_s)}); });
    host.runUntil([this] { return host.tools.order().contains(u"ditto"_s); });
    EXPECT_NE(a->taskRunner()->currentTask(), nullptr);
    host.tools.release(u"xattr"_s);
    host.settle();
    EXPECT_EQ(answerOfB->status(), 0);
}
