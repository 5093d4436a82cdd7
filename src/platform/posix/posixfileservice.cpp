#include "platform/posix/posixfileservice.h"

#include "platform/bundle.h"
#include "platform/posix/failure.h"
#include "platform/posix/folder.h"
#include "platform/posix/folderclaim.h"
#include "platform/posix/insideitem.h"
#include "platform/posix/itemcopier.h"
#include "platform/posix/itemmover.h"
#include "platform/posix/itemremover.h"
#include "platform/posix/portablecalls.h"
#include "platform/posix/posixfilehandle.h"
#include "platform/posix/trash.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

bool isAllowed(Place place, int access)
{
    return faccessat(place.folder, place.name, access, AT_EACCESS) == 0;
}

mode_t formatOf(Place place)
{
    struct stat state;
    return fstatat(place.folder, place.name, &state, AT_SYMLINK_NOFOLLOW) < 0 ? 0 : state.st_mode;
}

FileKind kindOf(Place place, mode_t format)
{
    FileKind kind;
    kind.isDirectory = S_ISDIR(format);
    kind.isRegularFile = S_ISREG(format);
    kind.isExecutable = kind.isRegularFile && isAllowed(place, X_OK);
    return kind;
}

QString decoded(const std::string &name)
{
    return QFile::decodeName(QByteArray::fromRawData(name.data(), qsizetype(name.size())));
}

/// Calls the function with the name of each entry that is not hidden, its place in the open folder and its
/// format, which is 0 where the file system does not list it.
template <class Function>
void forEachEntry(const QString &path, FolderLink link, Function function)
{
    const QByteArray native = nativePath(path);
    const Folder folder({AT_FDCWD, native.constData()},
                        link == FolderLink::follow ? Links::follow : Links::refuse);
    const auto entries = folder ? folder.entries() : std::nullopt;
    if (!entries)
        return;
    for (const Folder::Entry &entry : *entries) {
        if (!entry.name.starts_with('.'))
            function(decoded(entry.name), Place{folder.descriptor(), entry.name.c_str()}, entry.format);
    }
}

bool hasBundleExtension(const QString &path)
{
    static const QStringList extensions{u"app"_s,    u"plugin"_s,     u"fmplugin"_s,    u"framework"_s,
                                        u"bundle"_s, u"kext"_s,       u"xpc"_s,         u"appex"_s,
                                        u"saver"_s,  u"mdimporter"_s, u"qlgenerator"_s, u"prefpane"_s};
    return extensions.contains(QFileInfo(QFile::decodeName(nativePath(path))).suffix().toLower());
}

/// All that is left of the file, if that is not more than may be read.
std::optional<QByteArray> readBounded(int file)
{
    QByteArray bytes;
    QByteArray part(256 * 1024, Qt::Uninitialized);
    for (;;) {
        const ssize_t count = read(file, part.data(), static_cast<size_t>(part.size()));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return std::nullopt;
        if (count == 0)
            return bytes;
        if (bytes.size() + count > mostBytesRead) {
            errno = EFBIG;
            return std::nullopt;
        }
        bytes.append(part.constData(), count);
    }
}

/// Nothing where the file is no regular one or too large, with the reason in errno.
std::optional<QByteArray> readRegular(const UniqueDescriptor &file)
{
    struct stat state;
    if (!file || fstat(file.get(), &state) < 0)
        return std::nullopt;
    errno = S_ISREG(state.st_mode) ? EFBIG : S_ISDIR(state.st_mode) ? EISDIR : EINVAL;
    if (!S_ISREG(state.st_mode) || state.st_size > mostBytesRead)
        return std::nullopt;
    return readBounded(file.get());
}

UniqueDescriptor openFile(const QString &path, int flags)
{
    return UniqueDescriptor(open(nativePath(path).constData(), flags | O_CLOEXEC, 0666));
}

} // namespace

bool PosixFileService::isReachable(const QString &path) const
{
    struct stat state;
    return lstat(nativePath(path).constData(), &state) == 0;
}

bool PosixFileService::exists(const QString &path) const
{
    const QByteArray native = nativePath(path);
    return isAllowed({AT_FDCWD, native.constData()}, F_OK);
}

bool PosixFileService::isReadable(const QString &path) const
{
    const QByteArray native = nativePath(path);
    return isAllowed({AT_FDCWD, native.constData()}, R_OK);
}

FileKind PosixFileService::kind(const QString &path) const
{
    const QByteArray native = nativePath(path);
    const Place place{AT_FDCWD, native.constData()};
    return kindOf(place, formatOf(place));
}

std::optional<bool> PosixFileService::isPackage(const QString &path) const
{
    if (!isReachable(path))
        return std::nullopt;
    if (!kind(path).isDirectory)
        return false;
    return hasBundleExtension(path) || !informationText(*this, path, u"CFBundlePackageType"_s).isEmpty();
}

QStringList PosixFileService::contentsOfDirectory(const QString &path, FolderLink link) const
{
    QStringList names;
    forEachEntry(path, link, [&names](const QString &name, Place, mode_t) { names += name; });
    return names;
}

