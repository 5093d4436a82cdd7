// Entries of folders: what they are, and how they are made, moved, removed and claimed.

#include "platform/posixfileservicetest.h"

#include <QSet>

using namespace Qt::StringLiterals;
using namespace platform;
using testing::UnorderedElementsAre;

TEST_F(Files, anItemIsReachableAndALinkIsWhereverItLeads)
{
    EXPECT_TRUE(files.isReachable(folder.file(u"file"_s)));
    EXPECT_TRUE(files.isReachable(folder.path()));
    EXPECT_TRUE(files.isReachable(folder.link(u"dangling"_s, u"/no/such/item"_s)));
    EXPECT_FALSE(files.isReachable(folder.path(u"missing"_s)));
    EXPECT_TRUE(files.exists(folder.path(u"file"_s)));
    EXPECT_TRUE(files.exists(folder.link(u"link"_s, folder.path(u"file"_s))));
    EXPECT_FALSE(files.exists(folder.path(u"dangling"_s)));
    EXPECT_FALSE(files.exists(folder.path(u"missing"_s)));
}

TEST_F(Files, aMissingFileIsNotReadable)
{
    EXPECT_TRUE(files.isReadable(folder.file(u"file"_s)));
    EXPECT_FALSE(files.isReadable(folder.path(u"missing"_s)));
    EXPECT_FALSE(files.isReadable(folder.link(u"dangling"_s, u"/no/such/item"_s)));
}

TEST_F(Files, kindsTellTheEntryItself)
{
    const QString plain = folder.file(u"plain"_s);
    const QString program = folder.file(u"program"_s);
    ASSERT_TRUE(files.setPermissions(program, 0755));
    const FileKind folderKind = files.kind(folder.path());
    EXPECT_TRUE(folderKind.isDirectory);
    EXPECT_FALSE(folderKind.isRegularFile);
    EXPECT_FALSE(folderKind.isExecutable);
    EXPECT_TRUE(files.kind(plain).isRegularFile);
    EXPECT_FALSE(files.kind(plain).isExecutable);
    EXPECT_FALSE(files.kind(plain).isDirectory);
    EXPECT_TRUE(files.kind(program).isExecutable);
}

TEST_F(Files, aLinkIsNeitherFolderNorFileNorExecutable)
{
    const QString program = folder.file(u"program"_s);
    ASSERT_TRUE(files.setPermissions(program, 0755));
    for (const QString &link : {folder.link(u"toFolder"_s, folder.path()), folder.link(u"toFile"_s, program),
                                folder.path(u"missing"_s)}) {
        const FileKind kind = files.kind(link);
        EXPECT_FALSE(kind.isDirectory || kind.isRegularFile || kind.isExecutable) << link.toStdString();
    }
}

TEST_F(Files, aSlashAtTheEndDoesNotMakeALinkAFolder)
{
    const QString link = folder.link(u"toFolder"_s, folder.path());
    EXPECT_FALSE(files.kind(link + u'/').isDirectory);
    ASSERT_TRUE(files.removeItem(link + u'/'));
    EXPECT_FALSE(files.isReachable(link));
}

TEST_F(Files, aFolderIsAPackageByItsExtension)
{
    for (const QString &name :
         {u"A.app"_s, u"B.framework"_s, u"C.fmplugin"_s, u"D.PlugIn"_s, u"E.prefPane"_s, u"F.bundle"_s,
          u"G.kext"_s, u"H.xpc"_s, u"I.appex"_s, u"J.mdimporter"_s, u"K.qlgenerator"_s, u"L.saver"_s})
        EXPECT_EQ(files.isPackage(folder.folder(name) + u'/'), true) << name.toStdString();
    EXPECT_EQ(files.isPackage(folder.folder(u"plain"_s)), false);
    EXPECT_EQ(files.isPackage(folder.folder(u"en.lproj"_s)), false);
}

