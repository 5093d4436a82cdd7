#pragma once

#include "platform/posix/pipereader.h"
#include "platform/posix/posixprocesslauncher.h"
#include "temporaryfolder.h"

#include <fcntl.h>
#include <unistd.h>

inline const QString shell = QStringLiteral("/bin/sh");

/// A process with all that it hands over.
struct ToolRun {
    std::shared_ptr<platform::Process> process;
    QByteArray output;
    QByteArray error;
    int errorPieces = 0;

    void wait()
    {
        process->waitUntilExit([this](const QByteArray &chunk) { output += chunk; },
                               [this](const QByteArray &all) {
                                   error += all;
                                   ++errorPieces;
                               });
    }
};

/// Runs shells.
class PosixProcess : public testing::Test {
protected:
    /// A shell at work on the script; more arguments are $1 and so on.
    ToolRun launch(const QString &script, const QStringList &arguments = {})
    {
        ToolRun run{launcher.process(
                        shell, QStringList{QStringLiteral("-c"), script, QStringLiteral("sh")} + arguments),
                    {},
                    {},
                    0};
        const platform::Outcome launched = run.process->launch();
        EXPECT_TRUE(launched) << launched.error().toStdString();
        return run;
    }

    ToolRun finished(const QString &script, const QStringList &arguments = {})
    {
        ToolRun run = launch(script, arguments);
        run.wait();
        return run;
    }

    platform::PosixProcessLauncher launcher;
    TemporaryFolder folder;
};
