// The page that tells what would be refused, and the table of what the service said.

#include "ui/windowtest.h"

#include "document/mainwincontroller.h"
#include "support/items.h"
#include "ui/examinedwindow.h"
#include "ui/examinepane.h"
#include "ui/itemlook.h"
#include "ui/panelchoice.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>
#include <QTreeWidget>

using namespace Qt::StringLiterals;

namespace {

const QByteArray examination = R"({"item": "/items/Foo.app", "kind": "app", "refused": true, "code": [
 {"path": ".", "kind": "app", "order": 2, "reason": null, "architectures": ["arm64"], "signature": {"state": "linker"}},
 {"path": "Contents/PlugIns/Bar.plugin", "kind": "bundle", "order": 1, "reason": null, "architectures": ["x86_64"],
  "signature": {"state": "none"}},
 {"path": "Contents/PlugIns/Bar.plugin/Contents/Resources/.tool", "kind": "executable", "order": null,
  "reason": "is hidden", "architectures": ["x86_64"], "signature": {"state": "none"}}],
 "findings": [
 {"rule": "name-collision", "severity": "warning", "path": "a", "architecture": null, "message": "Two names.",
  "advice": "Rename one."},
 {"rule": "unsigned-code", "severity": "error", "path": "Contents/PlugIns/Bar.plugin/Contents/Resources/.tool",
  "architecture": "x86_64", "message": "The binary is not signed.", "advice": "Make it visible."}]})";

} // namespace

class TheExaminePage : public WindowTest {
protected:
    TheExaminePage()
        : look(host.document())
        , pane(host.document(), look)
    {
        pane.setExamination(QJsonDocument::fromJson(examination).object());
        tree = pane.findChild<QTreeWidget *>(u"examineTree"_s);
    }

    ItemLook look;
    ExaminePane pane;
    QTreeWidget *tree = nullptr;
};

TEST_F(TheExaminePage, showsFindingsFirstAndErrorsBeforeWarnings)
{
    const QTreeWidgetItem *const findings = tree->topLevelItem(0);
    ASSERT_EQ(findings->childCount(), 2);
    EXPECT_TRUE(findings->child(0)->text(1).contains(u"The binary is not signed."_s));
    EXPECT_TRUE(findings->child(0)->text(0).contains(u"x86_64"_s));
    EXPECT_TRUE(findings->child(1)->text(1).contains(u"Two names."_s));
    EXPECT_EQ(findings->child(0)->child(0)->text(1), u"Make it visible."_s);
}

TEST_F(TheExaminePage, hasTheSignOfItsSeverityBesideEachFinding)
{
    const auto signOf = [this](int row) { return tree->topLevelItem(0)->child(row)->icon(1); };
    ASSERT_FALSE(signOf(0).isNull());
    const QSize size = signOf(0).availableSizes().value(0);
    EXPECT_NE(signOf(0).pixmap(size).toImage(), signOf(1).pixmap(size).toImage());
}

TEST_F(TheExaminePage, tellsAllOfTheEntryThatIsChosenBelow)
{
    auto &detail = *pane.findChild<QLabel *>(u"examineDetail"_s);
    EXPECT_TRUE(detail.isHidden());
    tree->setCurrentItem(tree->topLevelItem(0)->child(0));
    EXPECT_EQ(
        detail.text().toStdString(),
        "Contents/PlugIns/Bar.plugin/Contents/Resources/.tool\nThe binary is not signed.\nMake it visible.");
    EXPECT_FALSE(detail.isHidden());
    pane.setExamination({});
    EXPECT_TRUE(detail.isHidden());
}

TEST_F(TheExaminePage, callsTheItemItselfByItsName)
{
    pane.setExamination(QJsonDocument::fromJson(R"({"item": "/items/Foo.app", "findings": [
 {"rule": "missing-identifier", "severity": "warning", "path": ".", "message": "None."}]})")
                            .object());
    EXPECT_EQ(tree->topLevelItem(0)->child(0)->text(0), u"Foo.app"_s);
    pane.setDifferences(u"Old"_s, {QJsonObject{{u"path"_s, u"."_s}, {u"what"_s, u"size"_s}}});
    EXPECT_EQ(tree->topLevelItem(0)->child(0)->text(0), u"Foo.app"_s);
}

TEST_F(TheExaminePage, foldsCodeByItsBundle)
{
    ASSERT_EQ(tree->topLevelItemCount(), 3);
    EXPECT_EQ(tree->topLevelItem(1)->text(0), u"Foo.app"_s);
    EXPECT_EQ(tree->topLevelItem(2)->text(0), u"Contents/PlugIns/Bar.plugin"_s);
    ASSERT_EQ(tree->topLevelItem(2)->childCount(), 1);
    EXPECT_EQ(tree->topLevelItem(2)->child(0)->text(0), u"Contents/Resources/.tool"_s);
}

