// The runner beside the bare system calls.

#include "rows.h"

#include "platform/posix/posixprocesslauncher.h"
#include "support/core.h"
#include "tools/slwtaskmaster.h"

#include <array>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 gibibyte = 1024LL * 1024 * 1024;
constexpr double mebibyte = 1024.0 * 1024.0;

void spawnAndWait(const char *path, std::vector<const char *> arguments,
                  const posix_spawn_file_actions_t *actions, const std::function<void()> &whileItRuns)
{
    arguments.insert(arguments.begin(), path);
    arguments.push_back(nullptr);
    pid_t process = 0;
    if (posix_spawn(&process, path, actions, nullptr, const_cast<char *const *>(arguments.data()), environ)
        != 0)
        qFatal("%s cannot be started", path);
    whileItRuns();
    int status = 0;
    if (waitpid(process, &status, 0) != process || status != 0)
        qFatal("%s failed", path);
}

/// Runs head on so many zero bytes and throws away what it prints.
void discardBytes(const char *count)
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        qFatal("no pipe");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    spawnAndWait("/usr/bin/head", {"-c", count, "/dev/zero"}, &actions, [&ends] {
        close(ends[1]);
        std::vector<char> buffer(64 * 1024);
        while (read(ends[0], buffer.data(), buffer.size()) > 0) { }
        close(ends[0]);
    });
    posix_spawn_file_actions_destroy(&actions);
}

} // namespace

QList<Figure> rows::oneToolRun()
{
    constexpr int runs = 200;
    platform::PosixProcessLauncher launcher;
    SLWTaskMaster runner(launcher, {.afterExit = 0, .altoolRetry = 0});
    const double ratio = measuring::ratio(
        9,
        [&runner] {
            for (int run = 0; run < runs; ++run) {
                if (runner.runTool(u"/bin/true"_s, {}, u"bench"_s)->status() != 0)
                    qFatal("a run failed");
            }
        },
        [] {
            for (int run = 0; run < runs; ++run)
                spawnAndWait("/bin/true", {}, nullptr, [] {});
        });
    return {{u"one tool run, over posix_spawn and waitpid"_s, ratio, 1.5, {}}};
}

QList<Figure> rows::muchToolOutput()
{
    platform::PosixProcessLauncher launcher;
    const QString count = QString::number(gibibyte);
    const QByteArray bytes = count.toLatin1();
    const auto collect = [&launcher, &count] {
        SLWTaskMaster runner(launcher, {.afterExit = 0, .altoolRetry = 0});
        const auto response =
            runner.runTool(u"/usr/bin/head"_s, {u"-c"_s, count, u"/dev/zero"_s}, u"bench"_s);
        if (response->status() != 0)
            qFatal("a run failed");
    };
    const qint64 idle = measuring::residentMemory();
    measuring::forgetPeakMemory();
    collect();
    const auto peak = static_cast<double>(measuring::peakMemory() - idle);
    const double ratio = measuring::ratio(5, collect, [&bytes] { discardBytes(bytes.constData()); });
    return {{u"1 GiB of tool output, over a reader that throws it away"_s, ratio, 1.5, {}},
            {u"    its peak memory over the idle process"_s, peak / mebibyte, 1.2 * 1024, u"MiB"_s}};
}
