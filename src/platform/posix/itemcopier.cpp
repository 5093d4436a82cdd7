#include "platform/posix/itemcopier.h"

#include "platform/posix/failure.h"
#include "platform/posix/hostcalls.h"

#include <QFileInfo>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

/// Access and modification time, as futimens() takes them.
std::array<timespec, 2> timesOf(const struct stat &state)
{
#ifdef __APPLE__
    return {state.st_atimespec, state.st_mtimespec};
#else
    return {state.st_atim, state.st_mtim};
#endif
}

/// Attributes come first, since the mode may forbid writing, and times last, since all else changes them.
bool finish(int from, int to, const struct stat &state)
{
    return copyExtendedAttributes(from, to) && fchmod(to, state.st_mode & 07777) == 0
        && futimens(to, timesOf(state).data()) == 0;
}

bool isInside(const QString &path, const QString &folder)
{
    const QString parent = QFileInfo(QFileInfo(path).path()).canonicalFilePath();
    const QString ancestor = QFileInfo(folder).canonicalFilePath();
    return (parent + u'/').startsWith(ancestor + u'/');
}

} // namespace

Outcome ItemCopier::copy(const QString &from, const QString &to)
{
    const QByteArray source = nativePath(from);
    const QByteArray target = nativePath(to);
    struct stat state;
    if (lstat(target.constData(), &state) == 0) {
        errno = EEXIST;
        return failure(u"copy"_s, from, to);
    }
    if (lstat(source.constData(), &state) == 0 && S_ISDIR(state.st_mode)
        && isInside(QFile::decodeName(target), from))
        return Outcome::failure(u"Cannot copy '%1': '%2' lies inside it"_s.arg(from, to));
    ItemCopier copier(source);
    return copier.copyEntry({AT_FDCWD, source.constData()}, {AT_FDCWD, target.constData()})
        ? Outcome::success()
        : Outcome::failure(copier.m_error);
}

bool ItemCopier::copyEntry(Place from, Place to)
{
    struct stat state;
    if (fstatat(from.folder, from.name, &state, AT_SYMLINK_NOFOLLOW) < 0)
        return fail();
    if (S_ISREG(state.st_mode))
        return copyFile(from, to, state);
    if (S_ISDIR(state.st_mode))
        return copyFolder(from, to, state);
    if (S_ISLNK(state.st_mode))
        return copyLink(from, to, state);
    m_error = u"Cannot copy '"_s + m_trail.path() + u"': it is neither a file, a folder nor a link"_s;
    return false;
}

bool ItemCopier::copyFile(Place from, Place to, const struct stat &state)
{
    // Should a named pipe have taken the file's place just now, opening it must not wait for a writer.
    const UniqueDescriptor source(
        openat(from.folder, from.name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!source)
        return fail();
    UniqueDescriptor target(openat(to.folder, to.name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!target)
        return fail();
    if (copyContents(source.get(), target.get()) && finish(source.get(), target.get(), state)
        && target.close())
        return true;
    fail();
    unlinkat(to.folder, to.name, 0);
    return false;
}

bool ItemCopier::copyFolder(Place from, Place to, const struct stat &state)
{
    const Folder source(from, Links::refuse);
    if (!source || mkdirat(to.folder, to.name, 0700) < 0)
        return fail();
    const Folder target(to, Links::refuse);
    if (!target)
        return fail();
    if (!copyEntries(source, target))
        return false;
    return finish(source.descriptor(), target.descriptor(), state) || fail();
}

bool ItemCopier::copyEntries(const Folder &from, const Folder &to)
{
    auto entries = from.entries();
    if (!entries)
        return fail();
    // Near the order on disk, which is quickest to read and lays out the copy well.
    std::sort(entries->begin(), entries->end(),
              [](const Folder::Entry &one, const Folder::Entry &other) { return one.inode < other.inode; });
    for (const Folder::Entry &entry : *entries) {
        const char *name = entry.name.c_str();
        m_trail.enter(name);
        if (m_trail.length() >= PATH_MAX) { // no tool could name it
            errno = ENAMETOOLONG;
            return fail();
        }
        if (!copyEntry({from.descriptor(), name}, {to.descriptor(), name}))
            return false;
        m_trail.leave();
    }
    return true;
}

bool ItemCopier::copyLink(Place from, Place to, const struct stat &state)
{
    QByteArray destination(state.st_size + 1, '\0');
    const ssize_t length =
        readlinkat(from.folder, from.name, destination.data(), static_cast<size_t>(state.st_size));
    if (length < 0)
        return fail();
    destination.truncate(length);
    if (symlinkat(destination.constData(), to.folder, to.name) < 0)
        return fail();
    return utimensat(to.folder, to.name, timesOf(state).data(), AT_SYMLINK_NOFOLLOW) == 0 || fail();
}

bool ItemCopier::fail()
{
    m_error = failureText(u"copy"_s, m_trail.path());
    return false;
}

} // namespace platform
