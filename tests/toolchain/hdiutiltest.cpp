#include "platform/propertylist/propertylist.h"
#include "toolchain/bundlebuilder.h"
#include "toolchain/diskimagefixture.h"

#include <QDateTime>
#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QTimer>
#include <QVariantMap>
#include <QtEndian>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>

using namespace Qt::StringLiterals;

namespace {

/// The CRC-32 that Ethernet and zip files use, bit by bit.
quint32 crc32Of(const QByteArray &bytes)
{
    quint32 rest = 0xffffffff;
    for (const char byte : bytes) {
        rest ^= quint8(byte);
        for (int bit = 0; bit < 8; ++bit)
            rest = (rest >> 1) ^ (rest % 2 != 0 ? 0xedb88320 : 0);
    }
    return ~rest;
}

template <typename Number>
Number numberAt(const QByteArray &bytes, qsizetype offset)
{
    return qFromBigEndian<Number>(bytes.constData() + offset);
}

void limitMemory()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    constexpr rlim_t mostBytes = RLIM_INFINITY; // a sanitizer sets large parts of the memory aside for itself
#else
    constexpr rlim_t mostBytes = 64 << 20;
#endif
    const rlimit limit{mostBytes, mostBytes};
    setrlimit(RLIMIT_DATA, &limit);
}

void makeSparse(const QString &path, qint64 size)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.resize(size));
}

class HdiutilCreate : public DiskImageFixture {
protected:
    void SetUp() override
    {
        DiskImageFixture::SetUp();
        QDir().mkpath(path(u"out"_s));
        bundlebuilder::makeApp(path(u"My App.app"_s), u"com.example.app"_s);
        bundlebuilder::writeFile(path(u"folder/a file"_s), "inside");
    }

    [[nodiscard]] ToolResult createPlainly(const QStringList &arguments) const
    {
        return run(hdiutil, QStringList{u"create"_s} + arguments);
    }
};

} // namespace

TEST_F(HdiutilCreate, theApplicationsArgumentsMakeAnImageWithTheBundleItself)
{
    const ToolResult result = create(path(u"My App.app"_s), path(u"out/My_App.dmg"_s));
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_EQ(platform::propertyListFromData(result.output.toUtf8()).valueOr({}),
              QVariant(QVariantList{path(u"out/My_App.dmg"_s)}));
    const auto items = listed(path(u"out/My_App.dmg"_s));
    EXPECT_TRUE(items.contains(u"My App.app/Contents/Info.plist"_s));
    EXPECT_EQ(items[u"My App.app/Contents/MacOS/My App"_s][u"Size"_s].toLongLong(),
              bundlebuilder::universalMachO().size());
}

