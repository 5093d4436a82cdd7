// Parts of the windows that find a place for themselves: where there is little room, and where there is much.

#include "ui/bannerrow.h"
#include "ui/dropoverlay.h"
#include "ui/logview.h"
#include "ui/outcomebanner.h"
#include "ui/pageparts.h"
#include "ui/runpanes.h"
#include "ui/setupdialog.h"
#include "ui/twopartrow.h"

#include "platform/itempath.h"
#include "support/items.h"
#include "windowtest.h"

#include <QBoxLayout>
#include <QDragEnterEvent>
#include <QFrame>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QTabWidget>
#include <QTextBlock>

using namespace Qt::StringLiterals;

namespace {

/// A banner with a text and two buttons.
class Banner : public testing::Test {
protected:
    Banner()
    {
        auto *const words = new QHBoxLayout;
        text = new QLabel(u"some words that say what there is to say"_s, &frame);
        text->setWordWrap(true);
        words->addWidget(text);
        row = new BannerRow(frame, words);
        row->addButton(*one);
        row->addButton(*other);
        frame.show();
    }
    void showAt(int width)
    {
        frame.resize(width, 200);
        QCoreApplication::processEvents();
    }
    bool isBeside() const { return one->x() > text->geometry().right(); }
    bool isBelow() const { return one->y() > text->geometry().bottom(); }

    QFrame frame;
    QLabel *text;
    QPushButton *const one = new QPushButton(u"Do One Thing"_s, &frame);
    QPushButton *const other = new QPushButton(u"Do Another Thing"_s, &frame);
    BannerRow *row;
};

/// Two groups of a button each.
class Row : public testing::Test {
protected:
    Row()
    {
        row.first().addWidget(left);
        row.second().addWidget(right);
        row.show();
    }
    void showAt(int width)
    {
        row.resize(width, 100);
        QCoreApplication::processEvents();
    }

    TwoPartRow row;
    QPushButton *const left = new QPushButton(u"Something on the Left"_s, &row);
    QPushButton *const right = new QPushButton(u"Something on the Right"_s, &row);
};

class Room : public WindowTest {
protected:
    void dragOver(const QStringList &names)
    {
        QMimeData data;
        QList<QUrl> urls;
        for (const QString &name : names)
            urls.append(itempath::toUrl(host.item(name)));
        data.setUrls(urls);
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&page(), &enter);
    }
    DropOverlay &overlay() { return *page().findChild<DropOverlay *>(); }
};

} // namespace

TEST_F(Banner, hasItsButtonsBesideItsWordsWhereThereIsRoom)
{
    showAt(900);
    EXPECT_TRUE(isBeside() && !isBelow());
}

TEST_F(Banner, hasItsButtonsBelowItsWordsWhereThereIsNone)
{
    showAt(420);
    EXPECT_TRUE(isBelow());
    EXPECT_LE(frame.minimumSizeHint().width(), 420) << "and does not make its window wider";
    other->hide();
    one->setText(u"x"_s);
    row->arrange();
    QCoreApplication::processEvents();
    EXPECT_TRUE(isBeside()) << "one button less";
}

TEST_F(Row, isOneLineWhereThereIsRoom)
{
    showAt(800);
    EXPECT_EQ(left->y(), right->y());
    EXPECT_EQ(left->x(), 0);
    EXPECT_EQ(right->geometry().right(), 799);
}

TEST_F(Row, isTwoLinesWhereThereIsNone)
{
    EXPECT_LT(row.minimumSizeHint().width(), left->sizeHint().width() + right->sizeHint().width());
    showAt(row.minimumSizeHint().width());
    EXPECT_GT(right->y(), left->geometry().bottom());
}

TEST_F(Room, aTableHasHalfOfItAndTheStepsWhatTheyHadBefore)
{
    auto &panes = *page().findChild<RunPanes *>();
    auto &side = *page().findChild<QTabWidget *>(u"sidePane"_s);
    widget().resize(1000, 760);
    QCoreApplication::processEvents();
    const QList<int> before = panes.sizes();
    side.setCurrentIndex(3);
    EXPECT_LE(qAbs(panes.sizes().at(0) - panes.sizes().at(1)), panes.handleWidth());
    panes.setSizes({600, 300});
    const QList<int> chosen = panes.sizes();
    side.setCurrentIndex(0);
    EXPECT_EQ(panes.sizes(), before);
    side.setCurrentIndex(2);
    EXPECT_EQ(panes.sizes(), chosen) << "where a person has moved the divider";
}

TEST_F(Room, aSheetIsAsTallAsThePageThatShows)
{
    SetupDialog practice(document(), SetupRoad::practice);
    SetupDialog developerID(document(), SetupRoad::developerID);
    const int width = developerID.sizeHint().width();
    EXPECT_LT(practice.layout()->heightForWidth(width), developerID.layout()->heightForWidth(width) * 2 / 3);
}

TEST(LogView, showsTheSizeAsDeliveredAsLargeAsTheInterface)
{
    LogText log;
    LogView view(log);
    view.setSizeOfInterface(9);
    log.append({u"as delivered\n"_s, LogStyle::plain, {u"Menlo"_s, 12}});
    log.append({u"larger\n"_s, LogStyle::plain, {u"Menlo"_s, 16}});
    const auto sizeOf = [&](int line) {
        return view.document()->findBlockByNumber(line).begin().fragment().charFormat().fontPointSize();
    };
    EXPECT_EQ(sizeOf(0), 9);
    EXPECT_EQ(sizeOf(1), 12);
}

