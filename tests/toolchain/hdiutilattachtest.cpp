// Images that are attached: what comes back, where it lies, and how it goes.

#include "toolchain/hdiutilattachtest.h"

#include <QDir>
#include <QEventLoop>
#include <QFileSystemWatcher>
#include <QTimer>

using namespace Qt::StringLiterals;

TEST_F(HdiutilAttach, theLastColumnOfTheLastLineIsAFolderWithTheFiles)
{
    const ToolResult attached = attach(m_image);
    ASSERT_EQ(attached.status, 0) << attached.error.toStdString();
    const QStringList lines = attached.output.split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0], u"/dev/disk4          \tGUID_partition_scheme          \t"_s);
    EXPECT_EQ(lines[1].section(u'\t', 0, 1), u"/dev/disk4s1        \tApple_HFS                      "_s);
    const QString mountPoint = mountPointIn(attached);
    EXPECT_EQ(mountPoint, statePath(u"diskimages/volumes/My App"_s));
    EXPECT_EQ(namesIn(mountPoint), QStringList{u"My App.app"_s});
    EXPECT_EQ(QProcess::execute(
                  u"diff"_s,
                  {u"-r"_s, u"--no-dereference"_s, path(u"My App.app"_s), mountPoint + u"/My App.app"_s}),
              0);
}

TEST_F(HdiutilAttach, modesLinksAndDatesComeBack)
{
    bundlebuilder::writeFile(path(u"folder/closed/file"_s), "1");
    ASSERT_TRUE(QFile::link(u"closed/file"_s, path(u"folder/link"_s)));
    ASSERT_EQ(chmod(QFile::encodeName(path(u"folder/closed/file"_s)).constData(), 04751), 0);
    ASSERT_EQ(chmod(QFile::encodeName(path(u"folder/closed"_s)).constData(), 0555), 0);
    const QString volume = mountPointIn(attach(imageOf(path(u"folder"_s))));
    struct stat before = {};
    struct stat after = {};
    ASSERT_EQ(stat(QFile::encodeName(path(u"folder/closed/file"_s)).constData(), &before), 0);
    ASSERT_EQ(stat(QFile::encodeName(volume + u"/closed/file"_s).constData(), &after), 0);
    EXPECT_EQ(after.st_mode & 07777, mode_t(0751)) << "without the right to act as another user";
    EXPECT_EQ(after.st_mtim.tv_sec, before.st_mtim.tv_sec);
    ASSERT_EQ(stat(QFile::encodeName(volume + u"/closed"_s).constData(), &after), 0);
    EXPECT_EQ(after.st_mode & 07777, mode_t(0555));
    char target[100] = {};
    ASSERT_GT(readlink(QFile::encodeName(volume + u"/link"_s).constData(), target, sizeof target - 1), 0);
    EXPECT_STREQ(target, "closed/file");
    EXPECT_EQ(detach({volume}).status, 0);
    EXPECT_FALSE(QFile::exists(volume));
}

TEST_F(HdiutilAttach, namesComeBackAsTheyWereComposedOrNot)
{
    const QStringList names{
        u"-dash"_s,        u" blank "_s,     u"\U0001F600.txt"_s,       u"Gr\u00f6\u00dfe"_s,
        u"\ud55c\uae00"_s, u"a:b"_s,         QString(255, QChar(u'n')), u"\u212b"_s,
        u"Gro\u0308ber"_s, u"\u1112\u1161"_s};
    for (const QString &name : names)
        bundlebuilder::writeFile(path(u"folder/"_s) + name, name.toUtf8());
    const QString image = imageOf(path(u"folder"_s));
    EXPECT_EQ(QProcess::execute(u"diff"_s, {u"-r"_s, path(u"folder"_s), mountPointIn(attach(image))}), 0);
    const QString listing = runProgram(u"fshfsinfo"_s, {u"-H"_s, volumeOf(image)}).output;
    EXPECT_TRUE(listing.contains(u"Gro\u0308\u00dfe"_s)) << "macOS reads it taken apart";
}

