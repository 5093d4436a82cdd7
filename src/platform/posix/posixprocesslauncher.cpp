#include "platform/posix/posixprocesslauncher.h"

#include "platform/posix/portablecalls.h"
#include "platform/posix/posixprocess.h"

namespace platform {

PosixProcessLauncher::PosixProcessLauncher(Locator locate, QStringList pathPrefix)
    : m_locate(std::move(locate))
    , m_pathPrefix(std::move(pathPrefix))
{
}

std::shared_ptr<Process> PosixProcessLauncher::process(const QString &path, const QStringList &arguments)
{
    return std::make_shared<PosixProcess>(program(path, arguments));
}

Outcome PosixProcessLauncher::launchDetached(const QString &path, const QStringList &arguments)
{
    const auto lock = lockLaunches();
    pid_t child = -1;
    Outcome started = spawn(program(path, arguments), {}, SpawnAs::session, &child);
    if (started)
        reapInBackground(child);
    return started;
}

Program PosixProcessLauncher::program(const QString &path, const QStringList &arguments) const
{
    return {path, m_locate ? m_locate(path) : path, arguments, m_pathPrefix};
}

} // namespace platform
