// DropDMG: whether it is there, and the names of its configurations.

#include "app/discovery.h"
#include "app/preferencekeys.h"
#include "document/mainwincontroller.h"
#include "support/items.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString dropDMG = u"com.c-command.DropDMG"_s;
const QString configurationsChanged = u"com.c-command.DropDMG.ConfigurationsChanged"_s;
const QStringList noneFound{u"None found"_s};
const QStringList notApplicable{u"Not applicable"_s};

class DropDMG : public testing::Test {
protected:
    void install() { host.workspace.installed.insert(dropDMG, u"/Applications/DropDMG.app"_s); }
    void addFile(const QString &name)
    {
        items::makeFile(host.configuration.dropDMGFolder + u'/' + name, "<plist/>");
    }
    void answerScript(const QStringList &names) { host.appleScript.result = {names, {}, {}}; }
    void notify() { host.distributedNotifications.handlers.value(configurationsChanged)(); }
    QStringList names() { return host.application().dropDMGConfigNames(); }
    bool isThere() { return host.application().hasDropDMG(); }

    TestHost host;
};

} // namespace

TEST_F(DropDMG, isNotApplicableWhereItIsNotInstalled)
{
    addFile(u"Left over.plist"_s);
    host.launch();
    EXPECT_EQ(names(), notApplicable);
    EXPECT_FALSE(isThere());
    EXPECT_TRUE(host.appleScript.sources.isEmpty());
    EXPECT_EQ(host.document().dropDMGConfigsPopup.itemTitles(), notApplicable);
}

TEST_F(DropDMG, hasNoneWhereItHasNeverRun)
{
    install();
    host.launch();
    EXPECT_EQ(names(), noneFound);
    EXPECT_FALSE(isThere());
}

TEST_F(DropDMG, isReadFromItsFolderAndNotStartedWhereItDoesNotRun)
{
    install();
    addFile(u"Plain.plist"_s);
    addFile(u"My.Own.plist"_s);
    host.launch();
    EXPECT_EQ(names(), (QStringList{u"My.Own"_s, u"Plain"_s}));
    EXPECT_TRUE(isThere());
    EXPECT_TRUE(host.workspace.launched.isEmpty());
    EXPECT_TRUE(host.appleScript.sources.isEmpty());
}

TEST_F(DropDMG, sortsNumbersByTheirValue)
{
    install();
    addFile(u"Item 10.plist"_s);
    addFile(u"Item 2.plist"_s);
    addFile(u"item 1.plist"_s);
    host.launch();
    EXPECT_EQ(names(), (QStringList{u"item 1"_s, u"Item 2"_s, u"Item 10"_s}));
}

TEST_F(DropDMG, takesNeitherHiddenFilesNorOtherFiles)
{
    install();
    addFile(u".Hidden.plist"_s);
    addFile(u"Notes.txt"_s);
    host.launch();
    EXPECT_EQ(names(), noneFound);
    EXPECT_FALSE(isThere());
}

TEST_F(DropDMG, takesTheExactExtensionOnly)
{
    install();
    addFile(u"Loud.PLIST"_s);
    addFile(u"plist"_s);
    addFile(u"Old.plist.bak"_s);
    addFile(u"Plain.plist"_s);
    host.launch();
    EXPECT_EQ(names(), QStringList{u"Plain"_s});
}

TEST_F(DropDMG, hasNoneWhereAFileStandsInItsFoldersPlace)
{
    install();
    items::makeFile(host.configuration.dropDMGFolder, "no folder");
    host.launch();
    EXPECT_EQ(names(), noneFound);
}

TEST_F(DropDMG, isAskedByScriptWhereItRuns)
{
    host.workspace.running.insert(dropDMG);
    addFile(u"From the folder.plist"_s);
    answerScript({u"Item 10"_s, u""_s, u"Item 2"_s});
    host.launch();
    EXPECT_EQ(
        host.appleScript.sources,
        QStringList{
            u"with timeout of 3 seconds\ntell application id \"com.c-command.DropDMG\" to name of every configuration\nend timeout"_s});
    EXPECT_TRUE(host.appleScript.limits.first()) << "launch waits for it";
    EXPECT_EQ(names(), (QStringList{u"Item 2"_s, u"Item 10"_s}));
    EXPECT_TRUE(isThere());
}