TEST_F(Files, aFolderIsAPackageByTheTypeInItsDictionary)
{
    folder.folder(u"typed.thing/Contents"_s);
    folder.file(u"typed.thing/Contents/Info.plist"_s,
                "<plist><dict><key>CFBundlePackageType</key><string>BNDL</string></dict></plist>");
    folder.folder(u"untyped.thing/Contents"_s);
    folder.file(u"untyped.thing/Contents/Info.plist"_s,
                "<plist><dict><key>CFBundleName</key><string>N</string></dict></plist>");
    EXPECT_EQ(files.isPackage(folder.path(u"typed.thing"_s)), true);
    EXPECT_EQ(files.isPackage(folder.path(u"untyped.thing"_s)), false);
}

TEST_F(Files, aFileOrALinkIsNoPackageAndAMissingItemIsNothing)
{
    EXPECT_EQ(files.isPackage(folder.file(u"file.app"_s)), false);
    EXPECT_EQ(files.isPackage(folder.link(u"link.app"_s, folder.folder(u"real.app"_s))), false);
    EXPECT_EQ(files.isPackage(folder.path(u"missing.app"_s)), std::nullopt);
}

TEST_F(Files, aListingHasNoHiddenNames)
{
    folder.file(u"b"_s);
    folder.file(u".hidden"_s);
    folder.folder(u"a folder"_s);
    folder.link(u"dangling"_s, u"/no/such/item"_s);
    folder.file(u"Größe"_s);
    EXPECT_THAT(files.contentsOfDirectory(folder.path(), FolderLink::follow),
                UnorderedElementsAre(u"b"_s, u"a folder"_s, u"dangling"_s, u"Größe"_s));
}

TEST_F(Files, entriesTellTheSameAsAListingAndTheirKinds)
{
    folder.file(u"file"_s);
    folder.file(u".hidden"_s);
    folder.folder(u"a folder"_s);
    folder.link(u"link"_s, u"a folder"_s);
    QStringList names;
    for (const FolderEntry &entry : files.entriesOfDirectory(folder.path(), FolderLink::leaveAlone)) {
        names += entry.name;
        const FileKind kind = files.kind(folder.path(entry.name));
        EXPECT_EQ(entry.kind.isDirectory, kind.isDirectory);
        EXPECT_EQ(entry.kind.isRegularFile, kind.isRegularFile);
        EXPECT_EQ(entry.kind.isExecutable, kind.isExecutable);
        EXPECT_EQ(entry.kind.isDirectory, entry.name == u"a folder");
    }
    EXPECT_EQ(names, files.contentsOfDirectory(folder.path(), FolderLink::leaveAlone));
    EXPECT_EQ(names.size(), 3);
}

TEST_F(Files, aLinkToAFolderListsTheFolderIfItIsToBeFollowed)
{
    folder.folder(u"real"_s);
    folder.file(u"real/inside"_s);
    const QString link = folder.link(u"link"_s, folder.path(u"real"_s));
    EXPECT_EQ(files.contentsOfDirectory(link, FolderLink::follow), QStringList{u"inside"_s});
    EXPECT_TRUE(files.contentsOfDirectory(link, FolderLink::leaveAlone).isEmpty());
}

TEST_F(Files, whatCannotBeListedIsEmpty)
{
    EXPECT_TRUE(files.contentsOfDirectory(folder.path(u"missing"_s), FolderLink::follow).isEmpty());
    EXPECT_TRUE(files.contentsOfDirectory(folder.file(u"file"_s), FolderLink::follow).isEmpty());
}

TEST_F(Files, aFolderIsCreatedWithThoseAboveIt)
{
    const QString deep = folder.path(u"one/two/three"_s);
    ASSERT_TRUE(files.createDirectory(deep));
    EXPECT_TRUE(files.kind(deep).isDirectory);
    EXPECT_TRUE(files.createDirectory(deep));
    EXPECT_TRUE(files.createDirectory(folder.link(u"link"_s, deep)));
}

TEST_F(Files, aFolderIsNotCreatedWhereAFileIs)
{
    const QString file = folder.file(u"file"_s);
    EXPECT_EQ(files.createDirectory(file).error(), u"Cannot create '%1': File exists"_s.arg(file));
    EXPECT_FALSE(files.createDirectory(file + u"/inside"_s));
    EXPECT_FALSE(files.createDirectory(u"/proc/nobody may/create this"_s));
}

