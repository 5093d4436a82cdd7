#include "platform/itempath.h"

#include <QDir>
#include <QFileInfo>
#include <QStringBuilder>

using namespace Qt::StringLiterals;

namespace itempath {

namespace {

qsizetype extensionDot(const QString &path)
{
    const qsizetype start = path.lastIndexOf(u'/') + 1;
    const qsizetype dot = path.lastIndexOf(u'.');
    return dot > start && dot < path.size() - 1 ? dot : -1;
}

} // namespace

QString fromUrl(const QUrl &url)
{
    QString path = url.toLocalFile();
    while (path.size() > 1 && path.endsWith(u'/'))
        path.chop(1);
    return path;
}

QUrl toUrl(const QString &path)
{
    return QUrl::fromLocalFile(path);
}

QString withoutDots(const QString &path)
{
    QStringList steps = path.split(u'/', Qt::SkipEmptyParts);
    steps.removeAll(u"."_s);
    const qsizetype last = steps.lastIndexOf(u".."_s);
    const QString whole = u'/' + steps.join(u'/');
    if (last < 0)
        return whole;
    const QString real = QFileInfo(u'/' + steps.first(last + 1).join(u'/')).canonicalFilePath();
    if (real.isEmpty())
        return whole; // there is no such item
    return last + 1 == steps.size() ? real : appending(real, steps.sliced(last + 1).join(u'/'));
}

QString lastComponent(const QString &path)
{
    return path.mid(path.lastIndexOf(u'/') + 1);
}

QString folder(const QString &path)
{
    const qsizetype slash = path.lastIndexOf(u'/');
    return slash > 0 ? path.left(slash) : u"/"_s;
}

QString extension(const QString &path)
{
    const qsizetype dot = extensionDot(path);
    return dot < 0 ? QString() : path.mid(dot + 1);
}

QString lowerExtension(const QString &path)
{
    return extension(path).toLower();
}

QString withoutExtension(const QString &path)
{
    const qsizetype dot = extensionDot(path);
    return dot < 0 ? path : path.left(dot);
}

QString appending(const QString &folder, const QString &component)
{
    return folder.endsWith(u'/') ? folder + component : folder % u'/' % component; // one allocation
}

QString abbreviatedWithTilde(const QString &path)
{
    const QString home = QDir::homePath();
    if (home == "/"_L1 || (path != home && !path.startsWith(home + u'/')))
        return path;
    return u'~' + path.mid(home.size());
}

} // namespace itempath
