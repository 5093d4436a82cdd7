// Archives that are packed, and what comes back of them.

#include "toolchain/dittotest.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QMap>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

struct Entry {
    int mode = 0;
    QByteArray bytes;
    QString linkTarget;
};

QMap<QString, Entry> readZip(const QString &path)
{
    std::setlocale(LC_ALL, "C.UTF-8");
    QMap<QString, Entry> entries;
    archive *zip = archive_read_new();
    archive_read_support_format_zip_seekable(zip);
    EXPECT_EQ(archive_read_open_filename(zip, QFile::encodeName(path).constData(), 1 << 16), ARCHIVE_OK);
    archive_entry *header = nullptr;
    while (archive_read_next_header(zip, &header) == ARCHIVE_OK) {
        Entry entry{static_cast<int>(archive_entry_mode(header)), {}, {}};
        if (const char *target = archive_entry_symlink_utf8(header))
            entry.linkTarget = QString::fromUtf8(target);
        QByteArray block(1 << 16, '\0');
        la_ssize_t length = 0;
        while ((length = archive_read_data(zip, block.data(), static_cast<std::size_t>(block.size()))) > 0)
            entry.bytes.append(block.constData(), length);
        EXPECT_EQ(length, 0);
        entries.insert(QString::fromUtf8(archive_entry_pathname_utf8(header)), entry);
    }
    archive_read_free(zip);
    return entries;
}

} // namespace

TEST_F(Ditto, packsABundleUnderItsOwnName)
{
    ASSERT_EQ(pack(path(u"My App.app"_s), path(u"out/My App.zip"_s)).status, 0);
    const auto entries = readZip(path(u"out/My App.zip"_s));
    EXPECT_EQ(entries.value(u"My App.app/Contents/Resources/Größe.txt"_s).bytes, "resource");
    EXPECT_EQ(entries.value(u"My App.app/Contents/MacOS/My App"_s).bytes, bundlebuilder::universalMachO());
    EXPECT_TRUE(S_ISDIR(entries.value(u"My App.app/"_s).mode));
    for (const QString &name : entries.keys())
        EXPECT_TRUE(name.startsWith(u"My App.app/"_s)) << name.toStdString();
}

TEST_F(Ditto, keepsLinksAndModes)
{
    const QString script = path(u"My App.app/Contents/Resources/script"_s);
    bundlebuilder::writeFile(script, "#!/bin/sh\n");
    ASSERT_EQ(chmod(QFile::encodeName(script).constData(), 0750), 0);
    ASSERT_EQ(pack(path(u"My App.app"_s), path(u"out/a.zip"_s)).status, 0);
    const auto entries = readZip(path(u"out/a.zip"_s));
    EXPECT_EQ(entries.value(u"My App.app/Contents/Resources/script"_s).mode & 07777, 0750);
    const Entry link = entries.value(u"My App.app/Contents/Frameworks/Inner.framework/Versions/Current"_s);
    EXPECT_TRUE(S_ISLNK(link.mode));
    EXPECT_EQ(link.linkTarget, u"A"_s);
}

TEST_F(Ditto, aSlashBehindTheSourceChangesNothing)
{
    ASSERT_EQ(pack(path(u"My App.app/"_s), path(u"out/a.zip"_s)).status, 0);
    EXPECT_TRUE(readZip(path(u"out/a.zip"_s)).contains(u"My App.app/Contents/Info.plist"_s));
}

TEST_F(Ditto, withoutKeepParentTheContentsAreAtTheTop)
{
    ASSERT_EQ(run(ditto, {u"-c"_s, u"-k"_s, path(u"My App.app"_s), path(u"out/a.zip"_s)}).status, 0);
    EXPECT_TRUE(readZip(path(u"out/a.zip"_s)).contains(u"Contents/Info.plist"_s));
}

TEST_F(Ditto, packsASingleFile)
{
    bundlebuilder::writeFile(path(u"tool"_s), "one file");
    ASSERT_EQ(pack(path(u"tool"_s), path(u"out/a.zip"_s)).status, 0);
    const auto entries = readZip(path(u"out/a.zip"_s));
    EXPECT_EQ(entries.size(), 1);
    EXPECT_EQ(entries.value(u"tool"_s).bytes, "one file");
}

TEST_F(Ditto, replacesAnArchiveThatIsThere)
{
    bundlebuilder::writeFile(path(u"out/a.zip"_s), "an old one");
    ASSERT_EQ(pack(path(u"My App.app"_s), path(u"out/a.zip"_s)).status, 0);
    EXPECT_FALSE(readZip(path(u"out/a.zip"_s)).isEmpty());
    EXPECT_EQ(archivesFolder(), QStringList{u"a.zip"_s});
}

