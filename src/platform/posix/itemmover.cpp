#include "platform/posix/itemmover.h"

#include "platform/posix/failure.h"
#include "platform/posix/hostcalls.h"
#include "platform/posix/itemcopier.h"
#include "platform/posix/itemremover.h"

#include <QFile>
#include <QUuid>

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

/// A free, hidden path in the same folder.
QString pathBeside(const QString &path)
{
    const QString own = QFile::decodeName(nativePath(path));
    const QString folder = own.left(own.lastIndexOf(u'/') + 1);
    return folder + u".aside-"_s + QUuid::createUuid().toString(QUuid::Id128);
}

bool renameItem(const QString &from, const QString &to)
{
    return rename(nativePath(from).constData(), nativePath(to).constData()) == 0;
}

/// Where the host cannot exchange two items: a moment without any, but never a loss.
bool exchangeInSteps(const QString &path, const QString &replacement)
{
    const QString aside = pathBeside(replacement);
    if (!renameItem(path, aside))
        return false;
    if (renameItem(replacement, path))
        return renameItem(aside, replacement);
    const int error = errno;
    renameItem(aside, path);
    errno = error;
    return false;
}

bool exchange(const QString &path, const QString &replacement)
{
    return exchangeItems(nativePath(path).constData(), nativePath(replacement).constData())
        || exchangeInSteps(path, replacement);
}

bool isFree(const QString &path)
{
    struct stat ignored;
    return lstat(nativePath(path).constData(), &ignored) < 0;
}

/// With the whole copy made: the original steps aside, the copy takes its place at the target.
bool swapIn(const QString &copy, const QString &from, const QString &aside, const QString &to)
{
    if (!renameItem(from, aside))
        return false;
    if (renameToFreePath(nativePath(copy).constData(), nativePath(to).constData()))
        return true;
    const int error = errno;
    renameItem(aside, from);
    errno = error;
    return false;
}

} // namespace

Outcome moveTree(const QString &from, const QString &to)
{
    if (renameToFreePath(nativePath(from).constData(), nativePath(to).constData()))
        return Outcome::success();
    return errno == EXDEV ? moveTreeByCopying(from, to) : failure(u"move"_s, from, to);
}

Outcome moveTreeByCopying(const QString &from, const QString &to)
{
    if (!isFree(to)) {
        errno = EEXIST;
        return failure(u"move"_s, from, to);
    }
    const QString copy = pathBeside(to);
    const QString aside = pathBeside(from);
    Outcome moved = ItemCopier::copy(from, copy);
    if (moved && !swapIn(copy, from, aside, to))
        moved = failure(u"move"_s, from, to);
    if (moved)
        return removeTree(aside);
    removeTree(copy).ignore();
    return moved;
}

Outcome replaceTreeByCopying(const QString &path, const QString &replacement)
{
    const QString copy = pathBeside(path);
    Outcome replaced = ItemCopier::copy(replacement, copy);
    if (replaced)
        replaced = replaceTree(path, copy);
    removeTree(replaced ? replacement : copy).ignore();
    return replaced;
}

Outcome replaceTree(const QString &path, const QString &replacement)
{
    if (renameItem(replacement, path))
        return Outcome::success();
    if (errno == EXDEV)
        return replaceTreeByCopying(path, replacement);
    const bool isFolderInTheWay =
        errno == EISDIR || errno == ENOTDIR || errno == ENOTEMPTY || errno == EEXIST;
    if (!isFolderInTheWay || !exchange(path, replacement))
        return failure(u"replace"_s, path);
    removeTree(replacement).ignore();
    return Outcome::success();
}

} // namespace platform
