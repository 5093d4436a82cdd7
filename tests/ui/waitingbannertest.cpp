// What still waits for a verdict, as a person sees it and goes on with it.

#include "ui/waitingbanner.h"
#include "platform/itempath.h"
#include "run/waitrecords.h"
#include "support/items.h"
#include "ui/outcomebanner.h"
#include "ui/panelchoice.h"
#include "windowtest.h"

#include <QDragEnterEvent>
#include <QFile>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>

using namespace Qt::StringLiterals;

TEST(WaitingSentence, namesUpToThreeItems)
{
    EXPECT_EQ(waitingSentence({}), QString());
    EXPECT_EQ(waitingSentence({u"/a/Foo - Submitted"_s}), u"Foo still waits for its verdict."_s);
    EXPECT_EQ(waitingSentence({u"/a/Foo - Submitted"_s, u"/a/A - B - Submitted"_s}),
              u"Foo and A - B still wait for their verdict."_s);
    EXPECT_EQ(waitingSentence({u"/A - Submitted"_s, u"/B - Submitted"_s, u"/C - Submitted"_s,
                               u"/D - Submitted"_s, u"/E - Submitted"_s}),
              u"A, B, C and 2 more still wait for their verdict."_s);
}

namespace {

class WaitingBannerTest : public WindowTest {
protected:
    /// A submission that an earlier launch has left, on record unless the folder is to be enough.
    void leaveWait(const QString &base)
    {
        items::makeBundle(host.item(base + u".app"_s));
        items::makeBundle(host.item(base + u" - Submitted/"_s + base + u".app"_s));
        items::makeFile(host.item(base + u" - Submitted/RequestUUID.txt"_s), base.toUtf8());
    }
    void record(const QString &base)
    {
        host.stateFolder = host.item(u"../state"_s);
        WaitRecord wait;
        wait.identifier = base;
        wait.folder = host.item(base + u" - Submitted"_s);
        wait.item = wait.original = base + u".app"_s;
        EXPECT_TRUE(WaitRecords(host.host()).keep(wait));
    }
    void launchAgain()
    {
        host.launch();
        host.settle();
    }
    WaitingBanner &banner() { return part<WaitingBanner>(u"waitingBanner"_s); }
    void drop(const QString &path)
    {
        QMimeData data;
        data.setUrls({itempath::toUrl(path)});
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&page(), &enter);
        ASSERT_TRUE(enter.isAccepted());
        QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&page(), &drop);
        host.settle();
    }
    bool isFinished(const QString &base) const
    {
        return QFile::exists(
            host.item(u"%1 - Notarized/%1 - Unmodified Original/%1.app/Contents/Info.plist"_s.arg(base)));
    }
};

} // namespace

TEST_F(WaitingBannerTest, isNotThereWhereNothingWaits)
{
    EXPECT_FALSE(banner().isVisible());
}

TEST_F(WaitingBannerTest, saysAtTheNextLaunchWhatWaitsAndGoesOnAtOnePress)
{
    for (const QString &base : {u"Bar"_s, u"Foo"_s}) {
        leaveWait(base);
        record(base);
    }
    launchAgain();
    ASSERT_TRUE(banner().isVisible());
    EXPECT_EQ(part<QLabel>(u"waitingText"_s).text(), u"Bar and Foo still wait for their verdict."_s);
    EXPECT_EQ(document().statusString(), u"ready"_s);
    part<QPushButton>(u"waitingGoOn"_s).click();
    EXPECT_EQ(host.application().allControllers().size(), 3);
    host.settle();
    host.firePolls();
    EXPECT_TRUE(isFinished(u"Bar"_s) && isFinished(u"Foo"_s));
    EXPECT_TRUE(host.application().unattendedWaits().isEmpty());
}

TEST_F(WaitingBannerTest, goesUntilTheNextLaunchWhenAPersonSaysSo)
{
    leaveWait(u"Foo"_s);
    record(u"Foo"_s);
    launchAgain();
    part<QPushButton>(u"waitingDismiss"_s).click();
    EXPECT_FALSE(banner().isVisible());
    EXPECT_TRUE(QFile::exists(host.stateFolder + u"/waiting/Foo.json"_s));
    launchAgain();
    EXPECT_TRUE(banner().isVisible());
}

