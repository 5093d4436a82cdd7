#include "run/workingfoldernames.h"

#include "platform/itempath.h"

using namespace Qt::StringLiterals;

namespace sealwright::workingfolder {

namespace {
const QString rule(88, u'*');
}

QString name(const QString &base, QStringView suffix)
{
    return base + u" - "_s + suffix.toString();
}

QString unmodifiedOriginalName(const QString &base)
{
    return base + u" - Unmodified Original"_s;
}

QString unmodifiedOriginalPath(const QString &itemPath, QStringView suffix)
{
    const QString fileName = itempath::lastComponent(itemPath);
    const QString base = itempath::withoutExtension(fileName);
    return itempath::folder(itemPath) + u'/' + name(base, suffix) + u'/' + unmodifiedOriginalName(base) + u'/'
        + fileName;
}

QString banner(const QString &copyPath)
{
    return rule + u"\nBeginning processing of "_s + itempath::extension(copyPath) + u" at '"_s + copyPath
        + u"'\n"_s + rule + u'\n';
}

QString stapleOnlyBanner(const QString &itemPath)
{
    return u'\\' + rule + u"\nBeginning staple only of file at '"_s + itemPath + u"'\n"_s + rule + u'\n';
}

QString resumeBanner(const QString &itemPath)
{
    return rule + u"\nGoing on with the wait for the verdict on '"_s + itemPath + u"'\n"_s + rule + u'\n';
}

} // namespace sealwright::workingfolder
