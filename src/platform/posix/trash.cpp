#include "platform/posix/trash.h"

#include "platform/posix/failure.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

/// Made for the user alone if it is not there.
bool isUsableFolder(const QString &path)
{
    const QByteArray native = nativePath(path);
    const bool isThere = mkdir(native.constData(), 0700) == 0 || QFileInfo(path).isDir();
    return isThere && faccessat(AT_FDCWD, native.constData(), W_OK | X_OK, AT_EACCESS) == 0;
}

/// The top of the volume of a trash that is called ".Trash-UID", or "UID" in ".Trash"; null for the one in
/// the user's home.
QString volumeOf(const QString &trash)
{
    const QString uid = QString::number(getuid());
    for (const QString &name : {u"/.Trash-"_s + uid, u"/.Trash/"_s + uid}) {
        if (trash.endsWith(name))
            return trash.chopped(name.size()) + u'/';
    }
    return {};
}

/// Where the item came from, as the trash has it: from the top of the volume unless it is the home's trash.
QString placeBefore(const QString &item, const QString &trash)
{
    const QString volume = volumeOf(trash);
    return !volume.isNull() && item.startsWith(volume) ? item.sliced(volume.size()) : item;
}

/// Has the description of a trashed item give its former path in the form of an address. The library writes
/// the plain path, and a name with a percent sign or a line end could not be taken back.
void describe(const QString &trashed, const QString &item)
{
    const QFileInfo inTrash(trashed);
    const QString trash = QFileInfo(inTrash.path()).path();
    QFile description(trash + u"/info/"_s + inTrash.fileName() + u".trashinfo"_s);
    if (!description.open(QIODevice::ReadOnly))
        return; // not every host has one
    const QByteArray all = description.readAll();
    const qsizetype date = all.lastIndexOf("DeletionDate=");
    const QByteArray path = QFile::encodeName(placeBefore(item, trash)).toPercentEncoding("/");
    QSaveFile file(description.fileName());
    if (date >= 0 && file.open(QIODevice::WriteOnly)
        && file.write("[Trash Info]\nPath=" + path + '\n' + all.sliced(date)) > 0)
        file.commit();
}

} // namespace

Outcome moveToTrash(const QString &path)
{
    // Without a trash of the user's, the library takes the current folder for the trash.
    const QString home = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    QDir().mkpath(home);
    for (const QString &name : {u"/Trash"_s, u"/Trash/files"_s, u"/Trash/info"_s}) {
        if (!isUsableFolder(home + name))
            return Outcome::failure(
                u"Cannot move '%1' to the trash: the folder '%2' cannot be used"_s.arg(path, home + name));
    }
    QFile item(path);
    if (!item.moveToTrash())
        return Outcome::failure(u"Cannot move '%1' to the trash: %2"_s.arg(path, item.errorString()));
    describe(item.fileName(), QFileInfo(path).absoluteFilePath());
    return Outcome::success();
}

} // namespace platform
