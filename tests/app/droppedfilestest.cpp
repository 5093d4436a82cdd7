// Files that are opened with the application or dropped on it.

#include "document/mainwincontroller.h"
#include "platform/itempath.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class DroppedFiles : public testing::Test {
protected:
    void launchWithDrops(const QList<QStringList> &drops)
    {
        host.application().applicationWillFinishLaunching();
        for (const QStringList &drop : drops)
            host.application().applicationOpenFiles(drop);
        EXPECT_TRUE(host.application().allControllers().isEmpty());
        host.application().applicationDidFinishLaunching();
        host.tools.forgetCalls();
    }

    QStringList titles()
    {
        QStringList titles;
        for (const DocumentPtr &document : host.application().allControllers())
            titles.append(document->window().title());
        return titles;
    }

    void expectNothingSaid()
    {
        EXPECT_EQ(host.applicationHost.beeps, 0);
        EXPECT_TRUE(host.applicationHost.modalAlerts.isEmpty());
        for (const DocumentPtr &document : host.application().allControllers())
            EXPECT_TRUE(TestHost::window(*document).sheets.isEmpty());
    }

    TestHost host;
};

} // namespace

TEST_F(DroppedFiles, anAppDuringLaunchMakesOneDocumentThatWaitsForAPerson)
{
    launchWithDrops({{u"/items/Foo.app"_s}});
    EXPECT_EQ(titles(), QStringList{u"Foo.app"_s});
    MainWinController &document = host.document();
    EXPECT_EQ(document.originalAppletURL(), itempath::toUrl(u"/items/Foo.app"_s));
    EXPECT_EQ(document.submitAppButton.action(), Action::doDirectSubmit);
    EXPECT_EQ(document.stapleOnlyButton.action(), Action::doCancelDirectSubmit);
    EXPECT_EQ(document.statusString(), u"interacting"_s);
    EXPECT_FALSE(document.isBusy());
    host.settle();
    EXPECT_TRUE(host.tools.calls().isEmpty()) << "nothing starts by itself";
    EXPECT_EQ(host.application().statusString(), u"ready"_s);
}

TEST_F(DroppedFiles, twoFilesMakeTwoDocumentsInTheirOrder)
{
    launchWithDrops({{u"/items/Foo.app"_s, u"/items/Bar.pkg"_s}});
    EXPECT_EQ(titles(), (QStringList{u"Foo.app"_s, u"Bar.pkg"_s}));
}

TEST_F(DroppedFiles, aSecondDropDuringLaunchTakesThePlaceOfTheFirst)
{
    launchWithDrops({{u"/items/Foo.app"_s, u"/items/Bar.pkg"_s}, {u"/items/Baz.dmg"_s}});
    EXPECT_EQ(titles(), QStringList{u"Baz.dmg"_s});
}

TEST_F(DroppedFiles, aDropDuringLaunchOfWhichNothingIsTakenLeavesNoWindow)
{
    launchWithDrops({{u"/items/Foo.txt"_s}});
    EXPECT_TRUE(titles().isEmpty());
    EXPECT_TRUE(host.applicationHost.onScreen.isEmpty());
    EXPECT_EQ(host.application().statusString(), u"ready"_s);
}

TEST_F(DroppedFiles, aRefusedSecondDropDuringLaunchForgetsTheFirst)
{
    launchWithDrops({{u"/items/Foo.app"_s}, {u"/items/Foo.txt"_s}});
    EXPECT_TRUE(titles().isEmpty());
}

TEST_F(DroppedFiles, aDropAfterLaunchMakesItsDocumentsAtOnceAndComesToTheFront)
{
    host.launch();
    const int activations = host.applicationHost.activations;
    host.application().applicationOpenFiles({u"/items/Foo.app"_s, u"/items/Bar.plugin"_s});
    EXPECT_EQ(titles(), (QStringList{u"Untitled"_s, u"Foo.app"_s, u"Bar.plugin"_s}));
    EXPECT_EQ(host.document().submitAppButton.action(), Action::doDirectSubmit);
    EXPECT_EQ(host.applicationHost.activations, activations + 2 + 1) << "once a document, once at the end";
}

