#include "formats/notary/localservice.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <signal.h>
#include <spawn.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <optional>
#include <string>
#include <thread>
#include <utility>

#include "formats/statefolder.h"

extern char **environ; // NOLINT(readability-redundant-declaration): POSIX leaves it to the program

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Outcome;
using platform::Result;

namespace toolchain::notary {

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto startLimit = std::chrono::seconds(20);
constexpr auto lookPause = std::chrono::milliseconds(10);
constexpr int levelsAbove = 12;
constexpr int lockLooks = 20; // a client that looks whether a service runs holds the lock for a moment
constexpr auto lockPause = std::chrono::milliseconds(5);

QByteArray lockPath()
{
    return QFile::encodeName(serviceFolder() + u"/running"_s);
}

bool isRunning()
{
    const int descriptor = ::open(lockPath().constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool isFree = flock(descriptor, LOCK_SH | LOCK_NB) == 0;
    close(descriptor);
    return !isFree;
}

/// The tool root's program, looked for from this program's own place upwards, since every tool lies in the
/// same root.
QString serviceProgram()
{
    QString folder = QFileInfo(QFile::symLinkTarget(u"/proc/self/exe"_s)).path();
    for (int level = 0; level < levelsAbove && folder.size() > 1; ++level) {
        const QString program = folder + u"/usr/bin/sealwright-notaryd"_s;
        if (QFileInfo(program).isExecutable())
            return program;
        folder = QFileInfo(folder).path();
    }
    return {};
}

/// Everything that the program says until it has let go of the pipe, which it does when it listens.
QString said(int descriptor)
{
    QByteArray text;
    std::array<char, 4096> block;
    ssize_t length = 0;
    while ((length = read(descriptor, block.data(), block.size())) > 0 || (length < 0 && errno == EINTR))
        text.append(block.data(), std::max<ssize_t>(length, 0));
    return QString::fromUtf8(text).trimmed();
}

/// Answers the process, or the negative number of the error.
pid_t spawn(const QString &program, int output)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, output, 2);
    std::string path = QFile::encodeName(program).toStdString();
    std::string option = "--on-demand";
    std::array<char *, 3> words{path.data(), option.data(), nullptr};
    pid_t process = 0;
    const int error = posix_spawn(&process, path.c_str(), &actions, nullptr, words.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? process : -error;
}

/// Answers once the service listens.
Outcome startProgram(const QString &program)
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        return Error{QString::fromLocal8Bit(std::strerror(errno))};
    const pid_t process = spawn(program, ends[1]);
    close(ends[1]);
    const QString text = said(ends[0]);
    close(ends[0]);
    int status = 0;
    if (process < 0)
        return Error{program + u": "_s + QString::fromLocal8Bit(std::strerror(-process))};
    waitpid(process, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? Outcome::success() : Error{text};
}

/// What the latest service has left about itself.
QJsonObject writtenAddress()
{
    QFile file(serviceFolder() + u"/address.json"_s);
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object() : QJsonObject();
}

/// Where the running service listens; nothing while it is on the way up.
std::optional<ServiceConfig> addressOfRunning()
{
    const QJsonObject written = writtenAddress();
    const auto process = pid_t(written[u"pid"].toInteger());
    const auto config = serviceConfigFrom(QJsonDocument(written).toJson());
    const bool isPresent = process > 0 && (kill(process, 0) == 0 || errno == EPERM);
    return isPresent && config && config->isLocal && !config->api.isEmpty() ? std::optional(*config)
                                                                            : std::nullopt;
}

int connectionTo(const QString &host, quint16 port)
{
    sockaddr_in four = {};
    four.sin_family = AF_INET;
    four.sin_port = htons(port);
    if (inet_pton(AF_INET, host.toLatin1().constData(), &four.sin_addr) != 1)
        return -1;
    const int descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor >= 0 && connect(descriptor, reinterpret_cast<sockaddr *>(&four), sizeof four) == 0)
        return descriptor;
    if (descriptor >= 0)
        close(descriptor);
    return -1;
}

/// What a person has put into the settings goes before what the service has left about itself.
std::optional<ServiceConfig> configOfRunning()
{
    const auto own = addressOfRunning();
    const auto chosen = readServiceConfig();
    if (!own || !chosen || !chosen->isLocal)
        return std::nullopt;
    return chosen->api.isEmpty() ? *own : *chosen;
}

/// Connects to the address at which systemd waits in the service's place, if it does. Whoever connects has it
/// started (systemd.socket(5)).
int connectionToSystemd()
{
    const QJsonObject written = writtenAddress();
    const QUrl api(written[u"api"].toString());
    const bool isKept = written[u"activated"].toBool() && isLoopback(api.host());
    return isKept ? connectionTo(api.host(), quint16(api.port(0))) : -1;
}

/// Whether systemd has started the service for us.
bool isWoken()
{
    const int connection = connectionToSystemd();
    const auto deadline = Clock::now() + startLimit;
    while (connection >= 0 && !isRunning() && Clock::now() < deadline)
        std::this_thread::sleep_for(lookPause);
    if (connection >= 0)
        close(connection);
    return connection >= 0 && isRunning();
}

Outcome start()
{
    const Outcome made = makePrivateFolder(serviceFolder());
    if (!made)
        return made;
    const FolderLock starting(serviceFolder());
    if (!starting.isHeld())
        return Error{serviceFolder() + u": cannot be locked"_s};
    if (isRunning())
        return {};
    const QString program = serviceProgram();
    if (program.isEmpty())
        return Error{u"there is no sealwright-notaryd beside this tool"_s};
    return isWoken() ? Outcome::success() : startProgram(program);
}

} // namespace

Result<ServiceConfig> ensureService()
{
    const auto config = readServiceConfig();
    if (!config || !config->isLocal)
        return config;
    const auto deadline = Clock::now() + startLimit;
    while (Clock::now() < deadline) {
        const Outcome started = isRunning() ? Outcome::success() : start();
        if (!started)
            return Error{u"The local notary service could not be started: "_s + started.error()};
        if (const auto running = configOfRunning())
            return *running;
        std::this_thread::sleep_for(lookPause); // it is on its way up, or on its way down
    }
    return Error{u"The local notary service does not say where it listens."_s};
}

ServiceLock::ServiceLock()
    : m_descriptor(::open(lockPath().constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600))
{
    if (m_descriptor < 0)
        m_opened =
            Error{QFile::decodeName(lockPath()) + u": "_s + QString::fromLocal8Bit(std::strerror(errno))};
    for (int look = 0; m_descriptor >= 0 && flock(m_descriptor, LOCK_EX | LOCK_NB) != 0; ++look) {
        std::this_thread::sleep_for(lockPause);
        if (look + 1 == lockLooks)
            close(std::exchange(m_descriptor, -1));
    }
}

ServiceLock::~ServiceLock()
{
    if (m_descriptor >= 0)
        close(m_descriptor);
}

bool ServiceLock::isInPlace() const
{
    struct stat held = {};
    struct stat found = {};
    return fstat(m_descriptor, &held) == 0 && stat(lockPath().constData(), &found) == 0
        && held.st_ino == found.st_ino && held.st_dev == found.st_dev;
}

} // namespace toolchain::notary
