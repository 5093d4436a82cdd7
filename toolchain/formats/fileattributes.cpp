#include "formats/fileattributes.h"

#include "formats/appledouble.h"
#include "formats/failures.h"
#include "support/attributenames.h"

#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>
#include <sys/xattr.h>

#include <cerrno>
#include <cstring>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Outcome;
using platform::Result;

namespace toolchain {

namespace {

constexpr qint64 longestSidecar = 256 << 20; ///< a resource fork's bound in practice
constexpr qsizetype longestValue = 64 << 10; ///< the longest that Linux keeps
constexpr qsizetype longestNameList = 64 << 10; ///< as well

QString errorOf(const QString &path, int error)
{
    return path + u": "_s + QString::fromLocal8Bit(std::strerror(error));
}

bool isRegularFile(const QString &path)
{
    struct stat status = {};
    return lstat(QFile::encodeName(path).constData(), &status) == 0 && S_ISREG(status.st_mode);
}

/// Names of the host's attributes; errno tells of a failure where there are none.
Result<QByteArrayList> hostNames(const QString &path)
{
    QByteArray block(longestNameList, Qt::Uninitialized);
    const ssize_t length =
        llistxattr(QFile::encodeName(path).constData(), block.data(), std::size_t(block.size()));
    if (length < 0 && errno != ENOTSUP && errno != EPERM)
        return Error{errorOf(path, errno)};
    block.truncate(std::max<qsizetype>(length, 0));
    QByteArrayList names = block.split('\0');
    names.removeAll({});
    return names;
}

/// Nothing where the attribute has gone away in the meantime.
std::optional<QByteArray> hostValue(const QString &path, const QByteArray &hostName)
{
    QByteArray value(longestValue, Qt::Uninitialized);
    const ssize_t length = lgetxattr(QFile::encodeName(path).constData(), hostName.constData(), value.data(),
                                     std::size_t(value.size()));
    if (length < 0)
        return {};
    value.truncate(length);
    return value;
}

Result<FileAttributes> readSidecar(const QString &path)
{
    const QString sidecar = sidecarOf(path);
    if (!isSidecar(sidecar))
        return FileAttributes();
    QFile file(sidecar);
    if (!file.open(QIODevice::ReadOnly) || file.size() > longestSidecar)
        return Error{sidecar + u": cannot be read, or is too large"_s};
    auto attributes = appledouble::attributesIn(file.readAll());
    if (!attributes)
        return Error{sidecar + u": "_s + attributes.error()};
    return attributes;
}

Outcome writeSidecar(const QString &path, const FileAttributes &attributes)
{
    const QString sidecar = sidecarOf(path);
    if (attributes.isEmpty())
        return QFile::remove(sidecar) ? Outcome::success() : Error{errorOf(sidecar, errno)};
    const QByteArray bytes = appledouble::fileWith(attributes);
    return writeFileAt(QFile::encodeName(sidecar).toStdString(), bytes);
}

QByteArray hostName(const QByteArray &name)
{
    return QByteArray::fromStdString(hostAttributeName(name.toStdString()));
}

/// Whether an error means that the attribute might be kept somewhere else.
bool isWantOfRoom(int error)
{
    return error == ENOSPC || error == E2BIG || error == ERANGE || error == ENOTSUP || error == EDQUOT;
}

Outcome removeFromHost(const QString &path, const QByteArray &name)
{
    if (lremovexattr(QFile::encodeName(path).constData(), hostName(name).constData()) == 0 || errno == ENODATA
        || errno == ENOTSUP)
        return {};
    return Error{errorOf(path, errno)};
}

Outcome removeFromSidecar(const QString &path, const QByteArray &name)
{
    auto attributes = readSidecar(path);
    if (!attributes)
        return attributes.failure();
    return attributes->remove(name) > 0 ? writeSidecar(path, *attributes) : Outcome::success();
}

Outcome writeBeside(const QString &path, const QByteArray &name, const QByteArray &value)
{
    auto attributes = readSidecar(path);
    if (!attributes)
        return attributes.failure();
    attributes->insert(name, value);
    const Outcome written = writeSidecar(path, *attributes);
    return written ? removeFromHost(path, name) : written;
}

} // namespace

Result<FileAttributes> readAttributes(const QString &path)
{
    const auto names = hostNames(path);
    if (!names)
        return names.failure();
    FileAttributes attributes;
    for (const QByteArray &host : *names) {
        const auto name = attributeName(host.toStdString());
        const auto value = name ? hostValue(path, host) : std::nullopt;
        if (value)
            attributes.insert(QByteArray::fromStdString(*name), *value);
    }
    const auto beside = readSidecar(path);
    if (!beside)
        return beside.failure();
    attributes.insert(*beside);
    return attributes;
}

Outcome writeAttribute(const QString &path, const QByteArray &name, const QByteArray &value)
{
    const int result = lsetxattr(QFile::encodeName(path).constData(), hostName(name).constData(),
                                 value.constData(), std::size_t(value.size()), 0);
    if (result == 0)
        return removeFromSidecar(path, name);
    return isWantOfRoom(errno) ? writeBeside(path, name, value) : Error{errorOf(path, errno)};
}

Outcome removeAttribute(const QString &path, const QByteArray &name)
{
    const Outcome removed = removeFromHost(path, name);
    return removed ? removeFromSidecar(path, name) : removed;
}

QString sidecarOf(const QString &path)
{
    const QFileInfo file(path);
    return file.path() + u"/._"_s + file.fileName();
}

bool isSidecar(const QString &path)
{
    const QString name = path.section(u'/', -1);
    if (!name.startsWith(u"._"_s) || name.size() < 3 || !isRegularFile(path))
        return false;
    struct stat status = {};
    const QString owner = path.chopped(name.size()) + name.mid(2);
    if (lstat(QFile::encodeName(owner).constData(), &status) != 0)
        return false;
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && appledouble::isAppleDouble(file.read(8));
}

} // namespace toolchain
