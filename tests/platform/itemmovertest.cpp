#include "platform/posix/itemmover.h"
#include "platform/posix/posixfileservice.h"
#include "temporaryfolder.h"

#include <QDir>

using namespace Qt::StringLiterals;
using namespace platform;

namespace {

/// All names in a folder, hidden ones too.
QStringList allNames(const QString &path)
{
    return QDir(path).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

class ItemMover : public testing::Test {
protected:
    PosixFileService files;
    TemporaryFolder folder;
};

} // namespace

TEST_F(ItemMover, anItemOnAnotherFileSystemIsCopiedAndThenGone)
{
    folder.folder(u"from/sub"_s);
    folder.file(u"from/sub/file"_s, "text");
    folder.folder(u"target"_s);
    ASSERT_TRUE(moveTreeByCopying(folder.path(u"from"_s), folder.path(u"target/to"_s)));
    EXPECT_EQ(contentsOf(folder.path(u"target/to/sub/file"_s)), "text");
    EXPECT_EQ(allNames(folder.path()), QStringList{u"target"_s});
    EXPECT_EQ(allNames(folder.path(u"target"_s)), QStringList{u"to"_s});
}

TEST_F(ItemMover, anOccupiedTargetOnAnotherFileSystemStaysAsItIs)
{
    const QString from = folder.file(u"from"_s, "new");
    const QString to = folder.file(u"to"_s, "old");
    EXPECT_EQ(moveTreeByCopying(from, to).error(), u"Cannot move '%1' to '%2': File exists"_s.arg(from, to));
    EXPECT_EQ(contentsOf(from), "new");
    EXPECT_EQ(contentsOf(to), "old");
    EXPECT_EQ(allNames(folder.path()), (QStringList{u"from"_s, u"to"_s}));
}

TEST_F(ItemMover, aCopyThatFailsLeavesTheItemAndNothingElse)
{
    folder.folder(u"from"_s);
    folder.file(u"from/a file"_s, "text");
    const QString pipe = folder.fifo(u"from/pipe"_s);
    EXPECT_TRUE(moveTreeByCopying(folder.path(u"from"_s), folder.path(u"to"_s)).error().contains(pipe));
    EXPECT_EQ(allNames(folder.path()), QStringList{u"from"_s});
    EXPECT_EQ(allNames(folder.path(u"from"_s)), (QStringList{u"a file"_s, u"pipe"_s}));
}

TEST_F(ItemMover, anItemThatCannotLeaveItsFileSystemStaysAndLeavesNoCopy)
{
    // Another file system for certain, and one that lets nobody rename.
    const QString error = files.moveItem(u"/proc/version"_s, folder.path(u"to"_s)).error();
    EXPECT_TRUE(error.startsWith(u"Cannot move '/proc/version' to '%1': "_s.arg(folder.path(u"to"_s))));
    EXPECT_TRUE(files.isReachable(u"/proc/version"_s));
    EXPECT_TRUE(allNames(folder.path()).isEmpty());
}

TEST_F(ItemMover, aFileTakesAnothersPlace)
{
    const QString path = folder.file(u"file"_s, "old");
    const QString replacement = folder.file(u"new file"_s, "new");
    ASSERT_TRUE(files.replaceItem(path, replacement));
    EXPECT_EQ(contentsOf(path), "new");
    EXPECT_EQ(allNames(folder.path()), QStringList{u"file"_s});
}

TEST_F(ItemMover, aFolderTakesAnothersPlaceWithNothingLeftOfTheOldOne)
{
    folder.folder(u"item"_s);
    folder.file(u"item/old"_s);
    const auto place = files.replacementDirectory(folder.path(u"item"_s));
    ASSERT_TRUE(place);
    ASSERT_TRUE(files.createDirectory(*place + u"/item"_s));
    ASSERT_TRUE(files.writeFile(*place + u"/item/new"_s, "text"));
    ASSERT_TRUE(files.replaceItem(folder.path(u"item"_s), *place + u"/item"_s));
    EXPECT_EQ(allNames(folder.path(u"item"_s)), QStringList{u"new"_s});
    EXPECT_TRUE(allNames(*place).isEmpty());
}

TEST_F(ItemMover, aFolderTakesAFilesPlaceAndAFileAFolders)
{
    const QString path = folder.file(u"item"_s, "file");
    folder.folder(u"folder"_s);
    folder.file(u"folder/inside"_s, "inside");
    ASSERT_TRUE(files.replaceItem(path, folder.path(u"folder"_s)));
    EXPECT_EQ(contentsOf(folder.path(u"item/inside"_s)), "inside");
    ASSERT_TRUE(files.replaceItem(path, folder.file(u"plain"_s, "plain")));
    EXPECT_EQ(contentsOf(path), "plain");
    EXPECT_EQ(allNames(folder.path()), QStringList{u"item"_s});
}

TEST_F(ItemMover, anItemOfAnotherFileSystemTakesAnothersPlaceAsACopy)
{
    const QString path = folder.file(u"item"_s, "old");
    const QString replacement = folder.file(u"new"_s, "new");
    ASSERT_TRUE(replaceTreeByCopying(path, replacement));
    EXPECT_EQ(contentsOf(path), "new");
    EXPECT_EQ(allNames(folder.path()), QStringList{u"item"_s});
    EXPECT_FALSE(replaceTreeByCopying(path, replacement)) << "it is gone";
    EXPECT_EQ(contentsOf(path), "new");
    EXPECT_EQ(allNames(folder.path()), QStringList{u"item"_s});
}

TEST_F(ItemMover, aLinkIsReplacedAndNotWhatItLeadsTo)
{
    const QString real = folder.file(u"real"_s, "real");
    const QString link = folder.link(u"link"_s, real);
    ASSERT_TRUE(files.replaceItem(link, folder.file(u"new"_s, "new")));
    EXPECT_EQ(contentsOf(real), "real");
    EXPECT_EQ(contentsOf(link), "new");
}

TEST_F(ItemMover, withoutAReplacementTheItemStays)
{
    const QString path = folder.file(u"item"_s, "old");
    EXPECT_EQ(files.replaceItem(path, folder.path(u"missing"_s)).error(),
              u"Cannot replace '%1': No such file or directory"_s.arg(path));
    EXPECT_EQ(contentsOf(path), "old");
}
