#include "platform/posix/spawn.h"

#include <QFile>

#include <csignal>
#include <cstring>
#include <spawn.h>
#include <unistd.h>
#include <vector>

#ifdef __APPLE__
#include <crt_externs.h>
#define environ (*_NSGetEnviron())
#endif

using namespace Qt::StringLiterals;

namespace platform {

namespace {

/// What posix_spawn takes to describe a child, freed at the end.
class SpawnSettings {
public:
    SpawnSettings(SpawnStreams streams, SpawnAs as)
    {
        posix_spawn_file_actions_init(&actions);
        posix_spawnattr_init(&attributes);
        int flags = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
        flags |= as == SpawnAs::group ? POSIX_SPAWN_SETPGROUP : POSIX_SPAWN_SETSID;
#ifdef POSIX_SPAWN_CLOEXEC_DEFAULT
        flags |= POSIX_SPAWN_CLOEXEC_DEFAULT;
#endif
        posix_spawnattr_setflags(&attributes, static_cast<short>(flags));
        setSignals();
        setStream(STDIN_FILENO, streams.input);
        setStream(STDOUT_FILENO, streams.output);
        setStream(STDERR_FILENO, streams.error);
    }
    ~SpawnSettings()
    {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }
    SpawnSettings(const SpawnSettings &) = delete;
    SpawnSettings &operator=(const SpawnSettings &) = delete;

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;

private:
    /// A program expects to be ended by a broken pipe, though the application ignores that signal.
    void setSignals()
    {
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&attributes, &signals);
        sigaddset(&signals, SIGPIPE);
        posix_spawnattr_setsigdefault(&attributes, &signals);
    }

    void setStream(int stream, int descriptor)
    {
        if (descriptor >= 0)
            posix_spawn_file_actions_adddup2(&actions, descriptor, stream);
#ifdef POSIX_SPAWN_CLOEXEC_DEFAULT
        else
            posix_spawn_file_actions_addinherit_np(&actions, stream);
#endif
    }
};

/// The application's environment with the folders in front of PATH.
class ChildEnvironment {
public:
    explicit ChildEnvironment(const QStringList &pathPrefix)
    {
        const char *path = getenv("PATH");
        m_path = "PATH=" + QFile::encodeName(pathPrefix.join(u':')) + ':' + (path ? path : "/usr/bin:/bin");
        for (char **entry = environ; *entry; ++entry) {
            if (pathPrefix.isEmpty() || std::strncmp(*entry, "PATH=", 5) != 0)
                m_entries.push_back(*entry);
        }
        if (!pathPrefix.isEmpty())
            m_entries.push_back(m_path.data());
        m_entries.push_back(nullptr);
    }

    char *const *entries() const { return m_entries.data(); }

private:
    QByteArray m_path;
    std::vector<char *> m_entries;
};

/// An argument vector with the program's own name first.
class ArgumentVector {
public:
    explicit ArgumentVector(const Program &program)
    {
        m_texts.reserve(static_cast<size_t>(program.arguments.size()) + 1);
        m_texts.push_back(QFile::encodeName(program.executable));
        for (const QString &argument : program.arguments)
            m_texts.push_back(argument.toUtf8());
        for (QByteArray &text : m_texts)
            m_entries.push_back(text.data());
        m_entries.push_back(nullptr);
    }

    const char *executable() const { return m_texts.front().constData(); }
    char *const *entries() const { return m_entries.data(); }

private:
    std::vector<QByteArray> m_texts;
    std::vector<char *> m_entries;
};

QString launchError(const Program &program, int error)
{
    const QString place =
        program.executable == program.path ? QString() : u" (found at '%1')"_s.arg(program.executable);
    return u"Cannot launch '"_s + program.path + u'\'' + place + u": "_s + qt_error_string(error);
}

} // namespace

std::unique_lock<std::mutex> lockLaunches()
{
    static std::mutex mutex;
    return std::unique_lock(mutex);
}

Outcome spawn(const Program &program, SpawnStreams streams, SpawnAs as, pid_t *child)
{
    const SpawnSettings settings(streams, as);
    const ChildEnvironment environment(program.pathPrefix);
    const ArgumentVector arguments(program);
    pid_t started = -1;
    const int error = posix_spawn(&started, arguments.executable(), &settings.actions, &settings.attributes,
                                  arguments.entries(), environment.entries());
    if (error != 0)
        return Outcome::failure(launchError(program, error));
    *child = started;
    return Outcome::success();
}

} // namespace platform
