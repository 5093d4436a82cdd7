#include "windowtest.h"

#include "platform/itempath.h"
#include "support/items.h"
#include "ui/itempanel.h"

#include <QAbstractItemView>
#include <QCloseEvent>
#include <QCompleter>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPointer>
#include <QScreen>
#include <QWindow>

using namespace Qt::StringLiterals;

using WidgetWindowTest = WindowTest;

TEST_F(WidgetWindowTest, theTitleAndTheStatusWordAreOnShow)
{
    window().setTitle(u"Foo.app-2"_s);
    window().setSubtitle(u"waiting"_s);
    EXPECT_EQ(widget().windowTitle(), u"Foo.app-2"_s);
    EXPECT_EQ(window().title(), u"Foo.app-2"_s);
    EXPECT_EQ(part<QLabel>(u"statusString"_s).text(), u"waiting"_s);
}

TEST_F(WidgetWindowTest, aTitleIsShownLetterForLetter)
{
    window().setTitle(u"Foo[*] & Bar.app"_s);
    EXPECT_EQ(window().title(), u"Foo[*] & Bar.app"_s);
    EXPECT_EQ(widget().windowHandle()->title().section(u" — "_s, 0, 0), u"Foo[*] & Bar.app"_s);
}

TEST_F(WidgetWindowTest, theDocumentsStatusReachesTheWindow)
{
    document().changeStatus(status::submitting);
    host.settle();
    EXPECT_EQ(part<QLabel>(u"statusString"_s).text(), u"submitting"_s);
    document().changeStatus(status::ready);
    host.settle();
    EXPECT_EQ(part<QLabel>(u"statusString"_s).text(), u"ready"_s);
}

TEST_F(WidgetWindowTest, theAnswerOfASheetIsTheNumberOfItsButton)
{
    QList<int> answers;
    const platform::Alert alert{u"Continue?"_s, u"Really?"_s, {u"Cancel"_s, u"Close"_s}};
    const auto record = [&](int given) { answers.append(given); };
    window().beginSheet(alert, record);
    answer(u"Close"_s);
    window().beginSheet(alert, record);
    answer(u"Cancel"_s);
    window().beginSheet({u"Done"_s, u"All is well."_s, {}}, record);
    EXPECT_EQ(awaitSheet().text(), u"Done"_s);
    EXPECT_EQ(awaitSheet().informativeText(), u"All is well."_s);
    answer(u"OK"_s);
    EXPECT_EQ(answers, (QList{1001, 1000, 1000}));
}

TEST_F(WidgetWindowTest, aNewWindowIsNoLargerThanTheScreen)
{
    const QSize room = widget().screen()->availableSize();
    EXPECT_LE(widget().width(), room.width());
    EXPECT_LT(widget().height(), room.height()); // a title bar comes on top
}

TEST_F(WidgetWindowTest, itsPlaceCountsFromTheTopLeftOrFromTheBottomLeftOfTheScreen)
{
    const int height = QGuiApplication::primaryScreen()->geometry().height();
    const platform::QDRect bounds{60, 40, 660, 840};
    window().setBoundsAsQDRect(bounds);
    EXPECT_EQ(window().boundsAsQDRect(), bounds);
    EXPECT_EQ(widget().frameGeometry(), QRect(40, 60, 800, 600));
    EXPECT_EQ(window().frame(), QRect(40, height - 660, 800, 600));
    window().setFrame(QRect(61, height - 683, 800, 600));
    EXPECT_EQ(window().boundsAsQDRect(), (platform::QDRect{83, 61, 683, 861}));
}

