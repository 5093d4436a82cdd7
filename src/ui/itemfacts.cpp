#include "ui/itemfacts.h"

#include "document/applicationinterface.h"
#include "document/mainwincontroller.h"
#include "platform/bundle.h"
#include "platform/fileservice.h"
#include "run/item.h"
#include "ui/itemsurvey.h"
#include "ui/practice.h"
#include "ui/shown.h"

#include <QLocale>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

int decimalsOf(qint64 bytes)
{
    constexpr qint64 gigabyte = 1'000'000'000;
    return bytes < gigabyte ? 0 : 1;
}

/// The lower end of a sentence that begins with the item.
QString signingAndUpload(MainWinController &document, const QString &path, qsizetype places)
{
    const QString identity = shown(document.identitiesPopup.titleOfSelectedItem());
    if (!Item(path).isBundle())
        return QObject::tr("will be signed by %1 and uploaded as it is").arg(identity);
    const bool isImage = document.createDiskImageCheckbox.isOn();
    if (places > 1 && !document.dontSignEnclosuresCheckbox.isOn())
        return (isImage ? QObject::tr("will be signed in %1 places by %2 and uploaded as a disk image")
                        : QObject::tr("will be signed in %1 places by %2 and uploaded as a zip archive"))
            .arg(QString::number(places), identity);
    return (isImage ? QObject::tr("will be signed by %1 and uploaded as a disk image")
                    : QObject::tr("will be signed by %1 and uploaded as a zip archive"))
        .arg(identity);
}

} // namespace

QString itemfacts::nameOf(ItemKind kind)
{
    switch (kind) {
    case ItemKind::app:
        return QObject::tr("Application");
    case ItemKind::plugin:
    case ItemKind::fmplugin:
        return QObject::tr("Plug-in");
    case ItemKind::pkg:
        return QObject::tr("Installer package");
    case ItemKind::dmg:
        return QObject::tr("Disk image");
    case ItemKind::other:
        break;
    }
    return QObject::tr("Item");
}

QString itemfacts::describe(const platform::FileService &files, const QString &path)
{
    if (path.isEmpty() || !files.isReachable(path))
        return {};
    QStringList facts{nameOf(itemKind(path))};
    if (const QString identifier = platform::bundleIdentifier(files, path); !identifier.isEmpty())
        facts.append(identifier);
    const QString version = platform::informationText(files, path, u"CFBundleShortVersionString"_s);
    if (!version.isEmpty())
        facts.append(QObject::tr("version %1").arg(version));
    return facts.join(u" · "_s);
}

QString itemfacts::describe(const ItemSurvey &survey)
{
    QStringList facts;
    if (!survey.identifier.isEmpty())
        facts.append(survey.identifier);
    if (!survey.version.isEmpty())
        facts.append(QObject::tr("version %1").arg(survey.version));
    if (!survey.volume.isEmpty())
        facts.append(QObject::tr("volume “%1”").arg(survey.volume));
    if (survey.bytes > 0)
        facts.append(
            QLocale().formattedDataSize(survey.bytes, decimalsOf(survey.bytes), QLocale::DataSizeSIFormat));
    if (!survey.architectures.isEmpty())
        facts.append(survey.architectures.join(u", "_s));
    return facts.join(u" · "_s);
}

QString itemfacts::intention(MainWinController &document, const QString &path, qsizetype places)
{
    if (document.identitiesPopup.titleOfSelectedItem() == noIdentitiesPlaceholder)
        return QObject::tr("cannot be signed, since there is no Developer ID");
    const QString all = signingAndUpload(document, path, places);
    return practice::isOn(document.host().preferences) ? QObject::tr("%1, to practise").arg(all) : all;
}

} // namespace sealwright
