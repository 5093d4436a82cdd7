// What is read from files and written to them.

#include "platform/posixfileservicetest.h"

#include <QDir>

#include <thread>

using namespace Qt::StringLiterals;
using namespace platform;

TEST_F(Files, aFileIsReadWhole)
{
    const QByteArray bytes = QByteArray("a\0b\r\n", 5).repeated(200000);
    EXPECT_EQ(*files.readFile(folder.file(u"file"_s, bytes)), bytes);
    const auto empty = files.readFile(folder.file(u"empty"_s));
    ASSERT_TRUE(empty);
    EXPECT_TRUE(empty->isEmpty());
    EXPECT_TRUE(files.readFile(u"/proc/version"_s)->startsWith("Linux")); // one whose size reads as 0
}

TEST_F(Files, whatCannotBeReadIsNamedWithTheReason)
{
    const auto missing = files.readFile(folder.path(u"missing"_s));
    EXPECT_FALSE(missing);
    EXPECT_EQ(missing.error(),
              u"Cannot read '%1': No such file or directory"_s.arg(folder.path(u"missing"_s)));
    const auto aFolder = files.readFile(folder.path());
    EXPECT_FALSE(aFolder);
    EXPECT_TRUE(aFolder.error().contains(folder.path()));
}

TEST_F(Files, whatIsNoRegularFileIsNotReadAndNotWaitedFor)
{
    ASSERT_EQ(mkfifo(folder.path(u"pipe"_s).toUtf8().constData(), 0600), 0);
    for (const QString &path : {folder.path(u"pipe"_s), u"/dev/zero"_s, u"/dev/null"_s}) {
        const auto read = files.readFile(path);
        EXPECT_FALSE(read);
        EXPECT_TRUE(read.error().startsWith(u"Cannot read '%1': "_s.arg(path))) << read.error().toStdString();
    }
    ASSERT_TRUE(QFile::link(u"/dev/zero"_s, folder.path(u"link"_s)));
    EXPECT_FALSE(files.readFile(folder.path(u"link"_s)));
}

TEST_F(Files, aFileThatIsTooLargeIsRefusedUnread)
{
    const QString file = folder.file(u"file"_s);
    ASSERT_EQ(truncate(file.toUtf8().constData(), platform::mostBytesRead), 0);
    EXPECT_EQ(files.readFile(file)->size(), platform::mostBytesRead);
    ASSERT_EQ(truncate(file.toUtf8().constData(), qint64(3) << 30), 0);
    const auto tooLarge = files.readFile(file);
    EXPECT_FALSE(tooLarge);
    EXPECT_EQ(tooLarge.error(), u"Cannot read '%1': File too large"_s.arg(file));
}

TEST_F(Files, aFileIsWrittenInPlace)
{
    const QString file = folder.file(u"file"_s, "something longer");
    const ino_t inode = stateOf(file).st_ino;
    ASSERT_TRUE(files.writeFile(file, "new"));
    EXPECT_EQ(contentsOf(file), "new");
    EXPECT_EQ(stateOf(file).st_ino, inode);
    EXPECT_TRUE(files.writeFile(folder.path(u"other"_s), "new"));
    EXPECT_FALSE(files.writeFile(folder.path(u"no/such/folder"_s), "new"));
}

TEST_F(Files, aFullDeviceIsAFailureToWrite)
{
    EXPECT_EQ(files.writeFile(u"/dev/full"_s, "new").error(),
              u"Cannot write '/dev/full': No space left on device"_s);
}

TEST_F(Files, aFileWrittenAtomicallyTakesTheOldOnesPlaceWithItsMode)
{
    const QString file = folder.file(u"file"_s, "old");
    ASSERT_TRUE(files.setPermissions(file, 0640));
    QFile open(file);
    ASSERT_TRUE(open.open(QIODevice::ReadOnly));
    ASSERT_TRUE(files.writeFileAtomically(file, "new"));
    EXPECT_EQ(contentsOf(file), "new");
    EXPECT_EQ(open.readAll(), "old"); // whoever has it open sees all of the old one
    EXPECT_EQ(modeOf(file), 0640U);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{u"file"_s});
}

TEST_F(Files, anAtomicWriteIntoAMissingFolderFailsWithTheName)
{
    const QString file = folder.path(u"no/such/file"_s);
    EXPECT_TRUE(files.writeFileAtomically(file, "new").error().contains(file));
}

TEST_F(Files, aHandleAppendsToWhatIsThere)
{
    const QString file = folder.file(u"log"_s, "one\n");
    const auto handle = files.openForAppending(file);
    ASSERT_TRUE(handle);
    handle->write("two\n");
    EXPECT_EQ(contentsOf(file), "one\ntwo\n");
    handle->close();
    handle->write("three\n");
    handle->close();
    EXPECT_EQ(contentsOf(file), "one\ntwo\n");
}

TEST_F(Files, onlyAFileThatExistsIsOpenedForAppending)
{
    EXPECT_FALSE(files.openForAppending(folder.path(u"missing"_s)));
    EXPECT_FALSE(files.isReachable(folder.path(u"missing"_s)));
    EXPECT_FALSE(files.openForAppending(folder.path()));
}

TEST_F(Files, aHandleMayBeClosedWhileOthersWriteWholeLines)
{
    const QString file = folder.file(u"log"_s);
    const auto handle = files.openForAppending(file);
    ASSERT_TRUE(handle);
    const QByteArray line = QByteArray(99, 'x') + '\n';
    std::vector<std::thread> writers;
    for (int t = 0; t < 4; ++t) {
        writers.emplace_back([&] {
            for (int i = 0; i < 500; ++i)
                handle->write(line);
        });
    }
    handle->close();
    for (std::thread &writer : writers)
        writer.join();
    for (const QByteArray &written : contentsOf(file).split('\n'))
        EXPECT_TRUE(written.isEmpty() || written.size() == 99);
}