TEST_F(HdiutilCreate, twoReadersGetTheSameDiskOutOfAnImage)
{
    bundlebuilder::writeFile(path(u"folder/noise"_s), randomBytes(700'000));
    makeSparse(path(u"folder/zeros"_s), 900'000);
    const QString image = imageOf(path(u"folder"_s));
    QProcess reader;
    reader.start(u"7z"_s, {u"e"_s, u"-so"_s, u"-tdmg"_s, image});
    ASSERT_TRUE(reader.waitForFinished());
    const QByteArray disk = reader.readAllStandardOutput();
    EXPECT_GT(disk.size(), 1'600'000);
    EXPECT_TRUE(bundlebuilder::readFile(diskOf(image)) == disk);
}

TEST_F(HdiutilCreate, anotherProgramFindsNoFaultInAnImage)
{
    bundlebuilder::writeFile(path(u"folder/noise"_s), randomBytes(700'000));
    bundlebuilder::writeFile(path(u"folder/empty"_s), {});
    QDir().mkpath(path(u"folder/empty folder"_s));
    makeSparse(path(u"folder/zeros"_s), 900'000);
    const QString image = imageOf(path(u"folder"_s));
    EXPECT_TRUE(runProgram(u"7z"_s, {u"t"_s, image}).output.contains(u"Everything is Ok"_s));
    EXPECT_TRUE(runProgram(u"7z"_s, {u"t"_s, u"-tdmg"_s, image}).output.contains(u"Everything is Ok"_s));
    EXPECT_TRUE(
        runProgram(u"7z"_s, {u"t"_s, u"-tgpt"_s, diskOf(image)}).output.contains(u"Everything is Ok"_s));
    EXPECT_TRUE(
        runProgram(u"7z"_s, {u"t"_s, u"-thfs"_s, volumeOf(image)}).output.contains(u"Everything is Ok"_s));
}

TEST_F(HdiutilCreate, eachFormatIsReadByAnotherProgramAndKnownByItsName)
{
    bundlebuilder::writeFile(path(u"folder/noise"_s), randomBytes(700'000));
    bundlebuilder::writeFile(path(u"folder/text"_s),
                             QByteArray("some text, again and again ").repeated(90'000));
    makeSparse(path(u"folder/zeros"_s), 3'000'000);
    for (const QString &format : {u"UDZO"_s, u"UDBZ"_s, u"ULMO"_s, u"UDRO"_s}) {
        const QString image = path(u"out/"_s) + format + u".dmg"_s;
        ASSERT_EQ(createPlainly({image, u"-format"_s, format, u"-srcfolder"_s, path(u"folder"_s)}).status, 0);
        EXPECT_TRUE(runProgram(u"7z"_s, {u"t"_s, image}).output.contains(u"Everything is Ok"_s));
        EXPECT_EQ(run(hdiutil, {u"imageinfo"_s, u"-format"_s, image}).output, format + u'\n');
        EXPECT_EQ(run(hdiutil, {u"verify"_s, image}).status, 0) << format.toStdString();
        const QString volume = mountPointIn(attach(image));
        EXPECT_EQ(QProcess::execute(u"diff"_s, {u"-r"_s, path(u"folder"_s), volume}), 0);
    }
    EXPECT_LT(QFileInfo(path(u"out/ULMO.dmg"_s)).size(), QFileInfo(path(u"out/UDRO.dmg"_s)).size() / 3);
}

TEST_F(HdiutilCreate, aFormatThatIsNotMadeIsRefusedByName)
{
    for (const QString &format : {u"ULFO"_s, u"UDRW"_s, u"UDSP"_s, u"nothing"_s}) {
        const ToolResult result =
            createPlainly({path(u"out/a.dmg"_s), u"-srcfolder"_s, path(u"folder"_s), u"-format"_s, format});
        EXPECT_EQ(result.status, 2);
        EXPECT_TRUE(result.error.contains(format)) << result.error.toStdString();
    }
    EXPECT_EQ(namesIn(path(u"out"_s)), QStringList());
}

TEST_F(HdiutilCreate, theTrailerHasTheChecksumsOfTheStoredBytesAndOfAllPartitions)
{
    const QByteArray image = bundlebuilder::readFile(imageOf(path(u"My App.app"_s)));
    const QByteArray trailer = image.last(512);
    const auto listOffset = qsizetype(numberAt<quint64>(trailer, 216));
    EXPECT_EQ(numberAt<quint64>(trailer, 32), quint64(listOffset)) << "the list follows the stored bytes";
    EXPECT_EQ(numberAt<quint32>(trailer, 88), crc32Of(image.first(listOffset)));
    const QByteArray list = image.mid(listOffset, qsizetype(numberAt<quint64>(trailer, 224)));
    const QVariantMap tables =
        platform::propertyListFromData(list).valueOr({}).toMap().value(u"resource-fork"_s).toMap();
    QByteArray checksums;
    for (const QVariant &table : tables.value(u"blkx"_s).toList())
        checksums += table.toMap()[u"Data"_s].toByteArray().mid(72, 4);
    EXPECT_EQ(checksums.size(), 7 * 4);
    EXPECT_EQ(numberAt<quint32>(trailer, 360), crc32Of(checksums));
}

TEST_F(HdiutilCreate, filesComeBackByteForByte)
{
    bundlebuilder::writeFile(path(u"folder/noise"_s), randomBytes(700'000));
    bundlebuilder::writeFile(path(u"folder/one block"_s), QByteArray(4096, 'b'));
    bundlebuilder::writeFile(path(u"folder/empty"_s), {});
    const QString folder = unpacked(imageOf(path(u"folder"_s)));
    EXPECT_EQ(QProcess::execute(u"diff"_s, {u"-r"_s, path(u"folder"_s), folder}), 0);
}

TEST_F(HdiutilCreate, keepsModesLinksAndDates)
{
    const QString script = path(u"folder/script"_s);
    bundlebuilder::writeFile(script, "#!/bin/sh\n");
    const std::array times{timespec{1'600'000'000, 0}, timespec{1'500'000'000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, QFile::encodeName(script).constData(), times.data(), 0), 0);
    ASSERT_EQ(chmod(QFile::encodeName(script).constData(), 0750), 0);
    bundlebuilder::writeFile(path(u"folder/sub/inner"_s), "1");
    ASSERT_TRUE(QFile::link(u"sub/inner"_s, path(u"folder/link"_s)));
    ASSERT_TRUE(QFile::link(u"nowhere"_s, path(u"folder/dangling"_s)));
    const QString image = imageOf(path(u"folder"_s));
    const auto items = listed(image);
    EXPECT_EQ(items[u"script"_s][u"Mode"_s], u"-rwxr-x---"_s);
    EXPECT_EQ(items[u"link"_s][u"Mode"_s], u"lrwxrwxrwx"_s);
    EXPECT_TRUE(items[QString()][u"Mode"_s].startsWith(u'd'));
    const QString folder = unpacked(image);
    EXPECT_EQ(QFileInfo(folder + u"/script"_s).lastModified().toSecsSinceEpoch(), 1'500'000'000);
    char target[100] = {};
    ASSERT_GT(readlink(QFile::encodeName(folder + u"/link"_s).constData(), target, sizeof target - 1), 0);
    EXPECT_STREQ(target, "sub/inner");
    EXPECT_TRUE(QFileInfo(folder + u"/dangling"_s).isSymLink());
}

TEST_F(HdiutilCreate, aPlainFolderGivesItsContents)
{
    EXPECT_EQ(listed(imageOf(path(u"folder"_s))).keys(), (QStringList{QString(), u"a file"_s}));
}

TEST_F(HdiutilCreate, aBundleWithoutAnAppsNameAndASingleFileStandForThemselves)
{
    ASSERT_TRUE(QDir().rename(path(u"My App.app"_s), path(u"My.fmplugin"_s)));
    EXPECT_TRUE(listed(imageOf(path(u"My.fmplugin"_s))).contains(u"My.fmplugin/Contents/Info.plist"_s));
    EXPECT_EQ(listed(imageOf(path(u"folder/a file"_s))).keys(), (QStringList{QString(), u"a file"_s}));
}

TEST_F(HdiutilCreate, theVolumeIsCalledAsTheSourceUnlessToldOtherwise)
{
    ASSERT_EQ(createPlainly({path(u"out/a"_s), u"-srcfolder"_s, path(u"folder/"_s)}).output,
              u"created: %1\n"_s.arg(path(u"out/a.dmg"_s)));
    const QString list =
        runProgram(u"7z"_s, {u"-thfs"_s, u"l"_s, u"-slt"_s, volumeOf(path(u"out/a.dmg"_s))}).output;
    EXPECT_TRUE(list.contains(u"Path = folder/a file"_s)) << list.toStdString();
}

TEST_F(HdiutilCreate, namesKeepTheirLetters)
{
    QStringList names{u"-dash"_s,        u" blank "_s, u"\U0001F600.txt"_s, u"Gr\u00f6\u00dfe"_s,
                      u"\ud55c\uae00"_s, u"\u212b"_s,  u"new\nline"_s,      QString(255, QChar(u'n')),
                      u".hidden"_s,      u"a\\b"_s};
    for (const QString &name : names)
        bundlebuilder::writeFile(path(u"folder/"_s) + name, name.toUtf8());
    names.append(u"a file"_s);
    QStringList found;
    for (const QString &name : namesIn(unpacked(imageOf(path(u"folder"_s)))))
        found.append(name == u"\u212b"_s ? name : name.normalized(QString::NormalizationForm_C));
    names.sort();
    found.sort();
    EXPECT_EQ(found, names);
}

TEST_F(HdiutilCreate, manyFilesAreFoundThroughAllLevelsOfTheCatalog)
{
    for (int number = 0; number < 1500; ++number)
        bundlebuilder::writeFile(path(u"folder/%1/a name that takes some room of a node %2"_s)
                                     .arg(number % 7)
                                     .arg(number, 200, 10, QChar(u'0')),
                                 QByteArray::number(number));
    const QString folder = unpacked(imageOf(path(u"folder"_s)));
    EXPECT_EQ(QProcess::execute(u"diff"_s, {u"-r"_s, path(u"folder"_s), folder}), 0);
}

TEST_F(HdiutilCreate, namesThatAreOneToTheVolumeAreRefused)
{
    for (const auto &[one, other] : {std::pair(u"a"_s, u"A"_s), std::pair(u"\u00e9"_s, u"E\u0301"_s),
                                     std::pair(u"x"_s, u"x\u200d"_s), std::pair(u"\u0434"_s, u"\u0414"_s)}) {
        bundlebuilder::writeFile(path(u"pair/"_s) + one, "1");
        bundlebuilder::writeFile(path(u"pair/"_s) + other, "2");
        const ToolResult result = create(path(u"pair"_s), path(u"out/a.dmg"_s));
        EXPECT_EQ(result.status, 1) << one.toStdString();
        EXPECT_TRUE(result.error.contains(u"takes its name for the same as that of another file"_s));
        QDir(path(u"pair"_s)).removeRecursively();
    }
    EXPECT_EQ(namesIn(path(u"out"_s)), QStringList());
}

TEST_F(HdiutilCreate, aNameThatTheVolumeCannotHoldIsRefused)
{
    bundlebuilder::writeFile(path(u"long/"_s) + QString(85, QChar(u'\u1f82')),
                             "four units each when taken apart");
    EXPECT_EQ(create(path(u"long"_s), path(u"out/a.dmg"_s)).status, 1);
    ASSERT_EQ(::mkdir(QFile::encodeName(path(u"bytes"_s)).constData(), 0755), 0);
    ASSERT_EQ(::mkdir((QFile::encodeName(path(u"bytes/"_s)) + "\xff\xfe").constData(), 0755), 0);
    const ToolResult result = create(path(u"bytes"_s), path(u"out/a.dmg"_s));
    EXPECT_EQ(::rmdir((QFile::encodeName(path(u"bytes/"_s)) + "\xff\xfe").constData()), 0);
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.error.contains(u": not a name that HFS+ can hold\n"_s));
    EXPECT_EQ(namesIn(path(u"out"_s)), QStringList());
}

TEST_F(HdiutilCreate, anImageThatIsThereStaysUnlessToldOtherwise)
{
    const QString image = path(u"out/a.dmg"_s);
    bundlebuilder::writeFile(image, "an old one");
    const ToolResult refused = createPlainly({image, u"-srcfolder"_s, path(u"folder"_s)});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.error, u"hdiutil: create failed - File exists\n"_s);
    EXPECT_EQ(bundlebuilder::readFile(image), "an old one");
    EXPECT_EQ(createPlainly({u"-ov"_s, image, u"-srcfolder"_s, path(u"folder"_s)}).status, 0);
    EXPECT_TRUE(listed(image).contains(u"a file"_s));
}

TEST_F(HdiutilCreate, aMissingSourceIsAnError)
{
    const ToolResult result = createPlainly({path(u"out/a.dmg"_s), u"-srcfolder"_s, path(u"none.app"_s)});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, u"hdiutil: create failed - No such file or directory\n"_s);
    EXPECT_EQ(namesIn(path(u"out"_s)), QStringList());
}

TEST_F(HdiutilCreate, refusesWhatAVolumeCannotHold)
{
    const QString pipe = path(u"folder/pipe"_s);
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    const ToolResult result = createPlainly({path(u"out/a.dmg"_s), u"-srcfolder"_s, path(u"folder"_s)});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error,
              u"hdiutil: create failed - %1: neither a file, a folder nor a symbolic link\n"_s.arg(pipe));
    EXPECT_EQ(namesIn(path(u"out"_s)), QStringList());
}

TEST_F(HdiutilCreate, leavesNothingWhenTheImageCannotGrow)
{
    bundlebuilder::writeFile(path(u"folder/noise"_s), randomBytes(1 << 20));
    const QString image = path(u"out/a.dmg"_s);
    const ToolResult result =
        run(hdiutil, {u"create"_s, image, u"-srcfolder"_s, path(u"folder"_s)}, {}, limitFileSize);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, u"hdiutil: create failed - %1: File too large\n"_s.arg(image));
    EXPECT_EQ(namesIn(path(u"out"_s)), QStringList());
}

TEST_F(HdiutilCreate, leavesNothingWhenItIsTerminated)
{
    makeSparse(path(u"folder/large"_s), qint64(16) << 30);
    QFileSystemWatcher watcher({path(u"out"_s)});
    QEventLoop loop;
    QObject::connect(&watcher, &QFileSystemWatcher::directoryChanged, &loop, &QEventLoop::quit);
    QTimer::singleShot(30'000, &loop, [&loop] { loop.exit(1); });
    const auto process =
        start(hdiutil, {u"create"_s, path(u"out/a.dmg"_s), u"-srcfolder"_s, path(u"folder"_s)});
    ASSERT_EQ(loop.exec(), 0) << "no image was begun";
    EXPECT_EQ(namesIn(path(u"out"_s)).size(), 1);
    process->terminate();
    ASSERT_TRUE(process->waitForFinished());
    EXPECT_EQ(process->exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(namesIn(path(u"out"_s)), QStringList());
}

TEST_F(HdiutilCreate, aLargeFileTakesNoMoreMemoryThanASmallOne)
{
    makeSparse(path(u"folder/large"_s), 256 << 20);
    const ToolResult result = run(
        hdiutil, {u"create"_s, path(u"out/a.dmg"_s), u"-srcfolder"_s, path(u"folder"_s)}, {}, limitMemory);
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_LT(QFileInfo(path(u"out/a.dmg"_s)).size(), 1 << 20);
}

TEST_F(HdiutilCreate, refusesToMakeAnythingButCompressedImagesOfOneSource)
{
    for (const QStringList &arguments :
         {QStringList{u"a.dmg"_s},
          {u"a.dmg"_s, u"-size"_s, u"10m"_s},
          {u"-srcfolder"_s, u"folder"_s},
          {u"a.dmg"_s, u"-srcfolder"_s, u"folder"_s, u"-srcfolder"_s, u"My App.app"_s},
          {u"a.dmg"_s, u"-srcfolder"_s, u"folder"_s, u"-format"_s, u"UDRW"_s},
          {u"a.dmg"_s, u"-srcfolder"_s, u"folder"_s, u"-fs"_s, u"APFS"_s},
          {u"a.dmg"_s, u"-srcfolder"_s, u"folder"_s, u"-imagekey"_s, u"zlib-level=0"_s},
          {u"a.dmg"_s, u"b.dmg"_s, u"-srcfolder"_s, u"folder"_s}}) {
        const ToolResult result = createPlainly(arguments);
        EXPECT_EQ(result.status, 2) << arguments.join(u' ').toStdString();
        EXPECT_TRUE(result.error.startsWith(u"hdiutil create: "_s)) << result.error.toStdString();
    }
    EXPECT_FALSE(QFile::exists(path(u"a.dmg"_s)));
}

TEST_F(HdiutilCreate, quietPrintsNothingUnlessDetailsAreAskedFor)
{
    const QStringList missing{path(u"out/a.dmg"_s), u"-srcfolder"_s, path(u"none"_s), u"-quiet"_s};
    const ToolResult failed = createPlainly(missing);
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.output + failed.error, QString());
    EXPECT_FALSE(createPlainly(missing + QStringList{u"-verbose"_s}).error.isEmpty());
    const ToolResult made =
        createPlainly({path(u"out/a.dmg"_s), u"-srcfolder"_s, path(u"folder"_s), u"-quiet"_s});
    EXPECT_EQ(made.status, 0);
    EXPECT_EQ(made.output + made.error, QString());
}

TEST_F(HdiutilCreate, aHigherLevelMakesASmallerImage)
{
    QByteArray text;
    for (int number = 0; number < 200'000; ++number)
        text += QByteArray::number(number) + ' ';
    bundlebuilder::writeFile(path(u"folder/text"_s), text);
    const QStringList source{u"-srcfolder"_s, path(u"folder"_s), u"-imagekey"_s};
    ASSERT_EQ(
        createPlainly(QStringList{path(u"out/1.dmg"_s)} + source + QStringList{u"zlib-level=1"_s}).status, 0);
    ASSERT_EQ(
        createPlainly(QStringList{path(u"out/9.dmg"_s)} + source + QStringList{u"zlib-level=9"_s}).status, 0);
    EXPECT_LT(QFileInfo(path(u"out/9.dmg"_s)).size(), QFileInfo(path(u"out/1.dmg"_s)).size());
}
