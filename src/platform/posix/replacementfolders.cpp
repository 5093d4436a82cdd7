#include "platform/posix/replacementfolders.h"

#include "platform/posix/failure.h"
#include "platform/posix/itemremover.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <cstdlib>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

/// The folders in which a new one may be made, the best first: none of the person's own, if that can be.
QList<QByteArray> placesFor(const QByteArray &itemFolder, dev_t volume)
{
    QList<QByteArray> places;
    for (const QString &path :
         {QDir::tempPath(), QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation)}) {
        const QByteArray place = nativePath(path);
        struct stat state;
        if (stat(place.constData(), &state) == 0 && state.st_dev == volume)
            places.append(place + '/');
    }
    places.append(itemFolder);
    return places;
}

} // namespace

ReplacementFolders::~ReplacementFolders()
{
    removeAll();
}

void ReplacementFolders::removeAll()
{
    const std::scoped_lock lock(m_mutex);
    for (const QByteArray &folder : std::as_const(m_made))
        removeTree(QFile::decodeName(folder)).ignore();
    m_made.clear();
}

std::optional<QString> ReplacementFolders::makeFor(const QString &item)
{
    const QByteArray path = nativePath(item);
    const QByteArray itemFolder = path.first(path.lastIndexOf('/') + 1);
    struct stat state;
    if (stat(itemFolder.constData(), &state) < 0)
        return std::nullopt;
    for (const QByteArray &place : placesFor(itemFolder, state.st_dev)) {
        QByteArray folder = place + ".replacement-XXXXXX";
        if (!mkdtemp(folder.data()))
            continue;
        const std::scoped_lock lock(m_mutex);
        m_made.append(folder);
        const QByteArray inner = folder + "/new";
        if (mkdir(inner.constData(), 0700) == 0)
            return QFile::decodeName(inner);
    }
    return std::nullopt;
}

} // namespace platform
