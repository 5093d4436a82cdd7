#include "formats/keychain/sessionkey.h"

#include <QCryptographicHash>
#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

#include "formats/keychain/privatefile.h"
#include "formats/statefolder.h"

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

bool isOurs(const QString &folder)
{
    struct stat status = {};
    return lstat(QFile::encodeName(folder).constData(), &status) == 0 && S_ISDIR(status.st_mode)
        && status.st_uid == getuid() && (status.st_mode & 077) == 0;
}

/// A session without a runtime folder, such as that of a container, gets one in memory.
QString runtimeFolder()
{
    const QString session = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (session.startsWith(u'/') && isOurs(session))
        return session + u"/sealwright"_s;
    const QString users = u"/run/user/%1"_s.arg(getuid());
    if (isOurs(users))
        return users + u"/sealwright"_s;
    const QString memory = QFile::exists(u"/dev/shm"_s) ? u"/dev/shm"_s : u"/tmp"_s;
    return memory + u"/sealwright-%1"_s.arg(getuid());
}

} // namespace

SessionKey::SessionKey(const QString &vaultFolder)
    : m_path(runtimeFolder() + u"/keychain-"_s
             + QString::fromLatin1(
                 QCryptographicHash::hash(vaultFolder.toUtf8(), QCryptographicHash::Sha256).toHex().left(32)))
{
}

std::optional<QByteArray> SessionKey::read() const
{
    const QString folder = m_path.left(m_path.lastIndexOf(u'/'));
    QFile file(m_path);
    if (!isOurs(folder) || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    constexpr qint64 mostBytes = 1024;
    return file.read(mostBytes);
}

platform::Outcome SessionKey::keep(const QByteArray &key) const
{
    const QString folder = m_path.left(m_path.lastIndexOf(u'/'));
    const platform::Outcome made = makePrivateFolder(folder);
    if (!made)
        return made;
    if (!isOurs(folder))
        return platform::Error{folder + u": is not a private folder of this user"_s};
    return writePrivateFile(m_path, key);
}

void SessionKey::forget() const
{
    QFile::remove(m_path);
}

} // namespace toolchain
