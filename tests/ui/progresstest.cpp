// How far a run has come, wherever it is shown.

#include "document/recentwaits.h"
#include "support/allsteps.h"
#include "support/changedvariable.h"
#include "support/items.h"
#include "ui/framewindow.h"
#include "ui/launcherentry.h"
#include "ui/outcomebanner.h"
#include "ui/progresstext.h"
#include "ui/tabbar.h"
#include "ui/uploadprogress.h"
#include "windowtest.h"

#include "platform/itempath.h"

#include <QCryptographicHash>
#include <QFile>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTemporaryDir>
#include <QWindow>

using namespace Qt::StringLiterals;
using Parts = StepList::Parts;

namespace {

class ProgressOfARun : public WindowTest {
protected:
    ProgressOfARun()
    {
        document().progressIndicator.startAnimation();
        document().stepList.plan({step::makeWorkingCopy, step::signContents, step::upload, step::staple});
        document().stepList.begin(step::signContents);
    }
    ~ProgressOfARun() override { document().progressIndicator.stopAnimation(); }

    QString progressText() { return part<QLabel>(u"progressText"_s).text(); }
};

class AfterACancelledWait : public WindowTest {
protected:
    AfterACancelledWait()
    {
        items::makeBundle(host.item(u"Foo.app"_s));
        host.submit(host.item(u"Foo.app"_s));
        document().perform(Action::doCancel);
        host.settle();
        answer(u"OK"_s);
    }

    QString sentence() { return part<QLabel>(u"outcomeSentence"_s).text(); }
    QPushButton &newDocument() { return part<QPushButton>(u"outcomeNewDocument"_s); }
};

} // namespace

TEST(PartsOfAStep, areToldAsFilesOrAsMegabytesWithTheirRate)
{
    EXPECT_EQ(progresstext::parts({}, 5), QString());
    EXPECT_EQ(progresstext::parts({.done = 12, .all = 57}, 5), u"12 of 57"_s);
    const Parts upload{.done = 340'000'000, .all = 900'000'000, .unit = Parts::Unit::bytes};
    EXPECT_EQ(progresstext::parts(upload, 31), u"340 of 900 MB at 11 MB/s"_s);
    EXPECT_EQ(progresstext::parts(upload, 0), u"340 of 900 MB"_s) << "no time has passed";
}

TEST(RecentWaits, areToldInMinutesFromTheShortestToTheLongest)
{
    EXPECT_EQ(progresstext::recentWaits(std::nullopt), QString());
    EXPECT_EQ(progresstext::recentWaits(recentwaits::Range{20, 70}),
              u"Such waits took about a minute lately."_s);
    EXPECT_EQ(progresstext::recentWaits(recentwaits::Range{120, 290}),
              u"Such waits took 2 to 5 minutes lately."_s);
}

TEST(RecentWaits, areTheLastTenAndWhatIsNoNumberIsNone)
{
    MemoryPreferences preferences;
    EXPECT_FALSE(recentwaits::range(preferences));
    preferences.setValue(u"recentVerdictWaits"_s, u"x -3 9000"_s);
    EXPECT_EQ(recentwaits::range(preferences), (recentwaits::Range{9000, 9000}));
    for (const qint64 seconds : {100, 200, 300, 400, 500, 600, 700, 800, 900, 950})
        recentwaits::remember(preferences, seconds);
    EXPECT_EQ(recentwaits::range(preferences), (recentwaits::Range{100, 950}));
}

TEST_F(ProgressOfARun, isTheStepWithHowManyOfItsFilesHaveBeenBegun)
{
    EXPECT_EQ(progressText(), u"Sign contents"_s);
    auto &bar = part<QProgressBar>(u"progressIndicator"_s);
    EXPECT_EQ(bar.minimum(), bar.maximum()) << "nobody knows how long";
    document().stepList.advance({.done = 12, .all = 48});
    EXPECT_EQ(progressText(), u"Sign contents, 12 of 48"_s);
    EXPECT_EQ(bar.value() * 4, bar.maximum());
    document().stepList.begin(step::upload);
    EXPECT_EQ(progressText(), u"Upload to Apple"_s);
    EXPECT_EQ(bar.minimum(), bar.maximum());
}

TEST_F(ProgressOfARun, countsDownToTheNextCheck)
{
    document().stepList.begin(step::awaitResult);
    document().stepList.pollIn(30, 0);
    EXPECT_EQ(progressText(), u"Next check in 0:30"_s);
    host.clock.time = host.clock.time.addSecs(12);
    EXPECT_EQ(progresstext::present(document().stepList), u"Next check in 0:18"_s);
}

TEST_F(ProgressOfARun, isOnItsTabAndInTheDesktopsListOfWindows)
{
    FrameWindow &frame = *window().frameWindow();
    const auto &tabs = *frame.findChild<TabBar *>();
    EXPECT_FALSE(tabs.tabIcon(0).isNull());
    EXPECT_EQ(tabs.tabToolTip(0), u"Untitled – Sign contents"_s);
    EXPECT_EQ(frame.windowHandle()->title(), u"Untitled – Sign contents"_s);
    EXPECT_EQ(frame.windowTitle(), u"Untitled"_s) << "what scripts know the window by";
    document().stepList.finish(StepState::failed);
    EXPECT_EQ(tabs.tabData(0), u"failed"_s);
}

