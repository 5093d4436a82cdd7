#include "formats/package/safefolder.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>

using namespace Qt::StringLiterals;

namespace toolchain::package {

namespace {

volatile std::sig_atomic_t isStopWanted = 0;

void noteStop(int)
{
    isStopWanted = 1;
}

/// Lets the unpacking end by itself where a signal would leave a half-filled folder behind.
void watchSignals()
{
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action { };
        action.sa_handler = noteStop;
        sigaction(number, &action, nullptr);
    }
}

/// Whether a link at a path leads out of the folder that the path is relative to.
bool leadsOut(const QByteArray &path, const QByteArray &target)
{
    qsizetype depth = path.count('/');
    for (const QByteArray &part : target.split('/')) {
        if (part == "..")
            --depth;
        else if (!part.isEmpty() && part != ".")
            ++depth;
        if (depth < 0)
            return true;
    }
    return target.isEmpty() || target.startsWith('/');
}

} // namespace

platform::Result<std::shared_ptr<SafeFolder>> SafeFolder::create(const QString &place)
{
    QByteArray path = QFile::encodeName(place);
    while (path.size() > 1 && path.endsWith('/'))
        path.chop(1);
    const auto describe = [&](int error) {
        return platform::Error{QFile::decodeName(path) + u": "_s
                               + QString::fromLocal8Bit(std::strerror(error))};
    };
    struct stat information { };
    if (lstat(path.constData(), &information) == 0)
        return describe(EEXIST);
    const qsizetype slash = path.lastIndexOf('/');
    QByteArray building = path.first(slash + 1) + '.' + path.mid(slash + 1).left(200) + ".XXXXXX";
    if (mkdtemp(building.data()) == nullptr)
        return describe(errno);
    const int descriptor = open(building.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0)
        return describe(errno);
    watchSignals();
    return std::shared_ptr<SafeFolder>(new SafeFolder(path, building, descriptor));
}

SafeFolder::SafeFolder(QByteArray place, QByteArray building, int descriptor)
    : m_place(std::move(place))
    , m_building(std::move(building))
    , m_descriptor(descriptor)
{
}

SafeFolder::~SafeFolder()
{
    closeFile();
    close(m_descriptor);
    std::error_code ignored;
    if (!m_isFinished)
        std::filesystem::remove_all(m_building.toStdString(), ignored);
}

platform::Error SafeFolder::failure(const QByteArray &path, const QString &reason) const
{
    return {QString::fromUtf8(path) + u": "_s + reason};
}

platform::Error SafeFolder::failure(const QByteArray &path, int error) const
{
    return failure(path, QString::fromLocal8Bit(std::strerror(error)));
}

void SafeFolder::closeFile()
{
    if (m_file >= 0)
        close(m_file);
    m_file = -1;
}

/// Opens the folder that a path lies in, step by step, making what is missing. The caller closes it.
platform::Result<int> SafeFolder::folderFor(const QByteArray &path)
{
    closeFile();
    if (isStopWanted != 0)
        return failure(path, u"stopped by a signal"_s);
    QByteArrayList parts = path.split('/');
    parts.removeLast();
    int folder = dup(m_descriptor);
    for (const QByteArray &part : parts) {
        if (part.isEmpty() || part == "." || part == "..") {
            close(folder);
            return failure(path, u"the name leads out of its folder"_s);
        }
        mkdirat(folder, part.constData(), 0755);
        const int next = openat(folder, part.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        const int error = errno;
        close(folder);
        if (next < 0)
            return failure(path, error);
        folder = next;
    }
    return folder;
}

platform::Outcome SafeFolder::makeFolder(const QByteArray &path, quint32 mode)
{
    const auto folder = folderFor(path);
    if (!folder)
        return folder.failure();
    const QByteArray name = path.mid(path.lastIndexOf('/') + 1);
    const int outcome = mkdirat(*folder, name.constData(), (mode & 0777) | 0700);
    struct stat information { };
    const bool isThere = outcome == 0
        || (errno == EEXIST && fstatat(*folder, name.constData(), &information, AT_SYMLINK_NOFOLLOW) == 0
            && S_ISDIR(information.st_mode));
    const int error = errno;
    close(*folder);
    return isThere && name != ".." && name != "." ? platform::Outcome()
                                                  : platform::Outcome(failure(path, error));
}

platform::Outcome SafeFolder::beginFile(const QByteArray &path, quint32 mode, quint64 size)
{
    const auto folder = folderFor(path);
    if (!folder)
        return folder.failure();
    const QByteArray name = path.mid(path.lastIndexOf('/') + 1);
    m_file =
        openat(*folder, name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode & 0777);
    const int error = errno;
    close(*folder);
    if (m_file < 0)
        return failure(path, error);
    m_filePath = path;
    struct statvfs room { };
    const bool fits = fstatvfs(m_file, &room) != 0 || size / room.f_frsize <= room.f_bavail;
    return fits ? platform::Outcome() : platform::Outcome(failure(path, ENOSPC));
}

platform::Outcome SafeFolder::write(QByteArrayView bytes)
{
    while (!bytes.isEmpty()) {
        const ssize_t length = ::write(m_file, bytes.data(), std::size_t(bytes.size()));
        if (length < 0 && errno == EINTR && isStopWanted == 0)
            continue;
        if (length < 0)
            return failure(m_filePath, errno);
        bytes = bytes.sliced(length);
    }
    return isStopWanted == 0 ? platform::Outcome()
                             : platform::Outcome(failure(m_filePath, u"stopped by a signal"_s));
}

platform::Outcome SafeFolder::makeLink(const QByteArray &path, const QByteArray &target)
{
    if (leadsOut(path, target))
        return failure(path, u"a link that leads out of its folder"_s);
    const auto folder = folderFor(path);
    if (!folder)
        return folder.failure();
    const QByteArray name = path.mid(path.lastIndexOf('/') + 1);
    const int outcome = symlinkat(target.constData(), *folder, name.constData());
    const int error = errno;
    close(*folder);
    return outcome == 0 ? platform::Outcome() : platform::Outcome(failure(path, error));
}

platform::Outcome SafeFolder::finish()
{
    closeFile();
    fchmod(m_descriptor, 0755);
    if (isStopWanted != 0)
        return failure(m_place, u"stopped by a signal"_s);
    if (renameat2(AT_FDCWD, m_building.constData(), AT_FDCWD, m_place.constData(), RENAME_NOREPLACE) != 0)
        return failure(m_place, errno);
    m_isFinished = true;
    return {};
}

} // namespace toolchain::package