TEST_F(Ditto, aMissingSourceIsNamed)
{
    const ToolResult result = pack(path(u"none.app"_s), path(u"out/a.zip"_s));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, u"ditto: Can't get real path for source '%1'\n"_s.arg(path(u"none.app"_s)));
    EXPECT_EQ(archivesFolder(), QStringList());
}

TEST_F(Ditto, leavesNothingWhenTheArchiveCannotGrow)
{
    bundlebuilder::writeFile(path(u"My App.app/Contents/Resources/noise"_s), randomBytes(4 << 20));
    const QString archive = path(u"out/a.zip"_s);
    const ToolResult result =
        run(ditto, {u"-c"_s, u"-k"_s, u"--keepParent"_s, path(u"My App.app"_s), archive}, {}, limitFileSize);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, u"ditto: %1: File too large\n"_s.arg(archive));
    EXPECT_EQ(archivesFolder(), QStringList());
}

TEST_F(Ditto, leavesNothingWhenItIsTerminated)
{
    QFile large(path(u"My App.app/Contents/Resources/large"_s));
    ASSERT_TRUE(large.open(QIODevice::WriteOnly) && large.resize(qint64(8) << 30));
    QFileSystemWatcher watcher({path(u"out"_s)});
    QEventLoop loop;
    QObject::connect(&watcher, &QFileSystemWatcher::directoryChanged, &loop, &QEventLoop::quit);
    QTimer::singleShot(30'000, &loop, [&loop] { loop.exit(1); });
    const auto process =
        start(ditto, {u"-c"_s, u"-k"_s, u"--keepParent"_s, path(u"My App.app"_s), path(u"out/a.zip"_s)});
    ASSERT_EQ(loop.exec(), 0) << "no archive was begun";
    EXPECT_EQ(archivesFolder().size(), 1);
    process->terminate();
    ASSERT_TRUE(process->waitForFinished());
    EXPECT_EQ(process->exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(archivesFolder(), QStringList());
}

TEST_F(Ditto, refusesWhatAZipArchiveCannotHold)
{
    const QString pipe = path(u"My App.app/Contents/Resources/pipe"_s);
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    const ToolResult result = pack(path(u"My App.app"_s), path(u"out/a.zip"_s));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, u"ditto: %1: neither a file, a folder nor a symbolic link\n"_s.arg(pipe));
    EXPECT_EQ(archivesFolder(), QStringList());
}

TEST_F(Ditto, anArchiveInAMissingFolderIsAnError)
{
    const ToolResult result = pack(path(u"My App.app"_s), path(u"nowhere/a.zip"_s));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, u"ditto: %1: No such file or directory\n"_s.arg(path(u"nowhere/a.zip"_s)));
}

TEST_F(Ditto, refusesToDoAnythingButPackingAndUnpackingZipArchives)
{
    for (const QStringList &arguments :
         {QStringList{u"My App.app"_s, u"copy"_s},
          {u"-c"_s, u"My App.app"_s, u"a.cpio"_s},
          {u"-c"_s, u"-x"_s, u"-k"_s, u"a.zip"_s, u"out"_s},
          {u"-c"_s, u"-k"_s, u"--hfsCompression"_s, u"My App.app"_s, u"a.zip"_s}}) {
        const ToolResult result = run(ditto, arguments);
        EXPECT_EQ(result.status, 2) << arguments.join(u' ').toStdString();
        EXPECT_TRUE(result.error.startsWith(u"ditto: "_s));
    }
    for (const QStringList &arguments : {QStringList{u"-c"_s, u"-k"_s, u"My App.app"_s},
                                         {u"-c"_s, u"-k"_s, u"a"_s, u"b"_s, u"c"_s},
                                         {u"-x"_s, u"-k"_s, u"a.zip"_s}})
        EXPECT_EQ(run(ditto, arguments).status, 64) << arguments.join(u' ').toStdString();
}