TEST_F(TheExaminePage, hidesWhatASearchDoesNotMean)
{
    pane.findChild<QLineEdit *>(u"examineSearch"_s)->setText(u"hidden"_s);
    EXPECT_TRUE(tree->topLevelItem(0)->isHidden());
    EXPECT_TRUE(tree->topLevelItem(1)->isHidden());
    EXPECT_FALSE(tree->topLevelItem(2)->isHidden());
}

TEST_F(TheExaminePage, saysInAWordWhetherTheItemWouldBeRefused)
{
    EXPECT_EQ(pane.findChild<QLabel *>(u"examineSummary"_s)->text(), u"The item would be refused."_s);
    pane.setExamination({});
    EXPECT_EQ(tree->topLevelItemCount(), 0);
}

TEST_F(TheExaminePage, showsTheFileThatIsClicked)
{
    tree->itemClicked(tree->topLevelItem(0)->child(1), 0);
    tree->itemClicked(tree->topLevelItem(0), 0); // the heading stands for no file
    EXPECT_EQ(host.workspace.revealed, QStringList{u"/items/Foo.app"_s}); // as deep as there are files
}

TEST_F(TheExaminePage, showsWhatHasChangedSinceAnEarlierRun)
{
    const QJsonArray differences{QJsonObject{
        {u"path"_s, u"."_s}, {u"what"_s, u"version"_s}, {u"old"_s, u"1.0"_s}, {u"new"_s, u"1.1"_s}}};
    pane.setDifferences(u"Foo - Notarized"_s, differences);
    pane.setDifferences(u"Foo - Notarized"_s, differences); // takes the place of the first
    ASSERT_EQ(tree->topLevelItemCount(), 4);
    EXPECT_EQ(tree->topLevelItem(0)->text(0), u"Changes since Foo - Notarized"_s);
    ASSERT_EQ(tree->topLevelItem(0)->childCount(), 1);
    EXPECT_EQ(tree->topLevelItem(0)->child(0)->text(1), u"version: 1.0 → 1.1"_s);
    tree->itemClicked(tree->topLevelItem(0)->child(0), 0);
    EXPECT_EQ(host.workspace.revealed, QStringList{u"/items/Foo.app"_s});
}

TEST_F(TheExaminePage, showsOfEntitlementsAndSignaturesOnlyWhatHasChanged)
{
    const QJsonArray differences = QJsonDocument::fromJson(R"([
 {"path": ".", "what": "entitlements", "old": {"a": true, "b": true}, "new": {"b": true, "c": "x"}},
 {"path": ".", "what": "signature", "old": {"state": "adhoc"}, "new": {"state": "signed"}},
 {"path": ".", "what": "entitlements", "old": {}, "new": {"c": true}},
 {"path": "tool", "what": "added", "old": null, "new": "executable"}])")
                                       .array();
    pane.setDifferences(u"Foo - Notarized"_s, differences);
    const QTreeWidgetItem *const group = tree->topLevelItem(0);
    ASSERT_EQ(group->childCount(), 4);
    EXPECT_EQ(group->child(0)->text(1), u"entitlements: a true → c x"_s);
    EXPECT_EQ(group->child(1)->text(1), u"signature: state adhoc → state signed"_s);
    EXPECT_EQ(group->child(2)->text(1), u"entitlements: none → c true"_s);
    EXPECT_EQ(group->child(3)->text(1), u"added: executable"_s);
}

namespace {

/// A window whose item is looked at and compared by a program that answers as the real one does.
class ComparingInTheWindow : public ExaminedWindow {
protected:
    ComparingInTheWindow()
    {
        items::makeBundle(host.item(u"Foo - Notarized/Foo.app"_s));
        open(script());
        until([this] { return compare()->isEnabled(); });
    }

    static QByteArray script()
    {
        return "[ \"$1\" = --compare ] || { echo '{\"item\": \"'\"$4\"'\", \"code\": [], \"findings\": []}'; "
               "exit; }\n"
               "case $3 in *Broken*) echo \"sealwright-examine: There is nothing.\" >&2; exit 4;; esac\n"
               "echo '{\"differences\": [{\"path\": \".\", \"what\": \"size\", \"old\": 1, \"new\": 2}]}'; "
               "exit 1\n";
    }

    QPushButton *compare() { return page().findChild<QPushButton *>(u"examineCompare"_s); }
    QTreeWidget &tree() { return *page().findChild<QTreeWidget *>(u"examineTree"_s); }
    QString summary() { return page().findChild<QLabel *>(u"examineSummary"_s)->text(); }

    /// Presses the button and chooses the folder from the list of the panel.
    void compareWith(const QString &name)
    {
        compare()->click();
        chooseInPanel(page(), host.item(QString()), name);
    }
};

} // namespace

