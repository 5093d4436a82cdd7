#include "ui/itemkinds.h"

#include "platform/itempath.h"
#include "ui/itemfacts.h"
#include "ui/itemicon.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr int side = 32; // points of a picture, which is made smaller where it is shown

/// A folder that only has the name of a package or an image is none.
bool isItem(const QFileInfo &file)
{
    const ItemKind kind = itemKind(file.filePath());
    return kind != ItemKind::other && isBundleKind(kind) == file.isDir();
}

} // namespace

ItemKinds::ItemKinds()
{
    for (const QString &extension : {u"app"_s, u"plugin"_s, u"fmplugin"_s, u"pkg"_s, u"dmg"_s})
        m_icons.insert(extension, QIcon(itemicon::pictureOfKind(extension, side)));
}

ItemKinds &ItemKinds::shared()
{
    static auto *const kinds = new ItemKinds;
    return *kinds;
}

QIcon ItemKinds::icon(const QFileInfo &file) const
{
    return isItem(file) ? m_icons.value(itempath::lowerExtension(file.filePath()))
                        : QFileIconProvider::icon(file);
}

QString ItemKinds::type(const QFileInfo &file) const
{
    return isItem(file) ? itemfacts::nameOf(itemKind(file.filePath())) : QFileIconProvider::type(file);
}

} // namespace sealwright