TEST_F(Ditto, aTreeComesBackAsItWas)
{
    const QString resources = path(u"My App.app/Contents/Resources/"_s);
    bundlebuilder::writeFile(resources + u"noise"_s, randomBytes(3 << 20));
    bundlebuilder::writeFile(resources + u"text"_s, QByteArray("again and again ").repeated(90'000));
    bundlebuilder::writeFile(resources + u"empty"_s, {});
    bundlebuilder::writeFile(resources + u"Gro\u0308sse"_s, "decomposed");
    bundlebuilder::writeFile(resources + u"read only"_s, "r");
    ASSERT_EQ(chmod(QFile::encodeName(resources + u"read only"_s).constData(), 0444), 0);
    ASSERT_EQ(pack(path(u"My App.app"_s), path(u"out/a.zip"_s)).status, 0);
    ASSERT_EQ(extract(path(u"out/a.zip"_s), path(u"out/unpacked"_s)).status, 0);
    const QString copy = path(u"out/unpacked/My App.app"_s);
    EXPECT_EQ(QProcess::execute(u"diff"_s, {u"-r"_s, u"--no-dereference"_s, path(u"My App.app"_s), copy}), 0);
    struct stat status = {};
    ASSERT_EQ(stat(QFile::encodeName(copy + u"/Contents/Resources/read only"_s).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0444U);
    const QFileInfo original(resources + u"noise"_s);
    EXPECT_EQ(QFileInfo(copy + u"/Contents/Resources/noise"_s).lastModified().toSecsSinceEpoch(),
              original.lastModified().toSecsSinceEpoch());
    EXPECT_EQ(QFileInfo(copy + u"/Contents"_s).lastModified().toSecsSinceEpoch(),
              QFileInfo(path(u"My App.app/Contents"_s)).lastModified().toSecsSinceEpoch());
}

TEST_F(Ditto, otherProgramsFindNoFaultInAnArchive)
{
    bundlebuilder::writeFile(path(u"My App.app/Contents/Resources/noise"_s), randomBytes(3 << 20));
    bundlebuilder::writeFile(path(u"My App.app/Contents/Resources/text"_s),
                             QByteArray("again ").repeated(400'000));
    ASSERT_EQ(pack(path(u"My App.app"_s), path(u"out/a.zip"_s)).status, 0);
    EXPECT_EQ(run(u"unzip"_s, {u"-tqq"_s, path(u"out/a.zip"_s)}).status, 0);
    EXPECT_EQ(run(u"7z"_s, {u"t"_s, path(u"out/a.zip"_s)}).status, 0);
}

TEST_F(Ditto, attributesArePackedBesideAndComeBack)
{
    packWithAttributes({});
    EXPECT_TRUE(readZip(path(u"out/a.zip"_s)).contains(u"tree/._file"_s));
    expectAttributesBack();
}

TEST_F(Ditto, attributesArePackedBelowAFolderOfTheirOwn)
{
    packWithAttributes({u"--sequesterRsrc"_s});
    const auto entries = readZip(path(u"out/a.zip"_s));
    EXPECT_TRUE(entries.contains(u"__MACOSX/tree/._file"_s));
    EXPECT_TRUE(entries.contains(u"__MACOSX/._tree"_s));
    EXPECT_FALSE(entries.contains(u"tree/._file"_s));
    expectAttributesBack();
}

TEST_F(Ditto, attributesAreLeftOutIfAsked)
{
    packWithAttributes({u"--norsrc"_s});
    EXPECT_EQ(readZip(path(u"out/a.zip"_s)).keys(), (QStringList{u"tree/"_s, u"tree/file"_s}));
}

TEST_F(Ditto, namesAreKeptByteForByte)
{
    for (const QString &name :
         {u"Gr\u00f6\u00dfe"_s, u"Gro\u0308ber"_s, u"\u212b"_s, u"a\\b"_s, u"new\nline"_s})
        bundlebuilder::writeFile(path(u"names/"_s) + name, name.toUtf8());
    ASSERT_EQ(pack(path(u"names"_s), path(u"out/a.zip"_s)).status, 0);
    ASSERT_EQ(extract(path(u"out/a.zip"_s), path(u"out"_s)).status, 0);
    EXPECT_EQ(QProcess::execute(u"diff"_s, {u"-r"_s, path(u"names"_s), path(u"out/names"_s)}), 0);
    const QByteArray archive = bundlebuilder::readFile(path(u"out/a.zip"_s));
    EXPECT_TRUE(archive.contains(u"names/Gr\u00f6\u00dfe"_s.toUtf8()));
    EXPECT_TRUE(archive.contains(u"names/Gro\u0308ber"_s.toUtf8()));
    EXPECT_TRUE(readZip(path(u"out/a.zip"_s)).contains(u"names/Gro\u0308ber"_s))
        << "by a reader that composes marked names";
}

TEST_F(Ditto, twoFormsOfOneNameAreRefusedByName)
{
    bundlebuilder::writeFile(path(u"names/\u00e9"_s), "1");
    bundlebuilder::writeFile(path(u"names/e\u0301"_s), "2");
    const ToolResult result = pack(path(u"names"_s), path(u"out/a.zip"_s));
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.error.contains(path(u"names/"_s))) << result.error.toStdString();
    EXPECT_EQ(archivesFolder(), QStringList());
}