TEST_F(ComparingInTheWindow, takesANotarizedFolderAndShowsWhatHasChangedSince)
{
    compareWith(u"Foo - Notarized"_s);
    until([this] { return tree().topLevelItemCount() > 0 && tree().topLevelItem(0)->childCount() == 1; });
    EXPECT_EQ(tree().topLevelItem(0)->text(0), u"Changes since Foo - Notarized"_s);
    EXPECT_EQ(tree().topLevelItem(0)->child(0)->text(1), u"size in bytes: 1 → 2"_s);
    EXPECT_EQ(summary(), u"The changes since Foo - Notarized are listed first."_s);
    EXPECT_EQ(host.log(), QStringList());
}

TEST_F(ComparingInTheWindow, tellsTwoItemsOfOneNameApart)
{
    items::makeBundle(host.item(u"Old/Foo.app"_s));
    page().findChild<ExaminePane *>()->compareWith(host.item(u"Old/Foo.app"_s));
    until([this] { return summary() == "The changes since Old/Foo.app are listed first."_L1; });
}

TEST_F(ComparingInTheWindow, saysWhyItCouldNotAndShowsNoChanges)
{
    items::makeFolder(host.item(u"Broken - Notarized"_s));
    compareWith(u"Broken - Notarized"_s);
    until([this] { return summary() == "There is nothing."_L1; });
    EXPECT_EQ(tree().topLevelItem(0)->text(0), u"Findings"_s);
}

class TheIssueTable : public WindowTest {
protected:
    TheIssueTable()
        : table(part<QTableWidget>(u"issueTable"_s))
    {
        document().serviceIssues.set(
            uR"([{"severity": "warning", "path": "b", "architecture": null, "message": "B.", "docUrl": null},
 {"severity": "error", "path": "a", "architecture": "arm64", "message": "A.", "docUrl": "https://example.com/a"}])"_s);
    }

    QTableWidget &table;
};

TEST_F(TheIssueTable, sortsByTheColumnWhoseHeadingIsClicked)
{
    ASSERT_EQ(table.rowCount(), 2);
    table.sortByColumn(1, Qt::AscendingOrder);
    EXPECT_EQ(table.item(0, 1)->text(), u"a"_s);
    table.sortByColumn(1, Qt::DescendingOrder);
    EXPECT_EQ(table.item(0, 1)->text(), u"b"_s);
}

TEST_F(TheIssueTable, copiesTheSelectedRows)
{
    table.sortByColumn(1, Qt::AscendingOrder);
    table.selectRow(0);
    table.actions().first()->trigger();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"error\ta\tarm64\tA.\thttps://example.com/a"_s);
}

TEST_F(TheIssueTable, showsErrorsFirstUntilAColumnIsChosen)
{
    EXPECT_EQ(table.item(0, 0)->text(), u"error"_s);
    EXPECT_EQ(table.item(1, 0)->text(), u"warning"_s);
}

TEST_F(TheIssueTable, copiesAllAtAClickWhereNoRowIsSelected)
{
    part<QPushButton>(u"copyIssues"_s).click();
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(),
              "error\ta\tarm64\tA.\thttps://example.com/a\nwarning\tb\t\tB.\t");
    table.selectRow(1);
    part<QPushButton>(u"copyIssues"_s).click();
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), "warning\tb\t\tB.\t");
}

TEST_F(TheIssueTable, opensTheLinkOfTheRowByItsKey)
{
    table.setCurrentCell(1, 0); // it has none
    table.actions().at(1)->trigger();
    table.setCurrentCell(0, 0);
    table.actions().at(1)->trigger();
    EXPECT_EQ(host.workspace.opened, QList<QUrl>{QUrl(u"https://example.com/a"_s)});
}

TEST_F(TheIssueTable, opensNothingThatIsNoWebPage)
{
    document().serviceIssues.set(uR"([{"severity": "error", "docUrl": "file:///etc/passwd"}])"_s);
    table.itemClicked(table.item(0, 4));
    EXPECT_TRUE(host.workspace.opened.isEmpty());
}

TEST_F(TheIssueTable, opensTheLinkThatIsClicked)
{
    table.sortByColumn(1, Qt::AscendingOrder);
    table.itemClicked(table.item(0, 3));
    EXPECT_TRUE(host.workspace.opened.isEmpty());
    table.itemClicked(table.item(0, 4));
    EXPECT_EQ(host.workspace.opened, QList<QUrl>{QUrl(u"https://example.com/a"_s)});
}

TEST_F(TheIssueTable, isEmptyAgainWhenTheServiceHasSaidNothing)
{
    EXPECT_TRUE(part<QPushButton>(u"copyIssues"_s).isEnabled());
    document().serviceIssues.set(u"[]"_s);
    EXPECT_EQ(table.rowCount(), 0);
    EXPECT_FALSE(part<QPushButton>(u"copyIssues"_s).isEnabled());
}
