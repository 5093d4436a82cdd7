#include "examine/linktarget.h"

#include "platform/itempath.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace examine {

namespace {

bool isOnEveryMac(const QString &target)
{
    return target.startsWith("/System/"_L1) || target.startsWith("/Library/"_L1);
}

/// What a disk image shows beside an app, so that it can be dragged there.
bool isShortcutToApplications(const QString &path, const QString &target)
{
    return !path.contains(u'/') && (target == "/Applications"_L1 || target == "/Applications/"_L1);
}

} // namespace

LinkTarget judgeLink(const QString &item, const QString &path, const QString &target)
{
    if (target.startsWith(u'/')) {
        const bool isGood = isOnEveryMac(QDir::cleanPath(target)) || isShortcutToApplications(path, target);
        return isGood ? LinkTarget::good : LinkTarget::outside;
    }
    const QString place = itempath::folder(item + u'/' + path) + u'/' + target;
    const QString clean = QDir::cleanPath(place);
    if (clean != item && !clean.startsWith(item + u'/'))
        return LinkTarget::outside;
    return QFileInfo::exists(place) ? LinkTarget::good : LinkTarget::nowhere;
}

} // namespace examine
