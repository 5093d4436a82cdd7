#include "formats/statefolder.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

/// With those above it; answers errno. Its mode is told to the system, since the mask for new files is that
/// of all threads at once.
int makeFolder(const QByteArray &path)
{
    struct stat facts = {};
    const auto isThere = [&] { return stat(path.constData(), &facts) == 0 && S_ISDIR(facts.st_mode); };
    if (isThere() || mkdir(path.constData(), S_IRWXU) == 0)
        return 0;
    if (errno == EEXIST)
        return isThere() ? 0 : ENOTDIR;
    if (errno != ENOENT)
        return errno;
    const QByteArray parent = path.left(path.lastIndexOf('/'));
    const int error = parent.size() < path.size() && !parent.isEmpty() ? makeFolder(parent) : ENOENT;
    if (error != 0)
        return error;
    return mkdir(path.constData(), S_IRWXU) == 0 || isThere() ? 0 : errno;
}

} // namespace

QString stateFolder()
{
    const QString chosen = qEnvironmentVariable("SEALWRIGHT_TOOLCHAIN_STATE");
    if (!chosen.isEmpty())
        return QDir::cleanPath(QDir(chosen).absolutePath());
    const QString data = qEnvironmentVariable("XDG_DATA_HOME");
    return (data.startsWith(u'/') ? data : QDir::homePath() + u"/.local/share"_s)
        + u"/sealwright-toolchain"_s;
}

QString keychainFolder()
{
    return stateFolder() + u"/keychain"_s;
}

QString notaryFolder()
{
    return stateFolder() + u"/notary"_s;
}

platform::Outcome makePrivateFolder(const QString &path)
{
    const int error = makeFolder(QFile::encodeName(path));
    if (error != 0)
        return platform::Error{path + u": "_s + QString::fromLocal8Bit(std::strerror(error))};
    return {};
}

FolderLock::FolderLock(const QString &folder)
    : m_descriptor(
        open(QFile::encodeName(folder + u"/lock"_s).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600))
{
    while (m_descriptor >= 0 && flock(m_descriptor, LOCK_EX) != 0) {
        if (errno == EINTR)
            continue;
        close(m_descriptor);
        m_descriptor = -1;
    }
}

FolderLock::~FolderLock()
{
    if (m_descriptor >= 0)
        close(m_descriptor);
}

} // namespace toolchain
