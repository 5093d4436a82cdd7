#include "ui/steplistview.h"
#include "support/allsteps.h"

#include "document/steplist.h"
#include "support/fakehost.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QScrollBar>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QImage picture(StepListView &view)
{
    return view.viewport()->grab().toImage();
}

int lightest(const QImage &image)
{
    int lightness = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            lightness = qMax(lightness, image.pixelColor(x, y).lightness());
    }
    return lightness;
}

/// Counts how often a view draws itself.
class PaintCounter : public QObject {
public:
    explicit PaintCounter(StepListView &view) { view.viewport()->installEventFilter(this); }

    int count() const { return m_count; }

    bool eventFilter(QObject *, QEvent *event) override
    {
        m_count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }

private:
    int m_count = 0;
};

QPalette darkPalette()
{
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(0x20, 0x20, 0x20));
    palette.setColor(QPalette::WindowText, Qt::white);
    palette.setColor(QPalette::Highlight, QColor(0x30, 0x8c, 0xc6));
    return palette;
}

} // namespace

class StepListViewTest : public testing::Test {
protected:
    StepListViewTest()
    {
        steps.plan({step::checkCredentials, step::makeWorkingCopy, step::saveEntitlements,
                    step::clearAttributes, step::lockScript, step::signContents, step::signMainFile,
                    step::makeZipArchive, step::upload, step::awaitResult, step::staple});
    }

    void pass(int seconds) { clock.time = clock.time.addSecs(seconds); }

    /// A run that has come to its third poll.
    void runToTheWait()
    {
        steps.begin(step::checkCredentials);
        pass(3);
        steps.begin(step::signContents);
        pass(12);
        steps.begin(step::upload);
        pass(252);
        steps.begin(step::awaitResult);
        for (const quint64 failures : {0, 0, 1}) {
            steps.pollIn(30, failures);
            pass(30);
            steps.pollNow();
        }
        steps.pollIn(30, 1);
    }

    static void showInFront(QWidget &widget)
    {
        widget.show();
        widget.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&widget));
    }

    ManualClock clock;
    StepList steps{clock};
};

TEST_F(StepListViewTest, isFoundByItsNameAndReadAsTheSteps)
{
    const StepListView view(steps);
    EXPECT_EQ(view.objectName(), u"stepList"_s);
    EXPECT_EQ(view.accessibleName(), u"Steps"_s);
}

TEST_F(StepListViewTest, isReadRowByRowByAssistiveSoftware)
{
    runToTheWait();
    StepListView view(steps);
    showInFront(view);
    QAccessibleInterface *const list = QAccessible::queryAccessibleInterface(&view);
    ASSERT_TRUE(list);
    EXPECT_EQ(list->role(), QAccessible::List);
    ASSERT_EQ(list->childCount(), 12);
    EXPECT_EQ(list->child(8)->text(QAccessible::Name), u"Upload to Apple: done, 4:12"_s);
    EXPECT_EQ(list->child(9)->text(QAccessible::Name), u"Wait for Apple's result: running, 1:30"_s);
    EXPECT_EQ(list->child(11)->text(QAccessible::Name), u"Next check at 14:09:49 · 3 checks, 1 failed"_s);
}

TEST_F(StepListViewTest, drawsEachStateInItsOwnWay)
{
    QList<QImage> pictures;
    for (const StepState state :
         {StepState::waiting, StepState::running, StepState::done, StepState::failed, StepState::cancelled}) {
        StepList one(clock);
        StepListView view(one);
        view.resize(view.sizeHint());
        view.show();
        one.plan({step::staple});
        if (state != StepState::waiting)
            one.begin(step::staple);
        if (state != StepState::waiting && state != StepState::running)
            one.finish(state);
        const int side = view.fontMetrics().height() * 3 / 2; // the sign alone, without name and time
        const QImage sign = picture(view).copy(0, 0, side, side);
        EXPECT_FALSE(pictures.contains(sign)) << "state " << int(state);
        pictures.append(sign);
    }
}

TEST_F(StepListViewTest, showsTheTimeThatHasPassedInTheActiveWindow)
{
    steps.begin(step::checkCredentials);
    StepListView view(steps);
    showInFront(view);
    PaintCounter paints(view);
    const QImage before = picture(view);
    EXPECT_TRUE(QTest::qWaitFor([&] { return paints.count() >= 2; }));
    EXPECT_EQ(picture(view), before) << "the clock stands still";
    pass(5);
    EXPECT_NE(picture(view), before);
}

TEST_F(StepListViewTest, standsStillInAWindowBehindAnother)
{
    steps.begin(step::checkCredentials);
    StepListView view(steps);
    view.show();
    StepListView front(steps);
    showInFront(front);
    QCoreApplication::processEvents();
    PaintCounter paints(view);
    PaintCounter paintsOfFront(front);
    EXPECT_TRUE(QTest::qWaitFor([&] { return paintsOfFront.count() >= 2; }));
    EXPECT_EQ(paints.count(), 0);
}