// What is dragged over a window

TEST_F(Room, anItemOverAWindowIsToldWhatWillBecomeOfIt)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    dragOver({u"Foo.app"_s});
    EXPECT_EQ(overlay().geometry(), page().rect());
    EXPECT_EQ(overlay().title(), u"Drop “Foo.app” here"_s);
    EXPECT_EQ(overlay().sentence(),
              u"It will be signed by Example Corp (A1B2C3D4E5) and uploaded as a zip archive when you press "
              "Submit Now."_s);
    QDragLeaveEvent leave;
    QApplication::sendEvent(&page(), &leave);
    EXPECT_FALSE(overlay().isVisible());
}

TEST_F(Room, overAWindowWithAnItemItIsToldThatItOpensElsewhere)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    items::makeBundle(host.item(u"Bar.app"_s));
    host.submit(host.item(u"Bar.app"_s));
    dragOver({u"Foo.app"_s});
    EXPECT_EQ(overlay().sentence(), u"It opens in a window of its own, since this one has an item."_s);
}

TEST_F(Room, ofSeveralItemsTheFirstStays)
{
    for (const QString &name : {u"Foo.app"_s, u"Bar.app"_s})
        items::makeBundle(host.item(name));
    dragOver({u"Foo.app"_s, u"Bar.app"_s});
    EXPECT_EQ(overlay().title(), u"Drop 2 items here"_s);
    EXPECT_EQ(overlay().sentence(),
              u"The first stays here, each of the others opens in a window of its own."_s);
}

// The one sentence that matters

TEST(FindingOfTheService, isItsFirstErrorAndHowManyMoreThereAre)
{
    const QString issues = uR"([{"severity": "warning", "path": "a/b", "message": "odd"},
{"severity": "error", "path": "Foo.zip/Foo.app/Contents/MacOS/helper", "message": "Not signed."},
{"severity": "error", "path": "x", "message": "No runtime."}])"_s;
    EXPECT_EQ(findingIn(issues), u"helper: Not signed. (and 1 more, under Issues)"_s);
    EXPECT_EQ(findingIn(uR"([{"severity": "error", "message": "Bad."}])"_s), u"Bad."_s);
    for (const QString &none : {QString(), u"[]"_s, u"[1]"_s, u"no list"_s})
        EXPECT_EQ(findingIn(none), QString()) << none.toStdString();
}

TEST_F(Room, aRefusalIsToldInASentenceAndNotByTheReport)
{
    const QUrl address(u"https://example.com/log"_s);
    host.urls.contents.insert(address,
                              R"({"issues": [{"severity": "error", "path": "Foo.app/Contents/MacOS/Foo",
"message": "The executable does not have the hardened runtime enabled."}]})");
    host.tools.answer(u"altool--notarization-info"_s,
                      {.output = FakeTools::infoReport(u"invalid"_s, address.toString())});
    items::makeBundle(host.item(u"Foo.app"_s));
    host.submitToTheEnd(host.item(u"Foo.app"_s));
    EXPECT_EQ(page().banner().outcome(),
              (RunOutcome{RunOutcome::Kind::refused, u"Notarization Failed"_s,
                          u"Foo: The executable does not have the hardened runtime enabled."_s}));
}

TEST_F(Room, ofAReportOfManyLinesTheFirstIsTold)
{
    host.tools.answer(u"codesign"_s, {.status = 1, .error = "the first line\nthe second line\n"});
    items::makeBundle(host.item(u"Foo.app"_s));
    host.submit(host.item(u"Foo.app"_s));
    host.settle();
    const QString sentence = page().banner().outcome().sentence;
    EXPECT_TRUE(sentence.endsWith(u"the first line …"_s)) << sentence.toStdString();
}

namespace {

/// Something over something else, of heights that it is told.
class Parts : public testing::Test {
protected:
    class Wanting : public QWidget {
    public:
        QSize sizeHint() const override { return {100, wanted}; }
        void want(int height)
        {
            wanted = height;
            updateGeometry();
        }
        int wanted = 150;
    };

    Parts()
    {
        run->setMinimumHeight(50);
        parts.resize(300, 400);
        parts.show();
        QCoreApplication::processEvents();
    }

    Wanting *const settings = new Wanting;
    QWidget *const run = new QWidget;
    PageParts parts{*settings, *run};
};

} // namespace

TEST_F(Parts, giveTheSettingsWhatTheyWantAndTheRunTheRest)
{
    EXPECT_EQ(settings->height(), 150);
    settings->want(200);
    QCoreApplication::processEvents();
    EXPECT_EQ(settings->height(), 200) << "when more has come into them";
    parts.resize(300, 220);
    EXPECT_GE(run->height(), 50);
    parts.resize(300, 400);
    EXPECT_EQ(settings->height(), 200);
}

TEST_F(Parts, stayWhereAPersonHasPutTheDivider)
{
    QWidget &handle = *parts.handle(1);
    const QPoint middle = handle.rect().center();
    QTest::mousePress(&handle, Qt::LeftButton, {}, middle);
    QTest::mouseMove(&handle, middle - QPoint(0, 60));
    QTest::mouseRelease(&handle, Qt::LeftButton, {}, middle - QPoint(0, 60));
    const int chosen = settings->height();
    ASSERT_LT(chosen, 150);
    settings->want(200);
    QCoreApplication::processEvents();
    EXPECT_EQ(settings->height(), chosen);
}
