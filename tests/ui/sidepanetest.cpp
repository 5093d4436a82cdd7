// The pages beside the log: which of them comes to the front when there is news, and what stands in one that
// has nothing to show.

#include "ui/controlstyle.h"
#include "ui/emptyhint.h"
#include "ui/itemlook.h"

#include "support/allsteps.h"

#include "windowtest.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QTabBar>
#include <QTabWidget>
#include <QTableWidget>

using namespace Qt::StringLiterals;

namespace {

enum Page { steps, examination, issues, history };

class ThePagesBesideTheLog : public WindowTest {
protected:
    QTabWidget &pane() { return part<QTabWidget>(u"sidePane"_s); }

    void refuse()
    {
        document().serviceIssues.set(
            uR"([{"severity": "error", "path": "Foo.app/Contents/MacOS/a-long-name-of-a-file-deep-in-an-item",
 "architecture": "arm64", "message": "The binary is not signed.", "docUrl": "https://example.com/a"}])"_s);
    }
    void fetchHistory()
    {
        document().statusTextView.append(
            {u"Date                      RequestUUID                          Status      Status Code "
             "Status Message   \n"
             "------------------------- ------------------------------------ ----------- ----------- "
             "---------------- \n"
             "2019-06-02 10:00:00 +0000 11111111-1111-1111-1111-111111111111 success     0           "
             "Package Approved \n"_s,
             LogStyle::plain,
             {u"Menlo"_s, 12}});
    }
    void look(const QJsonObject &examination)
    {
        Q_EMIT page().findChild<ItemLook *>()->ended(examination, {});
    }
};

} // namespace

TEST_F(ThePagesBesideTheLog, stayUnderThePointerThatHasChosenOne)
{
    QTabBar &tabs = *pane().tabBar();
    ControlStyle style;
    tabs.setStyle(&style);
    widget().resize(1000, 760);
    QCoreApplication::processEvents();
    const auto place = [&](int tab) { return tabs.mapTo(&page(), tabs.tabRect(tab).topLeft()).x(); };
    const int before = place(issues);
    const int width = pane().width();
    pane().setCurrentIndex(issues);
    QCoreApplication::processEvents();
    EXPECT_GT(pane().width(), width) << "a table has more room";
    EXPECT_EQ(place(issues), before);
    tabs.setStyle(nullptr);
}

TEST_F(ThePagesBesideTheLog, showTheStepsWhenARunBegins)
{
    pane().setCurrentIndex(history);
    document().stepList.plan({step::signMainFile, step::staple});
    document().stepList.begin(step::signMainFile);
    EXPECT_EQ(pane().currentIndex(), steps);
    pane().setCurrentIndex(examination);
    document().stepList.begin(step::staple);
    EXPECT_EQ(pane().currentIndex(), examination) << "whoever looks elsewhere meanwhile does so";
}

TEST_F(ThePagesBesideTheLog, showWhatTheServiceFoundFaultWith)
{
    refuse();
    EXPECT_EQ(pane().currentIndex(), issues);
    EXPECT_FALSE(pane().tabIcon(issues).isNull());
    document().serviceIssues.set(u"[]"_s);
    EXPECT_TRUE(pane().tabIcon(issues).isNull());
}

TEST_F(ThePagesBesideTheLog, showTheHistoryThatHasBeenFetched)
{
    fetchHistory();
    EXPECT_EQ(pane().currentIndex(), history);
}

TEST_F(ThePagesBesideTheLog, stayWhileSomebodyIsAtWorkInOne)
{
    pane().setCurrentIndex(history);
    part<QLineEdit>(u"historySearch"_s).setFocus();
    until([this] { return part<QLineEdit>(u"historySearch"_s).hasFocus(); });
    refuse();
    EXPECT_EQ(pane().currentIndex(), history);
    EXPECT_FALSE(pane().tabIcon(issues).isNull()) << "there is a sign all the same";
}

TEST_F(ThePagesBesideTheLog, tellByASignHowALookHasEnded)
{
    EXPECT_TRUE(pane().tabIcon(examination).isNull());
    look({{u"refused"_s, true}});
    const QImage bad = pane().tabIcon(examination).pixmap(16).toImage();
    look({{u"refused"_s, false}});
    const QImage good = pane().tabIcon(examination).pixmap(16).toImage();
    EXPECT_NE(bad, good);
    look({});
    EXPECT_TRUE(pane().tabIcon(examination).isNull());
    EXPECT_EQ(pane().currentIndex(), steps);
}

TEST_F(ThePagesBesideTheLog, haveTheMessageOfAnIssueBeforeItsPath)
{
    refuse();
    const auto &table = part<QTableWidget>(u"issueTable"_s);
    const QHeaderView &header = *table.horizontalHeader();
    EXPECT_LT(header.visualIndex(3), header.visualIndex(1));
    EXPECT_LE(table.columnWidth(1), table.fontMetrics().averageCharWidth() * 44)
        << "nor does it hide the rest";
}

TEST_F(ThePagesBesideTheLog, sayWhatWillStandThereWhileTheyAreEmpty)
{
    auto *const table = &part<QTableWidget>(u"issueTable"_s);
    const auto *const hint = table->findChild<EmptyHint *>();
    ASSERT_TRUE(hint);
    EXPECT_FALSE(hint->isHidden());
    refuse();
    EXPECT_TRUE(hint->isHidden());
    document().serviceIssues.set(u"[]"_s);
    EXPECT_FALSE(hint->isHidden());
}
