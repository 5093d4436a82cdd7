// What a process that reads foreign files can still do to the outside.

#include "support/confinement.h"
#include "toolchain/bundlebuilder.h"
#include "toolchain/diskimagefixture.h"
#include "toolchain/lzfseimage.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QScopeGuard>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <optional>
#include <vector>

using namespace Qt::StringLiterals;
using bundlebuilder::readFile;
using bundlebuilder::writeFile;

namespace {

/// The error number of what a confined child does; 0 if it works, -1 if the kernel confines nobody.
int errorOfConfined(const std::function<bool()> &action)
{
    const pid_t child = fork();
    if (child == 0) {
        const bool isConfined = bool(toolchain::confineThisProcess({}));
        _exit(!isConfined ? 255 : action() ? 0 : errno);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WEXITSTATUS(status) == 255 ? -1 : WEXITSTATUS(status);
}

bool kernelConfines()
{
    static const bool does = errorOfConfined([] { return true; }) == 0;
    return does;
}

[[noreturn]] void becomeProgram(const QStringList &command)
{
    std::vector<QByteArray> words;
    for (const QString &word : command)
        words.push_back(QFile::encodeName(word));
    std::vector<char *> arguments;
    for (QByteArray &word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    execv(arguments.front(), arguments.data());
    _exit(127);
}

/// On a kernel that confines nobody there is nothing to see but that the readers say so.
class AConfinedProcess : public DiskImageFixture {
protected:
    void SetUp() override
    {
        DiskImageFixture::SetUp();
        writeFile(path(u"inside/old"_s), "old");
        writeFile(path(u"outside/old"_s), "old");
    }

    void expectComplaint() const
    {
        const QString examine = QFileInfo(toolRoot()).path() + u"/sealwright-examine"_s;
        EXPECT_TRUE(run(examine, {path(u"inside"_s)}).error.contains(u"reads without a sandbox: "_s));
    }

    [[nodiscard]] toolchain::ConfinementPlaces inside() const { return {{path(u"inside"_s)}, {}}; }

    /// Runs a program to its end, in the confinement if there is one. It is entered by a process with memory
    /// and a stack of its own, which those that QProcess starts do not have.
    [[nodiscard]] ToolResult runIn(const std::optional<toolchain::ConfinementPlaces> &places,
                                   const QStringList &command) const
    {
        const QByteArray output = QFile::encodeName(path(u"output"_s));
        const pid_t child = fork();
        if (child == 0) {
            dup2(open(output.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
            if (places)
                (void)toolchain::confineThisProcess(*places);
            becomeProgram(command);
        }
        int status = -1;
        waitpid(child, &status, 0);
        return {
            WIFEXITED(status) ? WEXITSTATUS(status) : -1, QString::fromUtf8(readFile(path(u"output"_s))), {}};
    }

    /// Works on "inside" or "outside" in every way that leaves a trace. Answers what has worked.
    [[nodiscard]] QStringList tracesIn(const QString &folder,
                                       const std::optional<toolchain::ConfinementPlaces> &places) const
    {
        const QString script = uR"(
            cd "$0"
            (echo x >new) 2>/dev/null && echo make
            (echo x >>old) 2>/dev/null && echo change
            mkdir folder 2>/dev/null && echo folder
            ln -s /etc link 2>/dev/null && echo link
            ln old hard 2>/dev/null && echo hardlink
            mkfifo pipe 2>/dev/null && echo pipe
            mv old moved 2>/dev/null && echo move
            rm -f moved old 2>/dev/null && echo remove
            exit 0)"_s;
        const ToolResult result = runIn(places, {u"/bin/sh"_s, u"-c"_s, script, path(folder)});
        EXPECT_EQ(result.status, 0);
        return result.output.split(u'\n', Qt::SkipEmptyParts);
    }

    /// A program that writes `mark` and then does what the real one does.
    [[nodiscard]] QString crafted(const QString &name, const QString &real) const
    {
        const QString program = path(u"crafted/"_s + name);
        writeFile(program,
                  u"#!/bin/sh\n(echo x >'%1') 2>/dev/null\n%2 \"$@\"\n"_s.arg(mark(), real).toUtf8());
        EXPECT_TRUE(QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner));
        (void)run(program, {});
        EXPECT_TRUE(QFile::remove(mark())) << "the program does not even write when it may";
        return program;
    }
    [[nodiscard]] QString mark() const { return path(u"mark"_s); }

    /// An image that only 7z can read, and a 7z that writes where it should not.
    [[nodiscard]] QString craftedImage() const
    {
        bundlebuilder::makeApp(path(u"My App.app"_s), u"com.example.app"_s);
        writeLzfseImage(volumeOf(imageOf(path(u"My App.app"_s))), path(u"crafted.dmg"_s));
        (void)crafted(u"7z"_s, u"/usr/bin/7z"_s);
        return path(u"crafted.dmg"_s);
    }
    /// Until it is gone the crafted reader is found before the real one.
    [[nodiscard]] auto withCraftedReader() const
    {
        auto restore = qScopeGuard([searched = qgetenv("PATH")] { qputenv("PATH", searched); });
        qputenv("PATH", path(u"crafted"_s).toLocal8Bit() + ":/usr/bin:/bin");
        return restore;
    }
};

/// The folders of readers that went before, all of them old.
class TheFolderOfAReader : public DiskImageFixture {
protected:
    void SetUp() override
    {
        DiskImageFixture::SetUp();
        ASSERT_TRUE(QDir().mkpath(path(u"temporary"_s)));
        m_chosen = qgetenv("TMPDIR");
        qputenv("TMPDIR", path(u"temporary"_s).toLocal8Bit());
    }
    void TearDown() override
    {
        m_chosen.isEmpty() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", m_chosen);
        DiskImageFixture::TearDown();
    }

    /// Answers its path.
    [[nodiscard]] QByteArray leave(const QString &name) const
    {
        const QString folder = path(u"temporary/"_s + name);
        writeFile(folder + u"/inside/file"_s, "of before");
        constexpr timespec longAgo[] = {{1, 0}, {1, 0}};
        EXPECT_EQ(utimensat(AT_FDCWD, QFile::encodeName(folder), longAgo, 0), 0);
        return QFile::encodeName(folder);
    }
    [[nodiscard]] QStringList left() const { return namesIn(path(u"temporary"_s)); }

private:
    QByteArray m_chosen;
};

} // namespace

TEST_F(TheFolderOfAReader, goesWithItsReader)
{
    {
        const toolchain::ReaderFolder folder;
        EXPECT_EQ(QFileInfo(folder.path()).path(), path(u"temporary"_s));
        writeFile(folder.path() + u"/inside/file"_s, "of now");
    }
    EXPECT_EQ(left(), QStringList());
}

TEST_F(TheFolderOfAReader, thatWasKilledIsRemovedByALaterOne)
{
    (void)leave(u"sealwright-reader-abcdef"_s);
    const toolchain::ReaderFolder folder;
    EXPECT_EQ(left(), QStringList{QFileInfo(folder.path()).fileName()});
}

TEST_F(TheFolderOfAReader, thatIsAtWorkStays)
{
    const toolchain::ReaderFolder working;
    constexpr timespec longAgo[] = {{1, 0}, {1, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, QFile::encodeName(working.path()), longAgo, 0), 0);
    const toolchain::ReaderFolder folder;
    EXPECT_TRUE(QFileInfo::exists(working.path()));
}

TEST_F(TheFolderOfAReader, thatMayHaveNoLockYetStays)
{
    const QString young = path(u"temporary/sealwright-reader-abcdef"_s);
    ASSERT_TRUE(QDir().mkpath(young));
    const toolchain::ReaderFolder folder;
    EXPECT_TRUE(QFileInfo::exists(young));
}

TEST_F(TheFolderOfAReader, isToldFromWhatOthersLeft)
{
    const QByteArray longer = leave(u"sealwright-reader-abcdefg"_s);
    const QByteArray other = leave(u"sealwright-backup"_s);
    ASSERT_TRUE(QFile::link(QString::fromLocal8Bit(other), path(u"temporary/sealwright-reader-linked"_s)));
    const toolchain::ReaderFolder folder;
    EXPECT_EQ(left().size(), 4);
    EXPECT_TRUE(left().contains(u"sealwright-reader-linked"_s));
    EXPECT_EQ(readFile(QString::fromLocal8Bit(longer) + u"/inside/file"_s), "of before");
    EXPECT_EQ(readFile(QString::fromLocal8Bit(other) + u"/inside/file"_s), "of before");
}

TEST_F(AConfinedProcess, writesInItsFolderAndNowhereElse)
{
    if (!kernelConfines())
        return expectComplaint();
    const QStringList all{u"make"_s,     u"change"_s, u"folder"_s, u"link"_s,
                          u"hardlink"_s, u"pipe"_s,   u"move"_s,   u"remove"_s};
    EXPECT_EQ(tracesIn(u"inside"_s, inside()), all);
    EXPECT_EQ(tracesIn(u"outside"_s, inside()), QStringList());
    EXPECT_EQ(namesIn(path(u"outside"_s)), QStringList{u"old"_s});
    EXPECT_EQ(readFile(path(u"outside/old"_s)), "old");
    EXPECT_EQ(tracesIn(u"outside"_s, {}), all) << "the script would not have shown anything";
}

TEST_F(AConfinedProcess, movesNothingInOrOut)
{
    if (!kernelConfines())
        return expectComplaint();
    const auto move = [this](const QString &from, const QString &to) {
        return runIn(inside(), {u"/bin/mv"_s, path(from), path(to)}).status;
    };
    EXPECT_NE(move(u"outside/old"_s, u"inside/taken"_s), 0);
    EXPECT_NE(move(u"inside/old"_s, u"outside/brought"_s), 0);
    EXPECT_EQ(namesIn(path(u"outside"_s)), QStringList{u"old"_s});
    EXPECT_EQ(readFile(path(u"outside/old"_s)), "old");
}

TEST_F(AConfinedProcess, makesFoldersAndRemovesEmptyOnesWhereItMay)
{
    if (!kernelConfines())
        return expectComplaint();
    const toolchain::ConfinementPlaces inParent{{}, {path(u"outside"_s)}};
    EXPECT_EQ(tracesIn(u"outside"_s, inParent), QStringList{u"folder"_s});
    EXPECT_EQ(runIn(inParent, {u"/bin/rmdir"_s, path(u"outside/folder"_s)}).status, 0);
}

TEST_F(AConfinedProcess, opensNoSocket)
{
    if (!kernelConfines())
        return expectComplaint();
    for (const int family : {AF_INET, AF_INET6, AF_UNIX})
        EXPECT_EQ(errorOfConfined([family] { return socket(family, SOCK_STREAM, 0) >= 0; }), EPERM);
}

TEST_F(AConfinedProcess, mayStillWriteIntoNothing)
{
    if (!kernelConfines())
        return expectComplaint();
    const ToolResult result = runIn(inside(), {u"/bin/sh"_s, u"-c"_s, u"echo x >/dev/null && echo done"_s});
    EXPECT_EQ(result.output, u"done\n"_s);
}

TEST_F(AConfinedProcess, isThatOfAnExamination)
{
    if (!kernelConfines())
        return expectComplaint();
    const QString tool = crafted(u"file"_s, u"/usr/bin/file"_s);
    bundlebuilder::makeApp(path(u"My App.app"_s), u"com.example.app"_s);
    const QByteArray choices = QJsonDocument(QJsonObject{{u"fileTool"_s, tool}}).toJson();
    const QString examine = QFileInfo(toolRoot()).path() + u"/sealwright-examine"_s;
    const ToolResult result =
        run(examine, {u"--choices"_s, QString::fromUtf8(choices), path(u"My App.app"_s)});
    EXPECT_TRUE(result.status == 0 || result.status == 1) << result.error.toStdString();
    EXPECT_EQ(result.error, QString());
    EXPECT_FALSE(QFile::exists(mark()));
}

TEST_F(AConfinedProcess, isThatOfAnAttach)
{
    if (!kernelConfines())
        return expectComplaint();
    const QString image = craftedImage();
    for (const QStringList &place :
         {QStringList(), {u"-mountpoint"_s, path(u"chosen"_s)}, {u"-mountroot"_s, path(u"roots"_s)}}) {
        const auto crafted = withCraftedReader();
        const ToolResult result = run(hdiutil, QStringList{u"attach"_s, image} + place);
        EXPECT_EQ(result.status, 0) << result.error.toStdString();
        EXPECT_EQ(namesIn(mountPointIn(result)), QStringList{u"My App.app"_s});
        EXPECT_FALSE(QFile::exists(mark()));
        EXPECT_EQ(run(hdiutil, {u"detach"_s, mountPointIn(result)}).status, 0);
    }
    EXPECT_FALSE(QFile::exists(path(u"chosen"_s)));
}

TEST_F(AConfinedProcess, leavesNoFolderBehindThatNothingWasAttachedTo)
{
    writeFile(path(u"none.dmg"_s), QByteArray(8192, 'x'));
    EXPECT_EQ(run(hdiutil, {u"attach"_s, path(u"none.dmg"_s), u"-mountpoint"_s, path(u"chosen"_s)}).status,
              1);
    EXPECT_FALSE(QFile::exists(path(u"chosen"_s)));
}

TEST_F(AConfinedProcess, isThatOfTheServicesReview)
{
    if (!kernelConfines())
        return expectComplaint();
    storePassword();
    const QString image = craftedImage();
    const auto crafted = withCraftedReader();
    const ToolResult report = pollToTheEnd(uuidIn(upload(image)));
    EXPECT_TRUE(report.output.contains(u"Status: invalid"_s)) << report.output.toStdString();
    EXPECT_FALSE(QFile::exists(mark()));
}