TEST_F(WaitingBannerTest, aFolderThatIsDroppedIsGoneOnWithInItsWindow)
{
    leaveWait(u"Foo"_s);
    drop(host.item(u"Foo - Submitted"_s));
    EXPECT_EQ(host.application().allControllers().size(), 1);
    EXPECT_EQ(window().title(), u"Foo.app"_s);
    EXPECT_EQ(document().statusString(), u"waiting"_s);
    host.firePolls();
    EXPECT_TRUE(isFinished(u"Foo"_s));
}

TEST_F(WaitingBannerTest, aFolderThatIsOpenedIsGoneOnWithInAWindowOfItsOwn)
{
    leaveWait(u"Foo"_s);
    items::makeFolder(host.item(u"Plain"_s));
    host.application().applicationOpenFiles({host.item(u"Foo - Submitted"_s), host.item(u"Plain"_s)});
    host.settle();
    EXPECT_EQ(host.application().allControllers().size(), 2);
    host.firePolls();
    EXPECT_TRUE(isFinished(u"Foo"_s));
}

TEST_F(WaitingBannerTest, aCancelledWaitCanBeGoneOnWithInItsWindow)
{
    leaveWait(u"Foo"_s);
    drop(host.item(u"Foo - Submitted"_s));
    EXPECT_FALSE(part<QPushButton>(u"outcomeGoOnWaiting"_s).isVisible());
    document().perform(Action::doCancel);
    answer(u"OK"_s);
    ASSERT_TRUE(part<QPushButton>(u"outcomeGoOnWaiting"_s).isVisible());
    part<QPushButton>(u"outcomeGoOnWaiting"_s).click();
    host.settle();
    EXPECT_FALSE(part<QPushButton>(u"outcomeGoOnWaiting"_s).isVisible());
    host.firePolls();
    EXPECT_TRUE(isFinished(u"Foo"_s));
}

// File > Go On Waiting…

TEST_F(WaitingBannerTest, thePanelOfTheMenuTakesTheFolder)
{
    leaveWait(u"Foo"_s);
    document().perform(Action::doGoOnWaiting);
    EXPECT_EQ(document().statusString(), u"interacting"_s);
    chooseInPanel(page(), host.item(QString()), u"Foo - Submitted"_s);
    until([this] { return document().statusString() == u"waiting"_s; });
    host.settle();
    host.firePolls();
    EXPECT_TRUE(isFinished(u"Foo"_s));
}

TEST_F(WaitingBannerTest, thePanelOfTheMenuTakesTheIdentifierInTheFolder)
{
    leaveWait(u"Foo"_s);
    document().perform(Action::doGoOnWaiting);
    chooseInPanel(page(), host.item(u"Foo - Submitted"_s), u"RequestUUID.txt"_s);
    until([this] { return document().statusString() == u"waiting"_s; });
    host.settle();
    host.firePolls();
    EXPECT_TRUE(isFinished(u"Foo"_s));
}

TEST_F(WaitingBannerTest, thePanelOfTheMenuSaysWhatAnotherFolderLacks)
{
    items::makeFolder(host.item(u"Plain"_s));
    document().perform(Action::doGoOnWaiting);
    chooseInPanel(page(), host.item(QString()), u"Plain"_s);
    EXPECT_EQ(awaitSheet().text(), u"Cannot Go On Waiting"_s);
    EXPECT_TRUE(host.log(LogStyle::error).last().contains(u"is no folder that an upload has left"_s));
    answer(u"OK"_s);
    EXPECT_EQ(document().statusString(), u"ready"_s);
    EXPECT_FALSE(document().isBusy());
}

TEST_F(WaitingBannerTest, thePanelOfTheMenuChangesNothingWhenItIsCancelled)
{
    document().perform(Action::doGoOnWaiting);
    until([this] { return page().findChild<ItemPanel *>() != nullptr; });
    page().findChild<ItemPanel *>()->reject();
    until([this] { return document().statusString() == u"ready"_s; });
    EXPECT_FALSE(document().isBusy());
    EXPECT_TRUE(host.tools.calls().isEmpty());
}
