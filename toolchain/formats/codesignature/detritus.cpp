#include "formats/codesignature/detritus.h"

#include "formats/fileattributes.h"
#include "formats/zeros.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <sys/xattr.h>

using namespace Qt::StringLiterals;

namespace toolchain::codesignature {

namespace {

/// Finder information of zeros says nothing, and macOS does not keep it.
bool hasDetritus(const QString &path)
{
    const auto attributes = readAttributes(path);
    return attributes
        && (attributes->contains("com.apple.ResourceFork")
            || !isZero(attributes->value("com.apple.FinderInfo")));
}

/// Nearly all files have no attributes at all, and are asked for nothing else.
bool hasAttributesOfHost(const QString &path)
{
    return llistxattr(QFile::encodeName(path).constData(), nullptr, 0) > 0;
}

/// The item whose attributes have to be looked at, for this one: itself, or the neighbour whose attributes
/// lie in it. Empty: none.
QString bearerOf(const QFileInfo &item)
{
    if (item.fileName().startsWith(u"._"_s) && isSidecar(item.filePath()))
        return item.path() + u'/' + item.fileName().sliced(2);
    return hasAttributesOfHost(item.filePath()) ? item.filePath() : QString();
}

} // namespace

QString detritusIn(const QString &path)
{
    if (hasDetritus(path))
        return path;
    if (!QFileInfo(path).isDir())
        return {};
    QDirIterator items(path, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories);
    while (items.hasNext()) {
        items.next();
        const QString bearer = bearerOf(items.fileInfo());
        if (!bearer.isEmpty() && !QFileInfo(bearer).isSymLink() && hasDetritus(bearer))
            return bearer;
    }
    return {};
}

QString detritusDetail(const QString &path)
{
    return path + u" has a resource fork or Finder information"_s;
}

} // namespace toolchain::codesignature
