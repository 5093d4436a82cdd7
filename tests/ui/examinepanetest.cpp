// The page that tells what would be refused, and the table of what the service said.

#include "ui/windowtest.h"

#include "document/mainwincontroller.h"
#include "ui/examinepane.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
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
        : pane(host.document())
    {
        pane.setExamination(QJsonDocument::fromJson(examination).object());
        tree = pane.findChild<QTreeWidget *>(u"examineTree"_s);
    }

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
