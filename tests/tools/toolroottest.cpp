#include "tools/toolroot.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(ToolRootTest, withoutARootEveryPathIsItself)
{
    EXPECT_EQ(ToolRoot().locate(u"/usr/bin/codesign"_s), u"/usr/bin/codesign"_s);
    EXPECT_TRUE(ToolRoot().searchFolders().isEmpty());
    EXPECT_EQ(ToolRoot().applicationsFolder(), u"/Applications"_s);
}

TEST(ToolRootTest, aToolUnderTheRootStandsInForTheOneOfTheHost)
{
    const QTemporaryDir folder;
    const ToolRoot root(folder.path());
    ASSERT_TRUE(QDir(folder.path()).mkpath(u"usr/bin"_s));
    QFile tool(folder.filePath(u"usr/bin/codesign"_s));
    ASSERT_TRUE(tool.open(QIODevice::WriteOnly));
    EXPECT_EQ(root.locate(u"/usr/bin/codesign"_s), folder.path() + u"/usr/bin/codesign"_s);
    EXPECT_EQ(root.locate(u"/usr/bin/file"_s), u"/usr/bin/file"_s);
}

TEST(ToolRootTest, itsFoldersStandInFrontOfTheSearchPath)
{
    EXPECT_EQ(ToolRoot(u"/opt/tools"_s).searchFolders(),
              (QStringList{u"/opt/tools/usr/bin"_s, u"/opt/tools/usr/sbin"_s}));
    EXPECT_EQ(ToolRoot(u"/opt/tools"_s).applicationsFolder(), u"/opt/tools/Applications"_s);
}

TEST(ToolRootTest, whatTheUserHasSetIsChosen)
{
    const QTemporaryDir bundled;
    EXPECT_EQ(ToolRoot::chosen(u"/opt/tools/"_s, {bundled.path()}).applicationsFolder(),
              u"/opt/tools/Applications"_s);
}

TEST(ToolRootTest, withoutASettingTheFirstBundledOneThatIsThereIsChosen)
{
    const QTemporaryDir first;
    const QTemporaryDir second;
    const QString aroundACorner = first.path() + u"/../"_s + QFileInfo(first.path()).fileName();
    EXPECT_EQ(
        ToolRoot::chosen(u""_s, {u"/nowhere/tools"_s, aroundACorner, second.path()}).applicationsFolder(),
        first.path() + u"/Applications"_s);
}

TEST(ToolRootTest, withNoneAtAllEveryPathIsItself)
{
    EXPECT_EQ(ToolRoot::chosen({}, {u"/nowhere/tools"_s}).applicationsFolder(), u"/Applications"_s);
}
