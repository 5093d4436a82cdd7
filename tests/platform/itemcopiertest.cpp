#include "platform/posix/posixfileservice.h"
#include "temporaryfolder.h"

#include <QDir>

#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace platform;

namespace {

class ItemCopier : public testing::Test {
protected:
    Outcome copy(const QString &from, const QString &to)
    {
        return files.copyItem(folder.path(from), folder.path(to));
    }

    PosixFileService files;
    TemporaryFolder folder;
};

void setTimes(const QString &path, timespec access, timespec modification)
{
    const timespec times[2]{access, modification};
    ASSERT_EQ(utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, AT_SYMLINK_NOFOLLOW), 0);
}

void expectSameModificationTime(const QString &one, const QString &other)
{
    EXPECT_EQ(stateOf(one).st_mtim.tv_sec, stateOf(other).st_mtim.tv_sec) << other.toStdString();
    EXPECT_EQ(stateOf(one).st_mtim.tv_nsec, stateOf(other).st_mtim.tv_nsec) << other.toStdString();
}

/// What a link says; empty for anything else.
QByteArray destinationOf(const QString &link)
{
    QByteArray text(256, '\0');
    const ssize_t length = readlink(QFile::encodeName(link).constData(), text.data(), 256);
    text.truncate(qMax<ssize_t>(length, 0));
    return text;
}

/// False where the file system has no attributes.
bool setAttribute(const QString &path, const char *name, const QByteArray &value)
{
    const QByteArray native = QFile::encodeName(path);
    return setxattr(native.constData(), name, value.constData(), static_cast<size_t>(value.size()), 0) == 0;
}

QByteArray attribute(const QString &path, const char *name)
{
    QByteArray value(64 * 1024, '\0');
    const ssize_t size =
        getxattr(QFile::encodeName(path).constData(), name, value.data(), static_cast<size_t>(value.size()));
    value.truncate(qMax<ssize_t>(size, 0));
    return value;
}