TEST_F(DroppedFiles, aDropAfterLaunchComesToTheFrontBehindItsDocuments)
{
    host.launch();
    const int activations = host.applicationHost.activations;
    host.application().applicationOpenFiles({u"/items/Foo.app"_s});
    EXPECT_EQ(host.applicationHost.activationsWhenShown, activations + 1) << "that of the document itself";
    EXPECT_EQ(host.applicationHost.activations, activations + 2);
}

TEST_F(DroppedFiles, aRefusedDropAfterLaunchStillComesToTheFront)
{
    host.launch();
    const int activations = host.applicationHost.activations;
    host.application().applicationOpenFiles({u"/items/Foo.txt"_s});
    EXPECT_EQ(titles(), QStringList{u"Untitled"_s});
    EXPECT_EQ(host.applicationHost.activations, activations + 1);
}

TEST_F(DroppedFiles, theSameItemTwiceHasTheSameTitleTwice)
{
    host.launch();
    host.application().applicationOpenFiles({u"/items/Foo.app"_s, u"/items/Foo.app"_s});
    EXPECT_EQ(titles(), (QStringList{u"Untitled"_s, u"Foo.app"_s, u"Foo.app"_s}));
}

TEST_F(DroppedFiles, loadingGivesTheDocumentsItHasMade)
{
    host.launch();
    const auto documents = host.application().loadDroppedURLs({itempath::toUrl(u"/items/Foo.app"_s)});
    EXPECT_EQ(documents, QList<DocumentPtr>{host.application().allControllers().last()});
}

namespace {

struct ExtensionRow {
    const char *name;
    QString fileName;
    bool isTaken;
};

class DroppedExtension : public DroppedFiles, public testing::WithParamInterface<ExtensionRow> { };

} // namespace

TEST_P(DroppedExtension, decidesAlone)
{
    host.launch();
    host.application().applicationOpenFiles({u"/items/"_s + GetParam().fileName});
    EXPECT_EQ(host.application().allControllers().size(), GetParam().isTaken ? 2 : 1);
}

TEST_P(DroppedExtension, isRefusedWithoutAWord)
{
    host.launch();
    host.application().applicationOpenFiles({u"/items/"_s + GetParam().fileName});
    expectNothingSaid();
    host.application().applicationOpenFiles(
        {u"/items/First.app"_s, u"/items/"_s + GetParam().fileName, u"/items/Last.dmg"_s});
    host.settle();
    expectNothingSaid();
}

TEST_P(DroppedExtension, decidesAmongOthers)
{
    launchWithDrops({{u"/items/First.app"_s, u"/items/"_s + GetParam().fileName, u"/items/Last.dmg"_s}});
    EXPECT_EQ(titles(),
              GetParam().isTaken ? (QStringList{u"First.app"_s, GetParam().fileName, u"Last.dmg"_s})
                                 : (QStringList{u"First.app"_s, u"Last.dmg"_s}));
}

INSTANTIATE_TEST_SUITE_P(
    Names, DroppedExtension,
    testing::Values(ExtensionRow{"app", u"Foo.app"_s, true}, ExtensionRow{"dmg", u"Foo.dmg"_s, true},
                    ExtensionRow{"pkg", u"Foo.pkg"_s, true}, ExtensionRow{"plugin", u"Foo.plugin"_s, true},
                    ExtensionRow{"fmplugin", u"Foo.fmplugin"_s, true},
                    ExtensionRow{"upperCasePkg", u"Foo.PKG"_s, false},
                    ExtensionRow{"mixedCaseApp", u"Foo.App"_s, false},
                    ExtensionRow{"zip", u"Foo.zip"_s, false}, ExtensionRow{"none", u"app"_s, false},
                    ExtensionRow{"hiddenFile", u".app"_s, false},
                    ExtensionRow{"notTheLastExtension", u"Foo.app.zip"_s, false},
                    ExtensionRow{"notLatin", u"Täst 🍎.app"_s, true}),
    [](const auto &row) { return row.param.name; });
