#include "formats/review/linktarget.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace toolchain::review {

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
    const QString place = QFileInfo(item + u'/' + path).path() + u'/' + target;
    const QString clean = QDir::cleanPath(place);
    if (clean != item && !clean.startsWith(item + u'/'))
        return LinkTarget::outside;
    return QFileInfo::exists(place) ? LinkTarget::good : LinkTarget::nowhere;
}

void BundleLinks::add(const QString &bundle)
{
    if (bundleAround(bundle).isEmpty())
        m_outermost.append(bundle);
}

std::optional<LinkTarget> BundleLinks::judge(const QString &link, const QString &target) const
{
    const QString bundle = bundleAround(link);
    if (bundle.isEmpty())
        return {};
    return judgeLink(bundle, link.mid(bundle.size() + 1), target);
}

QString BundleLinks::bundleAround(const QString &path) const
{
    const auto around =
        std::find_if(m_outermost.crbegin(), m_outermost.crend(),
                     [&path](const QString &bundle) { return path.startsWith(bundle + u'/'); });
    return around == m_outermost.crend() ? QString() : *around;
}

} // namespace toolchain::review
