#pragma once

#include "platform/posix/posixprocesslauncher.h"
#include "tools/slwtaskmaster.h"

#include <QDeadlineTimer>

#include <functional>
#include <thread>

#include <gtest/gtest.h>

/// True as soon as the condition holds; false when it does not for a minute.
[[nodiscard]] inline bool waitFor(const std::function<bool()> &condition)
{
    const QDeadlineTimer deadline(std::chrono::minutes(1));
    while (!condition() && !deadline.hasExpired())
        std::this_thread::yield();
    return condition();
}

/// A runner without pauses, whose tools are real shells.
class RealRunner : public testing::Test {
protected:
    SLWTaskResponsePtr shell(const QString &script, const QString &owner = QStringLiteral("owner"))
    {
        return runner.runTool(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), script}, owner);
    }

    /// Whether the run in progress has printed the text so far.
    [[nodiscard]] bool hasPrinted(const QString &text)
    {
        return waitFor([&] { return runner.outputString() == text; });
    }

    platform::PosixProcessLauncher launcher;
    SLWTaskMaster runner{launcher, RunnerPauses{.afterExit = 0, .altoolRetry = 0}};
};