TEST_F(StepListViewTest, standsStillOnceNothingRuns)
{
    steps.begin(step::checkCredentials);
    StepList ended(clock);
    QWidget window;
    auto *const layout = new QHBoxLayout(&window);
    auto *const running = new StepListView(steps);
    auto *const still = new StepListView(ended);
    layout->addWidget(running);
    layout->addWidget(still);
    showInFront(window);
    ended.plan({step::staple});
    ended.begin(step::staple);
    ended.finish(StepState::done);
    PaintCounter paints(*running);
    EXPECT_TRUE(QTest::qWaitFor([&] { return paints.count() >= 1; }));
    PaintCounter paintsOfStill(*still);
    EXPECT_TRUE(QTest::qWaitFor([&] { return paints.count() >= 3; }));
    EXPECT_EQ(paintsOfStill.count(), 0);
}

TEST_F(StepListViewTest, catchesUpWhenItsWindowComesToTheFront)
{
    steps.begin(step::checkCredentials);
    StepListView view(steps);
    view.show();
    QWidget front;
    showInFront(front);
    QCoreApplication::processEvents();
    PaintCounter paints(view);
    showInFront(view);
    EXPECT_TRUE(QTest::qWaitFor([&] { return paints.count() >= 1; }));
}

TEST_F(StepListViewTest, isReadableOnADarkGround)
{
    StepListView view(steps);
    view.setPalette(darkPalette());
    view.resize(view.sizeHint());
    view.show();
    const QImage waiting = picture(view);
    EXPECT_LT(waiting.pixelColor(0, 0).lightness(), 64);
    EXPECT_GT(lightest(waiting), 150) << "what has not been done";
    runToTheWait();
    EXPECT_GT(lightest(picture(view)), 240);
}

TEST_F(StepListViewTest, growsWithTheFont)
{
    runToTheWait();
    StepListView view(steps);
    const QSize before = view.sizeHint();
    view.show();
    QFont doubled = view.font();
    doubled.setPointSize(2 * doubled.pointSize());
    view.setFont(doubled);
    const QSize after = view.sizeHint();
    EXPECT_GT(after.width(), before.width() * 3 / 2);
    EXPECT_GT(after.height(), before.height() * 3 / 2);
    EXPECT_GE(view.sizeHintForRow(0), QFontMetrics(doubled).height());
}

TEST_F(StepListViewTest, givesANameMoreLinesWhereOneIsTooNarrow)
{
    StepListView view(steps);
    view.resize(view.sizeHint());
    view.show();
    const int oneLine = view.sizeHintForRow(3);
    view.resize(view.minimumSizeHint());
    EXPECT_GT(view.sizeHintForRow(3), oneLine);
    EXPECT_EQ(view.sizeHintForRow(10), oneLine) << "a short name";
    EXPECT_TRUE(QTest::qWaitFor([&] {
        return view.visualRect(view.model()->index(3, 0)).height() == view.sizeHintForRow(3);
    })) << "the rows make room for it";
}

TEST_F(StepListViewTest, hasRoomForASubmissionThatWaits)
{
    runToTheWait();
    StepListView view(steps);
    view.resize(view.sizeHint());
    showInFront(view);
    EXPECT_EQ(view.verticalScrollBar()->maximum(), 0);
    EXPECT_LE(view.sizeHintForRow(11), view.sizeHintForRow(0)) << "the line about the polls";
}

TEST_F(StepListViewTest, keepsTheHeightOfARowThatRuns)
{
    StepListView view(steps);
    view.resize(view.minimumSizeHint());
    view.show();
    const int before = view.sizeHintForRow(3);
    steps.begin(step::clearAttributes);
    EXPECT_EQ(view.sizeHintForRow(3), before);
}

TEST_F(StepListViewTest, scrollsToWhatHappens)
{
    StepListView view(steps);
    view.resize(view.minimumSizeHint());
    showInFront(view);
    runToTheWait();
    const QModelIndex last = view.model()->index(view.model()->rowCount() - 1, 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return view.viewport()->rect().contains(view.visualRect(last)); }));
    steps.plan({step::checkSignature, step::staple});
    steps.begin(step::checkSignature);
    EXPECT_TRUE(QTest::qWaitFor([&] { return view.verticalScrollBar()->value() == 0; }));
}

TEST_F(StepListViewTest, showsWhichRowTheKeyboardIsAt)
{
    StepListView view(steps);
    view.resize(view.sizeHint());
    showInFront(view);
    view.setFocus();
    const QImage before = picture(view);
    QTest::keyClick(&view, Qt::Key_Down);
    EXPECT_EQ(view.currentIndex().row(), 1);
    EXPECT_NE(picture(view), before);
}

TEST_F(StepListViewTest, isNotForChoosingOrEditing)
{
    const StepListView view(steps);
    EXPECT_EQ(view.selectionMode(), QAbstractItemView::NoSelection);
    EXPECT_EQ(view.editTriggers(), QAbstractItemView::NoEditTriggers);
}

TEST(StepListWithoutSteps, isNoStopOfTheTabKey)
{
    const ManualClock clock;
    StepList steps(clock);
    const StepListView view(steps);
    EXPECT_EQ(view.focusPolicy(), Qt::NoFocus);
    steps.plan({step::staple});
    EXPECT_TRUE(view.focusPolicy() & Qt::TabFocus);
    steps.plan({});
    EXPECT_EQ(view.focusPolicy(), Qt::NoFocus);
}