TEST_F(DropDMG, takesTheOneNameOfAScriptsReply)
{
    host.workspace.running.insert(dropDMG);
    answerScript({u"Plain"_s});
    host.launch();
    EXPECT_EQ(names(), QStringList{u"Plain"_s});
    EXPECT_TRUE(isThere());
}

namespace {

struct ReplyRow {
    const char *name;
    platform::AppleScriptResult result;
};

class UselessReply : public DropDMG, public testing::WithParamInterface<ReplyRow> { };

} // namespace

TEST_P(UselessReply, atLaunchMeansNone)
{
    host.workspace.running.insert(dropDMG);
    install();
    addFile(u"Plain.plist"_s);
    host.appleScript.result = GetParam().result;
    host.launch();
    EXPECT_EQ(names(), noneFound);
    EXPECT_FALSE(isThere());
}

TEST_P(UselessReply, laterTakesThePlaceOfAGoodList)
{
    install();
    addFile(u"Plain.plist"_s);
    host.launch();
    EXPECT_TRUE(isThere());
    host.appleScript.result = GetParam().result;
    notify();
    EXPECT_EQ(names(), noneFound);
    EXPECT_FALSE(isThere());
    EXPECT_EQ(host.document().dropDMGConfigsPopup.itemTitles(), noneFound);
    answerScript({u"Plain"_s});
    notify();
    EXPECT_TRUE(isThere());
}

INSTANTIATE_TEST_SUITE_P(Replies, UselessReply,
                         testing::Values(ReplyRow{"error", {{}, {}, u"AppleEvent timed out."_s}},
                                         ReplyRow{"noList", {{}, u"/some/file"_s, {}}},
                                         ReplyRow{"emptyList", {QStringList(), {}, {}}},
                                         ReplyRow{"listOfNothing", {QStringList{u""_s, u""_s}, {}, {}}}),
                         [](const auto &row) { return row.param.name; });

TEST_F(DropDMG, aNotificationAsksByScriptAndNeverReadsTheFolder)
{
    install();
    addFile(u"From the folder.plist"_s);
    host.launch();
    answerScript({u"From the script"_s});
    notify();
    EXPECT_EQ(host.appleScript.sources.size(), 1);
    EXPECT_EQ(names(), QStringList{u"From the script"_s});
    EXPECT_EQ(host.document().dropDMGConfigsPopup.itemTitles(), QStringList{u"From the script"_s});
}

TEST_F(DropDMG, isAskedOnceForAllNotificationsThatHaveWaited)
{
    host.launch();
    EXPECT_TRUE(host.distributedNotifications.merged.contains(configurationsChanged))
        << "each question keeps the main thread waiting";
}

TEST_F(DropDMG, aNotificationOfTheSameListChangesNothing)
{
    host.workspace.running.insert(dropDMG);
    answerScript({u"B"_s, u"A"_s});
    host.launch();
    int changes = 0;
    QObject::connect(&host.application().dropDMGConfigNames, &Observable::changed, &host.application(),
                     [&changes] { ++changes; });
    answerScript({u"A"_s, u"B"_s});
    notify();
    EXPECT_EQ(changes, 0);
    answerScript({u"A"_s, u"C"_s});
    notify();
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(names(), (QStringList{u"A"_s, u"C"_s}));
}

TEST_F(DropDMG, namesThatDifferInTheirCaseAloneKeepOneOrder)
{
    EXPECT_EQ(discovery::sortedLikeFinder({u"b"_s, u"a"_s, u"A"_s, u"B"_s}),
              discovery::sortedLikeFinder({u"A"_s, u"B"_s, u"b"_s, u"a"_s}));
}
