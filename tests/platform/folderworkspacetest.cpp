#include "platform/qt/folderworkspace.h"
#include "eventwait.h"
#include "platform/posix/posixfileservice.h"
#include "platform/posix/posixprocesslauncher.h"
#include "temporaryfolder.h"

#include <QDir>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace platform;

namespace {

class PlainWorkspace : public FolderWorkspace {
public:
    using FolderWorkspace::FolderWorkspace;
    void revealItem(const QString &) override { }
    void openUrl(const QUrl &) override { }
};

class Applications : public testing::Test {
protected:
    /// An application whose executable has these contents; the executable's path.
    QString install(const QString &name, const QString &identifier, const QByteArray &executable)
    {
        folder.folder(u"Applications/%1.app/Contents/MacOS"_s.arg(name));
        folder.file(u"Applications/%1.app/Contents/Info.plist"_s.arg(name),
                    u"<plist><dict><key>CFBundleIdentifier</key><string>%1</string>"
                    "<key>CFBundleExecutable</key><string>%2</string></dict></plist>"_s.arg(identifier, name)
                        .toUtf8());
        const QString path = folder.file(u"Applications/%1.app/Contents/MacOS/%1"_s.arg(name), executable);
        EXPECT_TRUE(files.setPermissions(path, 0755));
        return path;
    }

    /// A script that tells its process and then waits at the gate.
    QByteArray waitingScript(const QByteArray &interpreter)
    {
        gate = folder.fifo(u"gate"_s);
        answer = folder.fifo(u"answer"_s);
        return "#!" + interpreter + "\necho $$ > '" + QFile::encodeName(answer) + "'\nread x < '"
            + QFile::encodeName(gate) + "'\n";
    }

    TemporaryFolder folder;
    PosixFileService files;
    PosixProcessLauncher launcher;
    PlainWorkspace workspace{folder.path(u"Applications"_s), files, launcher};
    QString gate;
    QString answer;
};

} // namespace

TEST_F(Applications, anApplicationIsFoundByItsIdentifier)
{
    EXPECT_TRUE(workspace.pathForApplication(u"com.example.one"_s).isNull()); // not even a folder yet
    install(u"One"_s, u"com.example.one"_s, "");
    install(u"Two"_s, u"com.example.two"_s, "");
    folder.folder(u"Applications/Bare.app"_s);
    folder.file(u"Applications/Plain.app"_s);
    EXPECT_EQ(workspace.pathForApplication(u"com.example.two"_s), folder.path(u"Applications/Two.app"_s));
    EXPECT_TRUE(workspace.pathForApplication(u"com.example.three"_s).isNull());
}

TEST_F(Applications, anApplicationThatNobodyStartedDoesNotRun)
{
    install(u"One"_s, u"com.example.one"_s, "#!/bin/sh\n");
    EXPECT_FALSE(workspace.isRunning(u"com.example.one"_s));
    EXPECT_FALSE(workspace.isRunning(u"com.example.none"_s));
}

TEST_F(Applications, anApplicationThatIsAScriptRunsFromItsLaunchToItsEnd)
{
    install(u"One"_s, u"com.example.one"_s, waitingScript("/bin/sh -u"));
    install(u"Two"_s, u"com.example.two"_s, "#!/bin/sh\n");
    ASSERT_TRUE(workspace.launchInBackground(u"com.example.one"_s));
    EXPECT_GT(contentsOf(answer).toInt(), 0);
    EXPECT_TRUE(workspace.isRunning(u"com.example.one"_s));
    EXPECT_FALSE(workspace.isRunning(u"com.example.two"_s));
    release(gate);
    EXPECT_TRUE(waitFor([&] { return !workspace.isRunning(u"com.example.one"_s); }));
}

TEST_F(Applications, aScriptThatFindsItsInterpreterByThePathCountsToo)
{
    install(u"One"_s, u"com.example.one"_s, waitingScript("/usr/bin/env sh"));
    ASSERT_TRUE(workspace.launchInBackground(u"com.example.one"_s));
    EXPECT_GT(contentsOf(answer).toInt(), 0);
    EXPECT_TRUE(workspace.isRunning(u"com.example.one"_s));
    release(gate);
}

TEST_F(Applications, anApplicationIsRecognisedThroughALinkInItsPath)
{
    install(u"One"_s, u"com.example.one"_s, waitingScript("/bin/sh"));
    folder.link(u"link"_s, folder.path(u"Applications"_s));
    PlainWorkspace linked(folder.path(u"link"_s), files, launcher);
    ASSERT_TRUE(linked.launchInBackground(u"com.example.one"_s));
    EXPECT_GT(contentsOf(answer).toInt(), 0);
    EXPECT_TRUE(linked.isRunning(u"com.example.one"_s));
    EXPECT_TRUE(workspace.isRunning(u"com.example.one"_s));
    release(gate);
}

TEST_F(Applications, anApplicationThatIsABinaryRuns)
{
    const QString sleeper = QFileInfo(u"/bin/sleep"_s).canonicalFilePath();
    const QString executable = install(u"One"_s, u"com.example.one"_s, contentsOf(sleeper));
    const auto process = launcher.process(executable, {u"600"_s});
    ASSERT_TRUE(process->launch());
    EXPECT_TRUE(workspace.isRunning(u"com.example.one"_s));
    process->terminate();
    process->waitUntilExit([](const QByteArray &) {}, [](const QByteArray &) {});
    EXPECT_EQ(process->terminationStatus(), SIGTERM);
    EXPECT_FALSE(workspace.isRunning(u"com.example.one"_s));
}

TEST_F(Applications, aProgramThatOnlyReadsAFileInsideDoesNotCount)
{
    install(u"One"_s, u"com.example.one"_s, "");
    const auto reader = launcher.process(
        u"/usr/bin/tail"_s, {u"-f"_s, folder.path(u"Applications/One.app/Contents/Info.plist"_s)});
    ASSERT_TRUE(reader->launch());
    EXPECT_FALSE(workspace.isRunning(u"com.example.one"_s));
    reader->terminate();
    reader->waitUntilExit([](const QByteArray &) {}, [](const QByteArray &) {});
}

TEST_F(Applications, whatIsNotInstalledOrHasNoExecutableCannotBeLaunched)
{
    EXPECT_EQ(workspace.launchInBackground(u"com.example.none"_s).error(),
              u"Cannot launch 'com.example.none': it is not installed"_s);
    EXPECT_TRUE(files.removeItem(install(u"One"_s, u"com.example.one"_s, "")));
    EXPECT_TRUE(workspace.launchInBackground(u"com.example.one"_s).error().contains(u"No such file"_s));
    folder.file(u"Applications/One.app/Contents/Info.plist"_s,
                "<plist><dict><key>CFBundleIdentifier</key><string>com.example.one</string></dict></plist>");
    EXPECT_EQ(workspace.launchInBackground(u"com.example.one"_s).error(),
              u"Cannot launch '%1': it names no executable"_s.arg(folder.path(u"Applications/One.app"_s)));
}