/// Runs the test's body in a process of its own that can write no file beyond that size.
template <typename Body>
int statusWithFileSizeLimit(rlim_t bytes, Body body)
{
    const pid_t child = fork();
    if (child == 0) {
        const rlimit limit{bytes, bytes};
        std::signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &limit);
        _exit(body());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

TEST_F(ItemCopier, aFileIsCopiedWithItsContents)
{
    const QByteArray bytes = QByteArray("0123456789abcdef\0\n", 18).repeated(100000);
    const QString from = folder.file(u"from"_s, bytes);
    ASSERT_TRUE(copy(u"from"_s, u"to"_s));
    EXPECT_EQ(contentsOf(folder.path(u"to"_s)), bytes);
    EXPECT_NE(stateOf(from).st_ino, stateOf(folder.path(u"to"_s)).st_ino);
}

TEST_F(ItemCopier, anEmptyFileAndAnEmptyFolderAreCopied)
{
    folder.file(u"empty"_s);
    folder.folder(u"hollow"_s);
    ASSERT_TRUE(copy(u"empty"_s, u"empty 2"_s));
    ASSERT_TRUE(copy(u"hollow"_s, u"hollow 2"_s));
    EXPECT_EQ(stateOf(folder.path(u"empty 2"_s)).st_size, 0);
    EXPECT_TRUE(QDir(folder.path(u"hollow 2"_s)).exists());
}

TEST_F(ItemCopier, aFileWhoseSizeIsNotToldIsCopiedWhole)
{
    ASSERT_TRUE(files.copyItem(u"/proc/version"_s, folder.path(u"to"_s)));
    EXPECT_EQ(contentsOf(folder.path(u"to"_s)), contentsOf(u"/proc/version"_s));
}

TEST_F(ItemCopier, theHolesOfAFileStayHoles)
{
    const QString from = folder.file(u"from"_s, "begin");
    constexpr off_t size = 64 * 1024 * 1024;
    const int file = open(QFile::encodeName(from).constData(), O_WRONLY | O_CLOEXEC);
    ASSERT_EQ(pwrite(file, "middle", 6, size / 2), 6);
    ASSERT_EQ(ftruncate(file, size), 0);
    close(file);
    if (stateOf(from).st_blocks * 512 >= size)
        return; // a file system without holes has none to lose
    ASSERT_TRUE(copy(u"from"_s, u"to"_s));
    EXPECT_EQ(stateOf(folder.path(u"to"_s)).st_size, size);
    EXPECT_LT(stateOf(folder.path(u"to"_s)).st_blocks * 512, size / 4);
    EXPECT_TRUE(contentsOf(folder.path(u"to"_s)) == contentsOf(from));
}

TEST_F(ItemCopier, aFolderIsCopiedWithAllThatIsInItHiddenThingsToo)
{
    folder.folder(u"from/a/b/.hidden"_s);
    folder.file(u"from/a/b/.hidden/file"_s, "deep");
    folder.file(u"from/.top"_s, "top");
    folder.file(u"from/Größe ‘x’"_s, "named");
    ASSERT_TRUE(copy(u"from"_s, u"to"_s));
    EXPECT_EQ(contentsOf(folder.path(u"to/a/b/.hidden/file"_s)), "deep");
    EXPECT_EQ(contentsOf(folder.path(u"to/.top"_s)), "top");
    EXPECT_EQ(contentsOf(folder.path(u"to/Größe ‘x’"_s)), "named");
}

TEST_F(ItemCopier, aNameThatIsNotUnicodeIsCopiedByteForByte)
{
    folder.folder(u"from"_s);
    const QByteArray name = "/odd\xff\xfe";
    const int file =
        open((QFile::encodeName(folder.path(u"from"_s)) + name).constData(), O_CREAT | O_WRONLY, 0600);
    ASSERT_GE(file, 0);
    close(file);
    ASSERT_TRUE(copy(u"from"_s, u"to"_s));
    EXPECT_EQ(access((QFile::encodeName(folder.path(u"to"_s)) + name).constData(), F_OK), 0);
    // Qt cannot name these to clear them away.
    EXPECT_TRUE(files.removeItem(folder.path(u"from"_s)));
    EXPECT_TRUE(files.removeItem(folder.path(u"to"_s)));
}

TEST_F(ItemCopier, linksStayLinksWhereverTheyLead)
{
    folder.folder(u"from/Versions/A"_s);
    folder.link(u"from/Versions/Current"_s, u"A"_s);
    folder.link(u"from/Tool"_s, u"Versions/Current/Tool"_s);
    folder.link(u"from/dangling"_s, u"/no/such/item"_s);
    folder.link(u"from/up"_s, u".."_s);
    ASSERT_TRUE(copy(u"from"_s, u"to"_s));
    for (const QString &name : {u"Tool"_s, u"dangling"_s, u"up"_s, u"Versions/Current"_s}) {
        EXPECT_EQ(destinationOf(folder.path(u"to/"_s + name)), destinationOf(folder.path(u"from/"_s + name)));
        EXPECT_FALSE(destinationOf(folder.path(u"to/"_s + name)).isEmpty());
    }
}

TEST_F(ItemCopier, anItemThatIsALinkIsCopiedAsALink)
{
    folder.folder(u"real"_s);
    const QString link = folder.link(u"link"_s, folder.path(u"real"_s));
    ASSERT_TRUE(files.copyItem(link + u'/', folder.path(u"copy"_s)));
    EXPECT_TRUE(S_ISLNK(stateOf(folder.path(u"copy"_s)).st_mode));
}

TEST_F(ItemCopier, modesAreKeptWithTheirSpecialBits)
{
    folder.folder(u"from/closed"_s);
    folder.file(u"from/closed/inside"_s);
    const QList<std::pair<QString, mode_t>> modes{{u"set user"_s, 04755},
                                                  {u"set group"_s, 02711},
                                                  {u"read only"_s, 0444},
                                                  {u"nothing"_s, 0400},
                                                  {u"open"_s, 0666}};
    for (const auto &[name, mode] : modes)
        ASSERT_TRUE(files.setPermissions(folder.file(u"from/"_s + name), mode));
    ASSERT_TRUE(files.setPermissions(folder.path(u"from/closed"_s), 0555));
    ASSERT_TRUE(files.setPermissions(folder.path(u"from"_s), 01777));
    ASSERT_TRUE(copy(u"from"_s, u"to"_s));
    for (const auto &[name, mode] : modes)
        EXPECT_EQ(stateOf(folder.path(u"to/"_s + name)).st_mode & 07777, mode) << name.toStdString();
    EXPECT_EQ(stateOf(folder.path(u"to/closed"_s)).st_mode & 07777, 0555U);
    EXPECT_EQ(stateOf(folder.path(u"to"_s)).st_mode & 07777, 01777U);
    EXPECT_TRUE(files.isReachable(folder.path(u"to/closed/inside"_s)));
    ASSERT_TRUE(files.setPermissions(folder.path(u"from/closed"_s), 0755)); // for the clean-up
    ASSERT_TRUE(files.setPermissions(folder.path(u"to/closed"_s), 0755));
}

TEST_F(ItemCopier, timesAreKeptToTheNanosecondOfFilesFoldersAndLinks)
{
    folder.folder(u"from/sub"_s);
    folder.file(u"from/sub/file"_s, "text");
    folder.link(u"from/sub/link"_s, u"file"_s);
    setTimes(folder.path(u"from/sub/file"_s), {1000000001, 123456789}, {1100000001, 987654321});
    setTimes(folder.path(u"from/sub/link"_s), {1000000002, 1}, {1100000002, 2});
    setTimes(folder.path(u"from/sub"_s), {1000000003, 3}, {1100000003, 4});
    setTimes(folder.path(u"from"_s), {1000000004, 5}, {1100000004, 6});
    ASSERT_TRUE(copy(u"from"_s, u"to"_s));
    for (const QString &inside : {u""_s, u"/sub"_s, u"/sub/file"_s, u"/sub/link"_s})
        expectSameModificationTime(folder.path(u"from"_s + inside), folder.path(u"to"_s + inside));
    EXPECT_EQ(stateOf(folder.path(u"to/sub/file"_s)).st_atim.tv_sec, 1000000001);
    EXPECT_EQ(stateOf(folder.path(u"to/sub/file"_s)).st_atim.tv_nsec, 123456789);
}

TEST_F(ItemCopier, extendedAttributesAreKeptOfFilesAndFolders)
{
    folder.folder(u"from"_s);
    const QString file = folder.file(u"from/file"_s, "text");
    const QByteArray large(2500, 'v');
    const bool hasAttributes = setAttribute(file, "user.com.apple.quarantine", QByteArray("0081;\0x", 7));
    if (hasAttributes) {
        ASSERT_TRUE(setAttribute(file, "user.large", large));
        ASSERT_TRUE(setAttribute(file, "user.empty", ""));
        ASSERT_TRUE(setAttribute(folder.path(u"from"_s), "user.folder", "f"));
        for (int i = 0; i < 20; ++i) // more names than fit the first try
            setAttribute(folder.path(u"from"_s), ("user." + QByteArray(60, 'n') + char('a' + i)).constData(),
                         "1");
        ASSERT_TRUE(files.setPermissions(file, 0444));
    }
    // Where there are none to copy, their absence must not be a failure.
    ASSERT_TRUE(copy(u"from"_s, u"to"_s));
    for (const char *name : {"user.com.apple.quarantine", "user.large", "user.empty"})
        EXPECT_EQ(attribute(folder.path(u"to/file"_s), name), attribute(file, name)) << name;
    EXPECT_EQ(listxattr(QFile::encodeName(folder.path(u"to"_s)).constData(), nullptr, 0),
              listxattr(QFile::encodeName(folder.path(u"from"_s)).constData(), nullptr, 0));
    EXPECT_EQ(attribute(folder.path(u"to"_s), "user.folder"), hasAttributes ? "f" : "");
}

TEST_F(ItemCopier, anOccupiedTargetIsAFailureAndStaysAsItIs)
{
    const QString from = folder.file(u"from"_s, "new");
    const QString to = folder.file(u"to"_s, "old");
    EXPECT_EQ(files.copyItem(from, to).error(), u"Cannot copy '%1' to '%2': File exists"_s.arg(from, to));
    EXPECT_EQ(contentsOf(to), "old");
    EXPECT_FALSE(files.copyItem(folder.folder(u"one"_s), folder.folder(u"empty"_s)));
    EXPECT_FALSE(files.copyItem(from, folder.link(u"dangling"_s, folder.path(u"elsewhere"_s))));
    EXPECT_FALSE(files.isReachable(folder.path(u"elsewhere"_s)));
}

TEST_F(ItemCopier, aMissingItemIsNamedWithTheReason)
{
    EXPECT_EQ(copy(u"missing"_s, u"to"_s).error(),
              u"Cannot copy '%1': No such file or directory"_s.arg(folder.path(u"missing"_s)));
    EXPECT_FALSE(files.isReachable(folder.path(u"to"_s)));
}

TEST_F(ItemCopier, aFolderIsNotCopiedIntoItselfNotThroughALinkEither)
{
    folder.folder(u"from/sub"_s);
    const QString from = folder.path(u"from"_s);
    folder.link(u"way in"_s, folder.path(u"from/sub"_s));
    EXPECT_EQ(copy(u"from"_s, u"from/copy"_s).error(),
              u"Cannot copy '%1': '%2' lies inside it"_s.arg(from, from + u"/copy"_s));
    EXPECT_FALSE(copy(u"from"_s, u"from/sub/copy"_s));
    EXPECT_FALSE(copy(u"from"_s, u"way in/copy"_s));
    EXPECT_TRUE(QDir(folder.path(u"from/sub"_s)).isEmpty());
    EXPECT_TRUE(copy(u"from"_s, u"from 2"_s)); // beside it, though the name begins the same
}

TEST_F(ItemCopier, aNamedPipeOrASocketIsAFailureThatNamesIt)
{
    folder.folder(u"piped"_s);
    const QString pipe = folder.fifo(u"piped/pipe"_s);
    EXPECT_EQ(copy(u"piped"_s, u"to"_s).error(),
              u"Cannot copy '%1': it is neither a file, a folder nor a link"_s.arg(pipe));
    const int server = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray path = QFile::encodeName(folder.path(u"socket"_s));
    ASSERT_LT(static_cast<size_t>(path.size()), sizeof address.sun_path);
    std::copy(path.begin(), path.end(), address.sun_path);
    ASSERT_EQ(bind(server, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    close(server);
    EXPECT_FALSE(copy(u"socket"_s, u"to 2"_s));
    EXPECT_FALSE(files.isReachable(folder.path(u"to 2"_s)));
}

TEST_F(ItemCopier, noHalfOfAFileIsLeftWhenTheDiskRefusesMore)
{
    folder.folder(u"from"_s);
    folder.file(u"from/large"_s, QByteArray(1024 * 1024, 'x'));
    const int status = statusWithFileSizeLimit(64 * 1024, [this] {
        const QString expected = u"Cannot copy '%1': File too large"_s.arg(folder.path(u"from/large"_s));
        return copy(u"from"_s, u"to"_s).error() == expected ? 7 : 1;
    });
    EXPECT_EQ(status, 7);
    EXPECT_TRUE(files.isReachable(folder.path(u"to"_s)));
    EXPECT_FALSE(files.isReachable(folder.path(u"to/large"_s)));
}

TEST_F(ItemCopier, theFirstFailureEndsTheCopyAndNamesTheEntryDeepInside)
{
    folder.folder(u"from/a/b"_s);
    const QString pipe = folder.fifo(u"from/a/b/pipe"_s);
    EXPECT_TRUE(copy(u"from"_s, u"to"_s).error().contains(u"'"_s + pipe + u"'"_s));
}
