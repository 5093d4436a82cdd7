#include "support/readerfolder.h"

#include <QDir>
#include <QFile>

#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

constexpr int secondsUntilLeft = 3600; // more than lies between the making of a folder and its lock

QString folderForTemporaryFiles()
{
    const QString chosen = qEnvironmentVariable("TMPDIR");
    return chosen.isEmpty() ? u"/var/tmp"_s : chosen;
}

bool isOwnAndOld(int folder)
{
    struct stat found = {};
    return fstat(folder, &found) == 0 && S_ISDIR(found.st_mode) && found.st_uid == geteuid()
        && found.st_mtime + secondsUntilLeft < std::time(nullptr);
}

/// A lock ends with the program that took it, however that ended.
void removeWhatWasLeft()
{
    const QDir place(folderForTemporaryFiles());
    for (const QString &name : place.entryList({u"sealwright-reader-??????"_s}, QDir::Dirs | QDir::Hidden)) {
        const QString path = place.filePath(name);
        const OpenFile left(QFile::encodeName(path).toStdString());
        if (isOwnAndOld(left.descriptor()) && flock(left.descriptor(), LOCK_EX | LOCK_NB) == 0)
            QDir(path).removeRecursively();
    }
}

QString placeOfNewOne()
{
    removeWhatWasLeft();
    return folderForTemporaryFiles() + u"/sealwright-reader-XXXXXX"_s;
}

} // namespace

ReaderFolder::ReaderFolder()
    : m_folder(placeOfNewOne())
    , m_held(QFile::encodeName(m_folder.path()).toStdString())
{
    (void)flock(m_held.descriptor(), LOCK_EX | LOCK_NB); // fails where there is none, or no locks
}

} // namespace toolchain
