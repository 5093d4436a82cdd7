#include "formats/statefolder.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

using namespace Qt::StringLiterals;

namespace toolchain {

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
    const mode_t mask = umask(077);
    std::error_code error;
    std::filesystem::create_directories(path.toStdString(), error);
    umask(mask);
    if (error)
        return platform::Error{path + u": "_s + QString::fromStdString(error.message())};
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