TEST_F(Files, aCreatedFileIsEmptyWhateverWasThere)
{
    const QString file = folder.file(u"file"_s, "old");
    ASSERT_TRUE(files.createFile(file));
    EXPECT_EQ(stateOf(file).st_size, 0);
    EXPECT_EQ(files.createFile(folder.path()).error(),
              u"Cannot create '%1': Is a directory"_s.arg(folder.path()));
}

TEST_F(Files, aFolderIsRemovedWithAllThatIsInItAndNothingBehindItsLinks)
{
    folder.folder(u"kept"_s);
    const QString kept = folder.file(u"kept/file"_s);
    folder.folder(u"gone/deep/.hidden"_s);
    folder.file(u"gone/deep/.hidden/file"_s);
    folder.file(u"gone/file"_s);
    folder.link(u"gone/link"_s, folder.path(u"kept"_s));
    ASSERT_TRUE(files.removeItem(folder.path(u"gone"_s)));
    EXPECT_FALSE(files.isReachable(folder.path(u"gone"_s)));
    EXPECT_TRUE(files.isReachable(kept));
}

TEST_F(Files, aLinkIsRemovedAndNotWhatItLeadsTo)
{
    folder.folder(u"real"_s);
    const QString inside = folder.file(u"real/inside"_s);
    const QString link = folder.link(u"link"_s, folder.path(u"real"_s));
    ASSERT_TRUE(files.removeItem(link));
    EXPECT_FALSE(files.isReachable(link));
    EXPECT_TRUE(files.isReachable(inside));
}

TEST_F(Files, removingAMissingItemFailsWithItsName)
{
    const QString missing = folder.path(u"missing"_s);
    EXPECT_EQ(files.removeItem(missing).error(),
              u"Cannot remove '%1': No such file or directory"_s.arg(missing));
    EXPECT_FALSE(files.removeItem(u"/proc/version"_s));
}

TEST_F(Files, aNameWithANullCharacterIsNotTheOneThatEndsThere)
{
    const QString kept = folder.file(u"kept"_s);
    const QString odd = kept + QChar::Null + u".app"_s;
    EXPECT_FALSE(files.isReachable(odd));
    EXPECT_FALSE(files.removeItem(odd));
    EXPECT_FALSE(files.copyItem(odd, folder.path(u"copy"_s)));
    EXPECT_TRUE(files.isReachable(kept));
}

TEST_F(Files, aMovedItemIsTheSameItemUnderItsNewPath)
{
    folder.folder(u"from/deep"_s);
    folder.file(u"from/deep/file"_s, "text");
    const ino_t inode = stateOf(folder.path(u"from"_s)).st_ino;
    ASSERT_TRUE(files.moveItem(folder.path(u"from"_s), folder.path(u"to"_s)));
    EXPECT_FALSE(files.isReachable(folder.path(u"from"_s)));
    EXPECT_EQ(stateOf(folder.path(u"to"_s)).st_ino, inode);
    EXPECT_EQ(contentsOf(folder.path(u"to/deep/file"_s)), "text");
}

TEST_F(Files, nothingIsMovedOntoAnOccupiedPath)
{
    const QString from = folder.file(u"from"_s, "new");
    const QString to = folder.file(u"to"_s, "old");
    EXPECT_EQ(files.moveItem(from, to).error(), u"Cannot move '%1' to '%2': File exists"_s.arg(from, to));
    EXPECT_EQ(contentsOf(from), "new");
    EXPECT_EQ(contentsOf(to), "old");
    EXPECT_FALSE(files.moveItem(folder.folder(u"one"_s), folder.folder(u"empty"_s)));
    EXPECT_FALSE(files.moveItem(from, folder.link(u"dangling"_s, u"/no/such/item"_s)));
}

