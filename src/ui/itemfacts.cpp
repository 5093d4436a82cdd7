#include "ui/itemfacts.h"

#include "document/mainwincontroller.h"
#include "platform/bundle.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"

using namespace Qt::StringLiterals;

namespace {

QString kindOf(const QString &extension)
{
    if (extension == "app"_L1)
        return u"Application"_s;
    if (extension == "plugin"_L1 || extension == "fmplugin"_L1)
        return u"Plug-in"_s;
    if (extension == "pkg"_L1)
        return u"Installer package"_s;
    return extension == "dmg"_L1 ? u"Disk image"_s : u"Item"_s;
}

bool isBundle(const QString &extension)
{
    return extension == "app"_L1 || extension == "plugin"_L1 || extension == "fmplugin"_L1;
}

} // namespace

QString itemfacts::describe(const platform::FileService &files, const QString &path)
{
    if (path.isEmpty() || !files.isReachable(path))
        return {};
    QStringList facts{kindOf(itempath::lowerExtension(path))};
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
    if (!isBundle(itempath::lowerExtension(path)))
        return signedBy + u" and uploaded as it is"_s;
    return signedBy
        + (document.createDiskImageCheckbox.isOn() ? u" and uploaded as a disk image"_s
                                                   : u" and uploaded as a zip archive"_s);
}
