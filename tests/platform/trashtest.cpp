// Resolved copies, folders for replacements, and the trash.

#include "platform/posixfileservicetest.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

using namespace Qt::StringLiterals;
using namespace platform;

TEST_F(Files, aResolvedCopyOfALinkIsOneOfWhatItLeadsTo)
{
    folder.folder(u"real"_s);
    folder.file(u"real/file"_s, "text");
    folder.link(u"first"_s, folder.path(u"real"_s));
    ASSERT_TRUE(files.copyResolvedItem(folder.link(u"second"_s, u"first"_s), folder.path(u"copy"_s)));
    EXPECT_TRUE(S_ISDIR(stateOf(folder.path(u"copy"_s)).st_mode));
    ASSERT_TRUE(files.writeFile(folder.path(u"copy/file"_s), "other"));
    EXPECT_EQ(contentsOf(folder.path(u"real/file"_s)), "text");
    ASSERT_TRUE(files.copyResolvedItem(folder.path(u"real"_s), folder.path(u"another copy"_s)));
    EXPECT_EQ(contentsOf(folder.path(u"another copy/file"_s)), "text");
}

TEST_F(Files, aResolvedCopyOfALinkThatLeadsNowhereNamesTheLink)
{
    const QString link = folder.link(u"link"_s, u"nowhere"_s);
    EXPECT_EQ(files.copyResolvedItem(link, folder.path(u"copy"_s)).error(),
              u"Cannot copy '%1': No such file or directory"_s.arg(link));
    EXPECT_FALSE(files.isReachable(folder.path(u"copy"_s)));
}

TEST_F(Files, aReplacementDirectoryIsNewEmptyPrivateAndOnTheSameVolume)
{
    const QString item = folder.file(u"item"_s);
    const auto first = files.replacementDirectory(item);
    const auto second = files.replacementDirectory(item);
    ASSERT_TRUE(first && second);
    EXPECT_NE(*first, *second);
    EXPECT_EQ(modeOf(*first), 0700U);
    EXPECT_TRUE(QDir(*first).isEmpty());
    EXPECT_EQ(stateOf(*first).st_dev, stateOf(item).st_dev);
}

TEST_F(Files, aReplacementDirectoryIsAmongTheTemporaryFilesWhereTheseAreOnTheVolume)
{
    const ChangedVariable temporaryFiles("TMPDIR", folder.folder(u"temporary"_s));
    const auto made = files.replacementDirectory(folder.file(u"item"_s));
    ASSERT_TRUE(made);
    EXPECT_TRUE(made->startsWith(folder.path(u"temporary/"_s))) << made->toStdString();
}

TEST_F(Files, aReplacementDirectoryIsBesideTheItemWhereNoTemporaryFilesAreOnTheVolume)
{
    const ChangedVariable temporaryFiles("TMPDIR", u"/proc"_s);
    const ChangedVariable cachedFiles("XDG_CACHE_HOME", u"/proc"_s);
    const auto made = files.replacementDirectory(folder.file(u"item"_s));
    ASSERT_TRUE(made);
    EXPECT_TRUE(made->startsWith(folder.path(u".replacement-"_s))) << made->toStdString();
    EXPECT_EQ(files.contentsOfDirectory(folder.path(), FolderLink::follow),
              QStringList{u"item"_s}); // nobody sees it
}

TEST_F(Files, aReplacementDirectoryGoesWithTheServiceAndWithWhatStandsBesideIt)
{
    QString empty;
    QString used;
    {
        PosixFileService service;
        empty = *service.replacementDirectory(folder.file(u"item"_s));
        used = *service.replacementDirectory(folder.path(u"item"_s));
        ASSERT_TRUE(service.createFile(used + u"/file"_s));
        ASSERT_TRUE(service.createFile(used + u".item"_s));
    }
    EXPECT_FALSE(files.isReachable(empty));
    EXPECT_FALSE(files.isReachable(used));
    EXPECT_FALSE(files.isReachable(used + u".item"_s));
    EXPECT_TRUE(files.isReachable(folder.path(u"item"_s)));
}