TEST_F(Files, aMissingItemCannotBeMoved)
{
    EXPECT_FALSE(files.moveItem(folder.path(u"missing"_s), folder.path(u"to"_s)));
    EXPECT_FALSE(files.isReachable(folder.path(u"to"_s)));
}

TEST_F(Files, permissionsAreSetAsInChmod)
{
    const QString file = folder.file(u"file"_s);
    ASSERT_TRUE(files.setPermissions(file, 04751));
    EXPECT_EQ(modeOf(file), 04751U);
    const QString missing = folder.path(u"missing"_s);
    EXPECT_EQ(files.setPermissions(missing, 0644).error(),
              u"Cannot set the permissions of '%1': No such file or directory"_s.arg(missing));
}

TEST_F(Files, permissionsAreSetThroughNoLinkOfTheItem)
{
    folder.folder(u"item/real"_s);
    const QString own = folder.file(u"item/real/file"_s);
    const QString foreign = folder.file(u"foreign"_s);
    ASSERT_TRUE(QFile::link(foreign, folder.path(u"item/link"_s)));
    ASSERT_TRUE(QFile::link(folder.path(u"item/real"_s), folder.path(u"item/folder"_s)));
    const mode_t before = stateOf(foreign).st_mode;
    EXPECT_FALSE(files.setPermissionsInside(folder.path(u"item"_s), u"link"_s, 0444));
    EXPECT_FALSE(files.setPermissionsInside(folder.path(u"item"_s), u"folder/file"_s, 0444));
    EXPECT_FALSE(files.setPermissionsInside(folder.path(u"item"_s), u"real"_s, 0444)) << "a folder";
    EXPECT_EQ(stateOf(foreign).st_mode, before);
    EXPECT_NE(stateOf(own).st_mode & 0777, 0444U);
    ASSERT_TRUE(QFile::link(folder.path(u"item"_s), folder.path(u"way"_s)));
    EXPECT_TRUE(files.setPermissionsInside(folder.path(u"way"_s), u"real/file"_s, 0444))
        << "the item by a link";
    EXPECT_EQ(stateOf(own).st_mode & 0777, 0444U);
}

TEST_F(Files, aFolderIsClaimedOnceWhateverItsName)
{
    const QString path = folder.folder(u"claimed"_s);
    EXPECT_FALSE(files.isClaimed(path));
    auto claim = files.claimFolder(path);
    ASSERT_TRUE(claim);
    EXPECT_TRUE(files.isClaimed(path));
    EXPECT_FALSE(files.claimFolder(path));
    ASSERT_TRUE(files.moveItem(path, folder.path(u"renamed"_s)));
    EXPECT_TRUE(files.isClaimed(folder.path(u"renamed"_s)));
    EXPECT_FALSE(files.isClaimed(path));
    claim.reset();
    EXPECT_FALSE(files.isClaimed(folder.path(u"renamed"_s)));
    EXPECT_FALSE(files.claimFolder(path)) << "nothing is there";
}

TEST_F(Files, theStateOfAnItemTellsOfEachChange)
{
    const QString item = folder.folder(u"item"_s);
    const QString file = folder.file(u"item/file"_s, "one");
    QSet<QByteArray> states{files.stateOf(item)};
    const auto changed = [&] {
        const qsizetype before = states.size();
        states.insert(files.stateOf(item));
        return states.size() > before;
    };
    EXPECT_FALSE(changed());
    folder.file(u"item/file"_s, "three");
    EXPECT_TRUE(changed());
    ASSERT_TRUE(files.setPermissions(file, 0600));
    EXPECT_TRUE(changed());
    ASSERT_TRUE(QFile::link(u"file"_s, folder.path(u"item/link"_s)));
    EXPECT_TRUE(changed());
    ASSERT_TRUE(files.moveItem(file, folder.path(u"item/.hidden"_s)));
    EXPECT_TRUE(changed());
    ASSERT_TRUE(files.moveItem(item, folder.path(u"renamed"_s)));
    EXPECT_TRUE(states.contains(files.stateOf(folder.path(u"renamed"_s))))
        << "its own name is none of its own";
    EXPECT_EQ(files.stateOf(item), QByteArray());
}
