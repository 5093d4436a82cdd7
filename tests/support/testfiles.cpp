#include "support/testfiles.h"

#include <QDir>

using namespace Qt::StringLiterals;
using platform::Outcome;

QString TestFiles::failureOf(const char *operation, const QString &path) const
{
    return failure ? failure(QString::fromLatin1(operation), path) : QString();
}

platform::FileKind TestFiles::kind(const QString &path) const
{
    return unreadable.contains(path) ? platform::FileKind() : PosixFileService::kind(path);
}

QStringList TestFiles::contentsOfDirectory(const QString &path, platform::FolderLink link) const
{
    if (unreadable.contains(path))
        return {};
    QStringList names = PosixFileService::contentsOfDirectory(path, link);
    if (sortsListings)
        names.sort();
    return names;
}

QList<platform::FolderEntry> TestFiles::entriesOfDirectory(const QString &path,
                                                           platform::FolderLink link) const
{
    QList<platform::FolderEntry> entries;
    for (const QString &name : contentsOfDirectory(path, link))
        entries.append({name, kind(path + u'/' + name)});
    return entries;
}

Outcome TestFiles::createDirectory(const QString &path)
{
    const QString error = failureOf("createDirectory", path);
    return error.isNull() ? PosixFileService::createDirectory(path) : Outcome::failure(error);
}

Outcome TestFiles::createFile(const QString &path)
{
    const QString error = failureOf("createFile", path);
    return error.isNull() ? PosixFileService::createFile(path) : Outcome::failure(error);
}

Outcome TestFiles::removeItem(const QString &path)
{
    const QString error = failureOf("removeItem", path);
    return error.isNull() ? PosixFileService::removeItem(path) : Outcome::failure(error);
}

Outcome TestFiles::moveItem(const QString &from, const QString &to)
{
    const QString error = failureOf("moveItem", to);
    return error.isNull() ? PosixFileService::moveItem(from, to) : Outcome::failure(error);
}

Outcome TestFiles::copyItem(const QString &from, const QString &to)
{
    const QString error = failureOf("copyItem", to);
    return error.isNull() ? PosixFileService::copyItem(from, to) : Outcome::failure(error);
}

Outcome TestFiles::copyResolvedItem(const QString &from, const QString &to)
{
    const QString error = failureOf("copyItem", to);
    return error.isNull() ? PosixFileService::copyResolvedItem(from, to) : Outcome::failure(error);
}

Outcome TestFiles::trashItem(const QString &path)
{
    const QString error = failureOf("trashItem", path);
    if (!error.isNull())
        return Outcome::failure(error);
    QDir().mkpath(m_trash);
    trashed.append(path);
    return PosixFileService::moveItem(path, m_trash + u'/' + QString::number(trashed.size()));
}

Outcome TestFiles::setPermissions(const QString &path, unsigned mode)
{
    const QString error = failureOf("setPermissions", path);
    return error.isNull() ? PosixFileService::setPermissions(path, mode) : Outcome::failure(error);
}

Outcome TestFiles::setPermissionsInside(const QString &item, const QString &inside, unsigned mode)
{
    const QString error = failureOf("setPermissions", item + u'/' + inside);
    return error.isNull() ? PosixFileService::setPermissionsInside(item, inside, mode)
                          : Outcome::failure(error);
}

platform::Result<QByteArray> TestFiles::readFile(const QString &path) const
{
    const QString error = failureOf("readFile", path);
    return error.isNull() ? PosixFileService::readFile(path) : platform::Error{error};
}

bool TestFiles::isReadable(const QString &path) const
{
    return failureOf("isReadable", path).isNull() && PosixFileService::isReadable(path);
}

Outcome TestFiles::writeFile(const QString &path, const QByteArray &bytes)
{
    const QString error = failureOf("writeFile", path);
    return error.isNull() ? PosixFileService::writeFile(path, bytes) : Outcome::failure(error);
}

Outcome TestFiles::writeFileAtomically(const QString &path, const QByteArray &bytes)
{
    const QString error = failureOf("writeFileAtomically", path);
    return error.isNull() ? PosixFileService::writeFileAtomically(path, bytes) : Outcome::failure(error);
}

platform::Result<QString> TestFiles::replacementDirectory(const QString &forItem)
{
    const QString error = failureOf("replacementDirectory", forItem);
    return error.isNull() ? PosixFileService::replacementDirectory(forItem) : platform::Error{error};
}

Outcome TestFiles::replaceItem(const QString &path, const QString &replacement)
{
    const QString error = failureOf("replaceItem", path);
    return error.isNull() ? PosixFileService::replaceItem(path, replacement) : Outcome::failure(error);
}
