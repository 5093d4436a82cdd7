#include "run/item.h"

#include "platform/itempath.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace sealwright {

ItemKind itemKind(const QString &path)
{
    static const QHash<QString, ItemKind> kinds{{u"app"_s, ItemKind::app},
                                                {u"pkg"_s, ItemKind::pkg},
                                                {u"fmplugin"_s, ItemKind::fmplugin},
                                                {u"plugin"_s, ItemKind::plugin},
                                                {u"dmg"_s, ItemKind::dmg}};
    return kinds.value(itempath::lowerExtension(path), ItemKind::other);
}

bool isBundleKind(ItemKind kind)
{
    return kind == ItemKind::app || kind == ItemKind::fmplugin || kind == ItemKind::plugin;
}

const QStringList &submittableExtensions()
{
    static const QStringList extensions{u"app"_s, u"dmg"_s, u"pkg"_s, u"fmplugin"_s, u"plugin"_s};
    return extensions;
}

Item Item::fromUrl(const QUrl &url)
{
    return Item(itempath::fromUrl(url));
}

QUrl Item::url() const
{
    return itempath::toUrl(m_path);
}

QString Item::fileName() const
{
    return itempath::lastComponent(m_path);
}

QString Item::base() const
{
    return itempath::withoutExtension(fileName());
}

QString Item::folder() const
{
    return itempath::folder(m_path);
}

} // namespace sealwright