TEST_F(WidgetWindowTest, aPlaceBeyondTheRangeOfBoundsIsAtItsEnd)
{
    widget().move(40'000, -40'000);
    EXPECT_EQ(window().boundsAsQDRect().left, 32'767);
    EXPECT_EQ(window().boundsAsQDRect().top, -32'768);
}

TEST_F(WidgetWindowTest, boundsOfAnySizeMakeNoWindowThatTakesAllMemory)
{
    window().setBoundsAsQDRect({0, 0, 32'767, 32'767});
    const QSize largest = QSize(4096, 4096).expandedTo(widget().screen()->virtualSize());
    EXPECT_EQ(widget().frameGeometry().size(), largest);
}

TEST_F(WidgetWindowTest, boundsThatAreInsideOutLeaveTheLeastSize)
{
    window().setBoundsAsQDRect({400, 300, 200, 100});
    EXPECT_EQ(widget().frameGeometry().topLeft(), QPoint(300, 400));
    EXPECT_TRUE(widget().size().isValid());
}

TEST_F(WidgetWindowTest, aWindowIsOrderedInFrontOfAllAndAboveNoOther)
{
    WidgetWindow &first = window();
    WidgetWindow &second = dynamic_cast<WidgetWindow &>(host.application().addedDocument()->window());
    for (const qint64 number : {1, 2, -1})
        first.orderAbove(number);
    EXPECT_EQ(order.frontToBack(), (QList<platform::Window *>{&second, &first}));
    first.orderAbove(0);
    EXPECT_EQ(order.frontToBack(), (QList<platform::Window *>{&first, &second}));
}

TEST_F(WidgetWindowTest, theFocusIsGivenUpOnDemand)
{
    auto &field = part<QLineEdit>(u"appleIDField"_s);
    until([&] { return widget().isActiveWindow(); });
    field.setFocus();
    ASSERT_TRUE(field.hasFocus());
    EXPECT_TRUE(window().makeNothingFirstResponder());
    EXPECT_FALSE(field.hasFocus());
}

TEST_F(WidgetWindowTest, theCloseButtonAsksTheDocumentFirst)
{
    document().isBusy.set(true);
    widget().close();
    EXPECT_TRUE(widget().isVisible());
    EXPECT_EQ(awaitSheet().text(), u"Continue Closing?"_s);
    EXPECT_EQ(awaitSheet().informativeText(), u"This window is busy."_s);
    answer(u"Cancel"_s);
    EXPECT_TRUE(widget().isVisible());
    EXPECT_EQ(host.application().allControllers().size(), 1);
    document().isBusy.set(false);
}

TEST_F(WidgetWindowTest, closingABusyWindowAllTheSameLetsGoOfItsDocument)
{
    const std::weak_ptr<MainWinController> watched = document().weak_from_this();
    document().isSubmitting.set(true);
    window().performClose();
    answer(u"Close"_s);
    EXPECT_TRUE(host.application().allControllers().isEmpty());
    until([&] { return watched.expired(); });
}

TEST_F(WidgetWindowTest, whileASheetIsUpNobodyClosesTheWindowOrAsksAgain)
{
    document().isBusy.set(true);
    int answers = 0;
    window().beginSheet({u"Question"_s, u"Well?"_s, {}}, [&](int) { ++answers; });
    AlertBox &box = awaitSheet();
    host.application().doCloseAll();
    document().doCloseDocument(CloseSender::script);
    host.settle();
    EXPECT_EQ(page().findChildren<AlertBox *>(), QList<AlertBox *>{&box}) << "no second question";
    EXPECT_EQ(host.applicationHost.beeps, 0) << "the document has not been asked";
    document().isBusy.set(false);
    window().performClose();
    EXPECT_EQ(host.application().allControllers().size(), 1);
    EXPECT_TRUE(box.isVisible());
    answer(u"OK"_s);
    EXPECT_EQ(answers, 1);
    window().performClose();
    EXPECT_TRUE(host.application().allControllers().isEmpty());
}

TEST_F(WidgetWindowTest, anIdleWindowClosesAtOnce)
{
    const std::weak_ptr<MainWinController> watched = document().weak_from_this();
    const QPointer<QWidget> shown(&widget());
    widget().close();
    EXPECT_FALSE(shown->isVisible());
    EXPECT_TRUE(host.application().allControllers().isEmpty());
    until([&] { return watched.expired() && shown.isNull(); });
}

TEST_F(WidgetWindowTest, aSheetThatIsUpGoesWithItsWindowWithoutAnAnswer)
{
    const std::weak_ptr<MainWinController> watched = document().weak_from_this();
    bool isAnswered = false;
    document().beginSheet({u"Question"_s, u"Well?"_s, {}}, [&](int) { isAnswered = true; });
    awaitSheet();
    window().close();
    until([&] { return watched.expired(); });
    EXPECT_FALSE(isAnswered);
}

TEST_F(WidgetWindowTest, aWindowThatIsClosedTakesWhatALateWorkflowDoesAndShowsNothing)
{
    const DocumentPtr held = document().shared_from_this();
    auto &closed = dynamic_cast<WidgetWindow &>(held->window());
    closed.close();
    closed.close();
    held->logString(u"late"_s);
    held->finalAlertOrMessage(u"Late"_s, u"Too late."_s, u"Too late."_s);
    closed.beginOpenPanel({}, [](const QUrl &) { ADD_FAILURE() << "nobody can have chosen"; });
    closed.show();
    host.settle();
    EXPECT_FALSE(closed.widget().isVisible());
    EXPECT_TRUE(closed.widget().findChildren<QDialog *>().isEmpty());
    EXPECT_TRUE(order.frontToBack().isEmpty());
}

TEST_F(WidgetWindowTest, aDocumentThatAWorkerHoldsTakesItsWindowWithItOnTheMainThread)
{
    const QPointer<QWidget> shown(&widget());
    std::atomic<bool> mayEnd = false;
    onWorker(document(), [&] {
        while (!mayEnd)
            QThread::yieldCurrentThread();
    });
    window().close();
    QCoreApplication::processEvents();
    EXPECT_FALSE(shown.isNull());
    mayEnd = true;
    until([&] { return shown.isNull(); });
}

TEST_F(WidgetWindowTest, anOpenPanelAnswersWithTheChosenItem)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    QList<QUrl> chosen;
    window().beginOpenPanel({u"Choose"_s, {u"app"_s}, true, false, {}},
                            [&](const QUrl &url) { chosen.append(url); });
    auto *const panel = widget().findChild<ItemPanel *>();
    ASSERT_TRUE(panel);
    EXPECT_EQ(panel->windowTitle(), u"Choose"_s);
    Q_EMIT panel->directoryEntered(host.item(u"Foo.app"_s));
    until([&] { return !chosen.isEmpty(); });
    EXPECT_EQ(chosen, QList{itempath::toUrl(host.item(u"Foo.app"_s))});
}

TEST_F(WidgetWindowTest, anOpenPanelThatIsCancelledAnswersWithAnEmptyURL)
{
    QList<QUrl> chosen;
    window().beginOpenPanel({u"Choose"_s, {u"app"_s}, true, false, {}},
                            [&](const QUrl &url) { chosen.append(url); });
    widget().findChild<ItemPanel *>()->reject();
    until([&] { return !chosen.isEmpty(); });
    EXPECT_EQ(chosen, QList{QUrl()});
}

namespace {

/// Opens panels in the windows of one application, and answers them as a person does.
class PanelFolders : public WindowTest {
protected:
    ItemPanel &open(MainWinController &document, const QString &type)
    {
        document.window().beginOpenPanel({u"Choose"_s, {type}, true, false, {}},
                                         [this](const QUrl &) { ++m_ended; });
        auto &window = dynamic_cast<WidgetWindow &>(document.window());
        auto &panel = *window.page().findChild<ItemPanel *>();
        until([&] { return panel.isActiveWindow(); });
        return panel;
    }
    void press(ItemPanel &panel, Qt::Key key)
    {
        const int before = m_ended;
        QTest::keyClick(&panel, key);
        until([&] { return m_ended > before; });
    }
    /// Chooses an item in a folder, and answers that folder.
    QDir chooseFromBuilds()
    {
        const QString item = host.item(u"builds/Foo.app"_s);
        items::makeBundle(item);
        ItemPanel &panel = open(document(), u"app"_s);
        panel.findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(item);
        press(panel, Qt::Key_Return);
        return {itempath::folder(item)};
    }

private:
    int m_ended = 0;
};

} // namespace

TEST_F(PanelFolders, theFirstPanelBeginsInTheHomeFolder)
{
    ItemPanel &panel = open(document(), u"app"_s);
    EXPECT_EQ(panel.directory(), QDir::home()) << "not wherever the program was started";
    press(panel, Qt::Key_Escape);
}

TEST_F(PanelFolders, aPanelBeginsWhereTheLastItemWasChosenInWhicheverWindow)
{
    const QDir builds = chooseFromBuilds();
    host.application().newDocument(1);
    ItemPanel &other = open(document(), u"plist"_s);
    EXPECT_EQ(other.directory(), builds);
    press(other, Qt::Key_Escape);
}

TEST_F(PanelFolders, aPanelThatIsCancelledChangesNothing)
{
    const QDir builds = chooseFromBuilds();
    ItemPanel &walked = open(document(), u"app"_s);
    walked.setDirectory(host.item({}));
    press(walked, Qt::Key_Escape);
    ItemPanel &next = open(document(), u"app"_s);
    EXPECT_EQ(next.directory(), builds);
    press(next, Qt::Key_Escape);
}

TEST_F(PanelFolders, aFolderThatHasGoneGivesWayToTheHomeFolder)
{
    const QDir builds = chooseFromBuilds();
    ASSERT_TRUE(QDir(builds).removeRecursively());
    ItemPanel &panel = open(document(), u"app"_s);
    EXPECT_EQ(panel.directory(), QDir::home());
    press(panel, Qt::Key_Escape);
}

TEST_F(WidgetWindowTest, aWindowIsActiveAgainWhenItsPanelHasEndedWithCompletionsOpen)
{
    items::makeFile(host.item(u"Foo.pkg"_s), "pkg");
    until([this] { return widget().isActiveWindow(); });
    QList<QUrl> chosen;
    window().beginOpenPanel({u"Choose"_s, {u"pkg"_s}, true, false, {}},
                            [&](const QUrl &url) { chosen.append(url); });
    const QPointer<ItemPanel> panel = &part<ItemPanel>({});
    until([&] { return panel->isActiveWindow(); });
    panel->setDirectory(itempath::folder(host.item(u"Foo.pkg"_s)));
    const auto &list = *panel->findChild<QListView *>(u"listView"_s);
    until([&] { return list.model()->rowCount(list.rootIndex()) > 0; });
    auto &name = *panel->findChild<QLineEdit *>(u"fileNameEdit"_s);
    QTest::keyClicks(&name, u"Foo.pkg"_s);
    QWidget *const completions = name.completer()->popup();
    ASSERT_TRUE(completions->isVisible());
    QTest::keyClick(completions, Qt::Key_Return);
    until([&] { return !chosen.isEmpty(); });
    EXPECT_EQ(chosen, QList{itempath::toUrl(host.item(u"Foo.pkg"_s))});
    until([this] { return QApplication::activeWindow() == &widget(); });
    EXPECT_FALSE(QApplication::activePopupWidget());
}