TEST_F(HdiutilAttach, attributesAndResourceForksComeBack)
{
    using toolchain::FileAttributes;
    const FileAttributes small{{"com.apple.FinderInfo", "TEXTttxt" + QByteArray(24, '\0')},
                               {"com.apple.ResourceFork", QByteArray(2000, 'r')},
                               {"com.apple.cs.CodeDirectory", "a directory"},
                               {"empty", ""},
                               {u"\u00e9"_s.toUtf8(), "a name with an accent"}};
    const FileAttributes large{{"com.apple.ResourceFork", QByteArray(300'000, 'R')},
                               {"com.apple.cs.CodeSignature", QByteArray(9000, 's')},
                               {"fits", QByteArray(3802, 'f')},
                               {"fits not", QByteArray(3803, 'n')}};
    bundlebuilder::writeFile(path(u"folder/sub/small"_s), "1");
    bundlebuilder::writeFile(path(u"folder/large"_s), "2");
    const QList<std::pair<QString, FileAttributes>> items{
        {u"sub/small"_s, small}, {u"large"_s, large}, {u"sub"_s, {{"on a folder", "3"}}}};
    for (const auto &[name, attributes] : items) {
        for (auto attribute = attributes.begin(); attribute != attributes.end(); ++attribute)
            ASSERT_EQ(toolchain::writeAttribute(path(u"folder/"_s) + name, attribute.key(), attribute.value())
                          .error(),
                      QString());
    }
    const QString image = imageOf(path(u"folder"_s));
    EXPECT_TRUE(runProgram(u"7z"_s, {u"t"_s, image}).output.contains(u"Everything is Ok"_s));
    EXPECT_FALSE(listed(image).contains(u"._large"_s)) << "attributes are no file of their own";
    const QString volume = mountPointIn(attach(image));
    for (const auto &[name, attributes] : items)
        EXPECT_EQ(*toolchain::readAttributes(volume + u'/' + name), attributes) << name.toStdString();
}

TEST_F(HdiutilAttach, theNamesOfOneFileStayTheNamesOfOneFile)
{
    bundlebuilder::writeFile(path(u"folder/sub/first"_s), "linked");
    const QByteArray first = QFile::encodeName(path(u"folder/sub/first"_s));
    ASSERT_EQ(link(first.constData(), QFile::encodeName(path(u"folder/second"_s)).constData()), 0);
    ASSERT_EQ(link(first.constData(), QFile::encodeName(path(u"folder/third"_s)).constData()), 0);
    ASSERT_EQ(link(first.constData(), QFile::encodeName(path(u"outside"_s)).constData()), 0);
    ASSERT_EQ(toolchain::writeAttribute(path(u"outside"_s), "note", "kept").error(), QString());
    const QString image = imageOf(path(u"folder"_s));
    const QString volume = mountPointIn(attach(image));
    struct stat statuses[3] = {};
    int number = 0;
    for (const QString &name : {u"sub/first"_s, u"second"_s, u"third"_s}) {
        ASSERT_EQ(stat(QFile::encodeName(volume + u'/' + name).constData(), &statuses[number]), 0);
        EXPECT_EQ(statuses[number].st_ino, statuses[0].st_ino);
        EXPECT_EQ(statuses[number++].st_nlink, 3U);
        EXPECT_EQ(bundlebuilder::readFile(volume + u'/' + name), "linked");
        EXPECT_EQ(toolchain::readAttributes(volume + u'/' + name)->value("note"), "kept");
    }
    EXPECT_EQ(namesIn(volume).size(), 3) << "the folder of links stays hidden";
    const QString entry = runProgram(u"fshfsinfo"_s, {u"-H"_s, volumeOf(image)}).output;
    EXPECT_TRUE(entry.contains(u"/sub/first"_s)) << entry.toStdString();
}

TEST_F(HdiutilAttach, detachRemovesTheCopyByMountPointOrByDevice)
{
    for (const QString &name :
         {u"/dev/disk4"_s, u"disk4"_s, u"/dev/disk4s1"_s, statePath(u"diskimages/volumes/My App/"_s)}) {
        ASSERT_EQ(attach(m_image).status, 0);
        const ToolResult detached = detach({u"-force"_s, name});
        EXPECT_EQ(detached.status, 0) << name.toStdString();
        EXPECT_EQ(detached.output, u"\"disk4\" ejected.\n"_s);
        expectNothingAttached();
    }
}

TEST_F(HdiutilAttach, whatIsNotAttachedCannotBeDetached)
{
    QDir().mkpath(path(u"a folder"_s));
    for (const QString &name : {u"disk4"_s, path(u"a folder"_s), path(u"nowhere"_s)}) {
        const ToolResult result = detach({name});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.error, u"hdiutil: detach failed - No such file or directory\n"_s);
    }
    EXPECT_TRUE(QFile::exists(path(u"a folder"_s)));
}

TEST_F(HdiutilAttach, aMisspeltVerbIsRefusedAndTheImageStaysAttached)
{
    const QString volume = mountPointIn(attach(m_image));
    const ToolResult result = run(hdiutil, {u"dettach"_s, u"-force"_s, volume});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, QString());
    EXPECT_TRUE(result.error.startsWith(u"hdiutil: unrecognized verb \"dettach\"\nUsage: hdiutil "_s));
    EXPECT_EQ(namesIn(volume), QStringList{u"My App.app"_s});
    EXPECT_EQ(run(hdiutil, {}).status, 2);
}