TEST_F(ProgressOfARun, isOnTheEntryOfTheLauncher)
{
    const LauncherEntry launcher(host.application(), QDBusConnection(u"none"_s));
    document().stepList.advance({.done = 1, .all = 2});
    EXPECT_EQ(launcher.told().value(u"progress-visible"_s), true);
    EXPECT_DOUBLE_EQ(launcher.told().value(u"progress"_s).toDouble(), 0.17) << "half a step of three";
    document().stepList.finish(StepState::done);
    EXPECT_EQ(launcher.told().value(u"progress-visible"_s), false);
    EXPECT_EQ(launcher.told().value(u"count"_s), 0);
}

TEST(FractionDone, leavesOutWhatIsSkipped)
{
    ManualClock clock;
    StepList steps(clock);
    EXPECT_EQ(fractionDone(steps), 0);
    steps.plan({step::makeWorkingCopy, step::signContents, step::staple});
    steps.begin(step::makeWorkingCopy);
    EXPECT_EQ(fractionDone(steps), 0);
    steps.begin(step::staple);
    EXPECT_EQ(fractionDone(steps), 0.5);
    steps.finish(StepState::done);
    EXPECT_EQ(fractionDone(steps), 1);
}

TEST_F(WindowTest, theFilesOfASignedBundleAreCounted)
{
    const QString item = host.item(u"Foo.app"_s);
    items::makeBundle(item);
    items::makeBundle(item + u"/Contents/PlugIns/Bar.app"_s);
    QStringList told;
    QObject::connect(&document().stepList, &Observable::changed, &document(), [&] {
        const StepList::Row *const row = document().stepList.running();
        if (row && row->parts.all > 0)
            told.append(progresstext::parts(row->parts, 0));
    });
    host.submitToTheEnd(item);
    EXPECT_TRUE(told.contains(u"1 of 1"_s)) << told.join(u", "_s).toStdString();
}

TEST_F(WindowTest, aVerdictRemembersHowLongItTook)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    EXPECT_FALSE(recentwaits::range(host.preferences));
    host.submitToTheEnd(host.item(u"Foo.app"_s));
    EXPECT_TRUE(recentwaits::range(host.preferences));
}

TEST_F(AfterACancelledWait, theWindowLeadsToANewDocument)
{
    EXPECT_TRUE(sentence().contains(u"Go on in a new document"_s)) << sentence().toStdString();
    ASSERT_TRUE(newDocument().isVisible());
    const qsizetype before = host.application().allControllers().size();
    newDocument().click();
    EXPECT_EQ(host.application().allControllers().size(), before + 1);
}

TEST_F(AfterACancelledWait, theNextRunIsSaidToHaveStopped)
{
    document().perform(Action::doSubmitAgain);
    host.settle();
    EXPECT_EQ(document().statusString(), u"submitting"_s) << "as it has always been";
    EXPECT_EQ(part<QLabel>(u"outcomeTitle"_s).text(), u"This run has stopped"_s);
    EXPECT_TRUE(newDocument().isVisible());
    document().window().close();
}

TEST_F(ProgressOfARun, isTheUploadAsTheToolTellsIt)
{
    const QTemporaryDir session;
    const ChangedVariable variable("XDG_RUNTIME_DIR", session.path());
    uploadprogress::askFor();
    const QString uploaded = u"/items/Foo - Working/Foo.zip"_s;
    const auto digest = QCryptographicHash::hash(uploaded.toUtf8(), QCryptographicHash::Sha1).toHex();
    QFile told(session.filePath(u"sealwright-uploads/"_s + QString::fromLatin1(digest)));
    EXPECT_FALSE(uploadprogress::of(uploaded));
    for (const QByteArray &text : {QByteArray(), QByteArray("340"), QByteArray("5 3"), QByteArray("x y")}) {
        ASSERT_TRUE(told.open(QIODevice::WriteOnly | QIODevice::Truncate));
        told.write(text);
        told.close();
        EXPECT_FALSE(uploadprogress::of(uploaded)) << text.constData();
    }
    ASSERT_TRUE(told.open(QIODevice::WriteOnly | QIODevice::Truncate));
    told.write("340000000 900000000\n");
    told.close();
    document().submitFilePath.set(uploaded);
    document().stepList.begin(step::upload);
    until([this] { return progressText().contains(u"340 of 900 MB"_s); });
}

TEST_F(ProgressOfARun, hasNoCountdownInATitleWhereItWouldStandStill)
{
    FrameWindow &frame = *window().frameWindow();
    document().stepList.begin(step::awaitResult);
    document().stepList.pollIn(30, 0);
    EXPECT_EQ(frame.windowHandle()->title(), u"Untitled – Waiting for the verdict"_s);
}