QList<FolderEntry> PosixFileService::entriesOfDirectory(const QString &path, FolderLink link) const
{
    QList<FolderEntry> entries;
    forEachEntry(path, link, [&entries](const QString &name, Place place, mode_t format) {
        entries.append({name, kindOf(place, format != 0 ? format : formatOf(place))});
    });
    return entries;
}

Outcome PosixFileService::createDirectory(const QString &path)
{
    const QByteArray native = nativePath(path);
    if (mkdir(native.constData(), 0777) == 0)
        return Outcome::success();
    if (errno == EEXIST && QFileInfo(path).isDir())
        return Outcome::success();
    const qsizetype nameStart = native.lastIndexOf('/');
    if (errno != ENOENT || nameStart <= 0)
        return failure(u"create"_s, path);
    Outcome created = createDirectory(QFile::decodeName(native.first(nameStart)));
    if (!created || mkdir(native.constData(), 0777) == 0 || errno == EEXIST)
        return created;
    return failure(u"create"_s, path);
}

Outcome PosixFileService::createFile(const QString &path)
{
    const UniqueDescriptor file = openFile(path, O_WRONLY | O_CREAT | O_TRUNC);
    return file ? Outcome::success() : failure(u"create"_s, path);
}

Outcome PosixFileService::removeItem(const QString &path)
{
    return removeTree(path);
}

Outcome PosixFileService::moveItem(const QString &from, const QString &to)
{
    return moveTree(from, to);
}

Outcome PosixFileService::copyItem(const QString &from, const QString &to)
{
    return ItemCopier::copy(from, to);
}

Outcome PosixFileService::copyResolvedItem(const QString &from, const QString &to)
{
    const QByteArray item = nativePath(from);
    struct stat state;
    if (lstat(item.constData(), &state) < 0 || !S_ISLNK(state.st_mode))
        return ItemCopier::copy(from, to);
    const std::unique_ptr<char, decltype(&std::free)> resolved(realpath(item.constData(), nullptr),
                                                               &std::free);
    return resolved ? ItemCopier::copy(QFile::decodeName(resolved.get()), to) : failure(u"copy"_s, from);
}

Outcome PosixFileService::trashItem(const QString &path)
{
    return moveToTrash(path);
}

Outcome PosixFileService::setPermissions(const QString &path, unsigned mode)
{
    const bool isSet = chmod(nativePath(path).constData(), static_cast<mode_t>(mode & 07777)) == 0;
    return isSet ? Outcome::success() : failure(u"set the permissions of"_s, path);
}

Outcome PosixFileService::setPermissionsInside(const QString &item, const QString &inside, unsigned mode)
{
    const UniqueDescriptor file = openInside(item, inside, O_RDONLY | O_NONBLOCK);
    struct stat state;
    const bool isRegular = file && fstat(file.get(), &state) == 0 && S_ISREG(state.st_mode);
    if (file && !isRegular)
        errno = EINVAL;
    const bool isSet = isRegular && fchmod(file.get(), static_cast<mode_t>(mode & 07777)) == 0;
    return isSet ? Outcome::success() : failure(u"set the permissions of"_s, item + u'/' + inside);
}

std::shared_ptr<FolderClaim> PosixFileService::claimFolder(const QString &path)
{
    return claimOf(path);
}

bool PosixFileService::isClaimed(const QString &path) const
{
    return isClaimedFolder(path);
}

QByteArray PosixFileService::stateOf(const QString &item) const
{
    return stateOfItem(item);
}

Result<QByteArray> PosixFileService::readFile(const QString &path) const
{
    if (auto bytes = readRegular(openFile(path, O_RDONLY | O_NONBLOCK)))
        return *std::move(bytes);
    return Error{failureText(u"read"_s, path)};
}

Outcome PosixFileService::writeFile(const QString &path, const QByteArray &bytes)
{
    UniqueDescriptor file = openFile(path, O_WRONLY | O_CREAT | O_TRUNC);
    const bool isWritten =
        file && writeFully(file.get(), bytes.constData(), static_cast<size_t>(bytes.size())) && file.close();
    return isWritten ? Outcome::success() : failure(u"write"_s, path);
}

Outcome PosixFileService::writeFileAtomically(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit())
        return Outcome::success();
    return Outcome::failure(u"Cannot write '%1': %2"_s.arg(path, file.errorString()));
}

std::shared_ptr<FileHandle> PosixFileService::openForAppending(const QString &path)
{
    UniqueDescriptor file = openFile(path, O_WRONLY | O_APPEND);
    return file ? std::make_shared<PosixFileHandle>(std::move(file)) : nullptr;
}

Result<QString> PosixFileService::replacementDirectory(const QString &forItem)
{
    if (const auto folder = m_replacementFolders.makeFor(forItem))
        return *folder;
    return Error{failureText(u"make a replacement of"_s, forItem)};
}

Outcome PosixFileService::replaceItem(const QString &path, const QString &replacement)
{
    return replaceTree(path, replacement);
}

} // namespace platform