TEST_F(HdiutilAttach, anAttachedImageKeepsItsPlace)
{
    const ToolResult first = attach(m_image);
    EXPECT_EQ(attach(m_image).output, first.output);
    EXPECT_EQ(namesIn(statePath(u"diskimages/volumes"_s)), QStringList{u"My App"_s});
}

TEST_F(HdiutilAttach, anotherImageUnderTheSamePathGetsAPlaceOfItsOwn)
{
    const QString first = mountPointIn(attach(m_image));
    bundlebuilder::writeFile(path(u"My App.app/Contents/new"_s), "new");
    ASSERT_EQ(create(path(u"My App.app"_s), m_image).status, 0);
    const QString second = mountPointIn(attach(m_image));
    EXPECT_EQ(second, first + u" 1"_s);
    EXPECT_TRUE(QFile::exists(second + u"/My App.app/Contents/new"_s));
    EXPECT_FALSE(QFile::exists(first + u"/My App.app/Contents/new"_s));
    EXPECT_EQ(detach({first}).status, 0);
    EXPECT_TRUE(QFile::exists(second));
}

TEST_F(HdiutilAttach, aChosenMountPointIsUsed)
{
    QDir().mkpath(path(u"empty"_s));
    EXPECT_EQ(
        mountPointIn(run(
            hdiutil, {u"attach"_s, u"-nobrowse"_s, u"-readonly"_s, u"-mountpoint"_s, u"empty/"_s, m_image})),
        path(u"empty"_s));
    EXPECT_TRUE(QFile::exists(path(u"empty/My App.app"_s)));
    EXPECT_EQ(detach({path(u"empty"_s)}).status, 0);
    EXPECT_TRUE(QFile::exists(path(u"empty"_s))) << "it was there before";
    EXPECT_EQ(mountPointIn(run(hdiutil, {u"attach"_s, u"-mountroot"_s, path(u"new"_s), m_image})),
              path(u"new/My App"_s));
    EXPECT_EQ(detach({path(u"new/My App"_s)}).status, 0);
    EXPECT_TRUE(mountPointIn(run(hdiutil, {u"attach"_s, u"-mountrandom"_s, path(u"new"_s), m_image}))
                    .startsWith(path(u"new/dmg."_s)));
}

TEST_F(HdiutilAttach, aMountPointThatIsInUseIsRefused)
{
    bundlebuilder::writeFile(path(u"full/file"_s), "mine");
    const ToolResult result = run(hdiutil, {u"attach"_s, u"-mountpoint"_s, path(u"full"_s), m_image});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, u"hdiutil: attach failed - %1: Directory not empty\n"_s.arg(path(u"full"_s)));
    EXPECT_EQ(namesIn(path(u"full"_s)), QStringList{u"file"_s});
    EXPECT_EQ(run(hdiutil, {u"attach"_s, u"-mountpoint"_s, path(u"full/file"_s), m_image}).status, 1);
    expectNothingAttached();
}

TEST_F(HdiutilAttach, aPropertyListNamesTheMountPoint)
{
    const ToolResult attached = run(hdiutil, {u"attach"_s, u"-plist"_s, m_image});
    const QVariantList entities = platform::propertyListFromData(attached.output.toUtf8())
                                      .valueOr({})
                                      .toMap()
                                      .value(u"system-entities"_s)
                                      .toList();
    ASSERT_EQ(entities.size(), 2);
    EXPECT_FALSE(entities[0].toMap().contains(u"mount-point"_s));
    EXPECT_EQ(entities[1].toMap()[u"dev-entry"_s].toString(), u"/dev/disk4s1"_s);
    EXPECT_EQ(entities[1].toMap()[u"mount-point"_s].toString(), statePath(u"diskimages/volumes/My App"_s));
}

