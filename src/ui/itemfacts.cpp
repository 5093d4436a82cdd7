#include "ui/itemfacts.h"

#include "document/mainwincontroller.h"
#include "platform/bundle.h"
#include "platform/fileservice.h"
#include "run/item.h"

using namespace Qt::StringLiterals;

namespace {

QString nameOf(ItemKind kind)
{
    switch (kind) {
    case ItemKind::app:
        return u"Application"_s;
    case ItemKind::plugin:
    case ItemKind::fmplugin:
        return u"Plug-in"_s;
    case ItemKind::pkg:
        return u"Installer package"_s;
    case ItemKind::dmg:
        return u"Disk image"_s;
    case ItemKind::other:
        break;
    }
    return u"Item"_s;
}

} // namespace

QString itemfacts::describe(const platform::FileService &files, const QString &path)
{
    if (path.isEmpty() || !files.isReachable(path))
        return {};
    QStringList facts{nameOf(itemKind(path))};
    if (const QString identifier = platform::bundleIdentifier(files, path); !identifier.isEmpty())
        facts.append(identifier);
    const QString version = platform::informationText(files, path, u"CFBundleShortVersionString"_s);
    if (!version.isEmpty())
        facts.append(u"version "_s + version);
    return facts.join(u" · "_s);
}

QString itemfacts::intention(MainWinController &document, const QString &path)
{
    const QString signedBy = u"will be signed by "_s + document.identitiesPopup.titleOfSelectedItem();
    if (!isBundleKind(itemKind(path)))
        return signedBy + u" and uploaded as it is"_s;
    return signedBy
        + (document.createDiskImageCheckbox.isOn() ? u" and uploaded as a disk image"_s
                                                   : u" and uploaded as a zip archive"_s);
}