TEST_F(Files, withoutAPlaceForAReplacementDirectoryTheItemIsNamed)
{
    const QString item = folder.path(u"no/such/item"_s);
    const auto made = files.replacementDirectory(item);
    EXPECT_FALSE(made);
    EXPECT_EQ(made.error(), u"Cannot make a replacement of '%1': No such file or directory"_s.arg(item));
}

TEST_F(Files, aTrashedItemCanBeTakenBackAndDoesNotOustAnother)
{
    qputenv("XDG_DATA_HOME", QFile::encodeName(folder.folder(u"data"_s)));
    QString probe;
    ASSERT_TRUE(QFile::moveToTrash(folder.file(u"probe"_s), &probe)); // tells where this host has its trash
    const QDir trash = QFileInfo(probe).dir();
    const QString name = u"Foo "_s + QString::number(getpid());
    QSet<ino_t> inodes;
    for (int i = 0; i < 2; ++i) {
        folder.folder(name);
        folder.file(name + u"/file"_s, "text");
        inodes += stateOf(folder.path(name)).st_ino;
        const Outcome outcome = files.trashItem(folder.path(name));
        ASSERT_TRUE(outcome) << outcome.error().toStdString();
        EXPECT_FALSE(files.isReachable(folder.path(name)));
    }
    for (const QString &trashed : trash.entryList({name + u'*'})) {
        inodes.remove(stateOf(trash.filePath(trashed)).st_ino);
        EXPECT_EQ(contentsOf(trash.filePath(trashed + u"/file"_s)), "text");
        const QString info = trash.filePath(u"../info/"_s + trashed + u".trashinfo"_s);
        EXPECT_TRUE(contentsOf(info).contains("\nPath="));
        EXPECT_TRUE(files.removeItem(trash.filePath(trashed)));
        EXPECT_TRUE(files.removeItem(info));
    }
    EXPECT_TRUE(inodes.isEmpty()); // both were there
    EXPECT_TRUE(files.removeItem(probe));
    EXPECT_TRUE(files.removeItem(trash.filePath(u"../info/%1.trashinfo"_s.arg(QFileInfo(probe).fileName()))));
}

TEST_F(Files, theTrashKnowsWhereAnItemWasWhateverItsName)
{
    const ChangedVariable data("XDG_DATA_HOME", folder.folder(u"data"_s));
    const QString item = folder.file(u"100 %41 é\n.app"_s, "text");
    const Outcome outcome = files.trashItem(item);
    ASSERT_TRUE(outcome) << outcome.error().toStdString();
    QStringList described = QDir(folder.path(u"data/Trash/info"_s)).entryList(QDir::Files);
    ASSERT_EQ(described.size(), 1);
    const QByteArray info = contentsOf(folder.path(u"data/Trash/info/"_s + described.first()));
    const QByteArray place = QFile::encodeName(folder.path()).toPercentEncoding("/");
    EXPECT_TRUE(
        info.startsWith("[Trash Info]\nPath=" + place + "/100%20%2541%20%C3%A9%0A.app\nDeletionDate="))
        << info.toStdString();
}

TEST_F(Files, withoutAUsableTrashNothingIsTrashedAnywhereElse)
{
    const ChangedVariable data("XDG_DATA_HOME", folder.folder(u"data"_s));
    folder.file(u"data/Trash"_s, "no folder");
    const QString item = folder.file(u"item"_s);
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(folder.folder(u"current"_s)));
    EXPECT_EQ(files.trashItem(item).error(),
              u"Cannot move '%1' to the trash: the folder '%2' cannot be used"_s.arg(
                  item, folder.path(u"data/Trash"_s)));
    EXPECT_TRUE(files.isReachable(item));
    EXPECT_TRUE(QDir::current().entryList(QDir::AllEntries | QDir::NoDotAndDotDot).isEmpty());
    QDir::setCurrent(before);
}

TEST_F(Files, aMissingItemCannotBeTrashed)
{
    const QString missing = folder.path(u"missing"_s);
    EXPECT_TRUE(
        files.trashItem(missing).error().startsWith(u"Cannot move '%1' to the trash: "_s.arg(missing)));
}