TEST_F(HdiutilAttach, infoListsWhatIsAttached)
{
    EXPECT_EQ(run(hdiutil, {u"info"_s}).output, QString());
    const QString volume = mountPointIn(attach(m_image));
    const QString list = run(hdiutil, {u"info"_s}).output;
    EXPECT_TRUE(list.contains(m_image) && list.contains(volume)) << list.toStdString();
}

TEST_F(HdiutilAttach, leavesNothingWhenTheCopyCannotGrow)
{
    bundlebuilder::writeFile(path(u"noise/noise"_s), randomBytes(1 << 20));
    const ToolResult result = run(hdiutil, {u"attach"_s, imageOf(path(u"noise"_s))}, {}, limitFileSize);
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.error.endsWith(u"/noise: File too large\n"_s)) << result.error.toStdString();
    expectNothingAttached();
}

TEST_F(HdiutilAttach, whatAKilledAttachHasLeftIsClearedAway)
{
    QFile large(path(u"large/file"_s));
    QDir().mkpath(path(u"large"_s));
    ASSERT_TRUE(large.open(QIODevice::WriteOnly) && large.resize(qint64(1) << 28));
    const QString image = imageOf(path(u"large"_s));
    QDir().mkpath(statePath(u"diskimages/volumes"_s));
    QFileSystemWatcher watcher({statePath(u"diskimages/volumes"_s)});
    QEventLoop loop;
    QObject::connect(&watcher, &QFileSystemWatcher::directoryChanged, &loop, &QEventLoop::quit);
    QTimer::singleShot(30'000, &loop, [&loop] { loop.exit(1); });
    const auto process = start(hdiutil, {u"attach"_s, u"-noverify"_s, image});
    ASSERT_EQ(loop.exec(), 0) << "no copy was begun";
    process->kill();
    ASSERT_TRUE(process->waitForFinished());
    EXPECT_EQ(run(hdiutil, {u"info"_s}).output, QString());
    expectNothingAttached();
}

TEST_F(HdiutilAttach, aCopyThatNothingCanReachAnyMoreIsTidiedAway)
{
    const QString left = mountPointIn(attach(m_image));
    const QString chosen = path(u"chosen"_s);
    const QString other = path(u"other.dmg"_s);
    ASSERT_TRUE(QFile::copy(m_image, other));
    ASSERT_EQ(run(hdiutil, {u"attach"_s, other, u"-mountpoint"_s, chosen}).status, 0);
    ASSERT_EQ(run(hdiutil, {u"info"_s}).status, 0);
    EXPECT_TRUE(QFile::exists(left)) << "its image is still there";
    ASSERT_TRUE(QFile::remove(m_image) && QFile::remove(other));
    {
        QProcess worker;
        worker.setWorkingDirectory(left);
        worker.start(u"cat"_s, QStringList());
        ASSERT_TRUE(worker.waitForStarted());
        ASSERT_EQ(run(hdiutil, {u"info"_s}).status, 0);
        EXPECT_TRUE(QFile::exists(left)) << "a process works in it";
        worker.closeWriteChannel();
        ASSERT_TRUE(worker.waitForFinished());
    }
    ASSERT_EQ(run(hdiutil, {u"info"_s}).status, 0);
    EXPECT_FALSE(QFile::exists(left));
    EXPECT_TRUE(QFile::exists(chosen)) << "a person has chosen its place";
}

TEST_F(HdiutilAttach, refusesArgumentsThatItDoesNotUnderstand)
{
    for (const QStringList &arguments : {QStringList{u"attach"_s},
                                         {u"attach"_s, u"-shadow"_s, m_image},
                                         {u"attach"_s, m_image, m_image},
                                         {u"detach"_s},
                                         {u"verify"_s},
                                         {u"imageinfo"_s},
                                         {u"info"_s, m_image}})
        EXPECT_EQ(run(hdiutil, arguments).status, 2) << arguments.join(u' ').toStdString();
}
