#include "signing/entitlements.h"

#include "document/mainwincontroller.h"
#include "document/workingfoldernames.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "platform/propertylist/propertylist.h"

using namespace Qt::StringLiterals;

QVariantMap entitlementsFromSettings(const DocumentControls &settings)
{
    const std::pair<const Checkbox &, QString> keys[] = {
        {settings.eventsCheckbox, u"com.apple.security.automation.apple-events"_s},
        {settings.disableLibCheckbox, u"com.apple.security.cs.disable-library-validation"_s},
        {settings.audioCheckbox, u"com.apple.security.device.audio-input"_s},
        {settings.cameraCheckbox, u"com.apple.security.device.camera"_s},
        {settings.locationCheckbox, u"com.apple.security.personal-information.location"_s},
        {settings.addressBookCheckbox, u"com.apple.security.personal-information.addressbook"_s},
        {settings.calendarsCheckbox, u"com.apple.security.personal-information.calendars"_s},
        {settings.photosCheckbox, u"com.apple.security.personal-information.photos-library"_s},
        {settings.allowJITCheckbox, u"com.apple.security.cs.allow-jit"_s},
        {settings.allowUnsignedExecMemCheckbox, u"com.apple.security.cs.allow-unsigned-executable-memory"_s},
        {settings.allowDYLDEnvCheckbox, u"com.apple.security.cs.allow-dyld-environment-variables"_s},
        {settings.disableMemProtectionCheckbox,
         u"com.apple.security.cs.disable-executable-page-protection"_s},
        {settings.isDebugToolCheckbox, u"com.apple.security.cs.debugger"_s},
    };
    QVariantMap entitlements;
    for (const auto &[checkbox, key] : keys) {
        if (checkbox.isOn())
            entitlements.insert(key, true);
    }
    return entitlements;
}

std::optional<QVariantMap> Entitlements::assembleEntitlements()
{
    QVariantMap entitlements = entitlementsFromSettings(document);
    if (document.extraEntitlementsURL().isEmpty())
        return entitlements;
    const auto extra = extraEntitlements();
    if (!extra)
        return std::nullopt;
    entitlements.insert(*extra); // the file wins
    return entitlements;
}

std::optional<QVariantMap> Entitlements::extraEntitlements()
{
    const auto &files = document.host().files;
    const QUrl url = document.extraEntitlementsURL();
    const QString path = itempath::fromUrl(url);
    const QString shown = url.toString(QUrl::FullyEncoded); // as the URL, unlike in the log file
    if (!files.isReadable(path)) {
        reportExtraFailure(
            files.isReachable(path)
                ? u"Permission to read the designated extra entitlements file at '%1' has not been granted."_s
                      .arg(shown)
                : u"The designated extra entitlements file at '%1' is missing."_s.arg(shown));
        return std::nullopt;
    }
    QString error;
    const auto data = files.readFile(path, &error);
    if (!data) {
        reportExtraFailure(u"Failed to read extra entitlements file at '%1': %2"_s.arg(shown, error));
        return std::nullopt;
    }
    const auto list = platform::propertyListFromData(*data);
    if (!list || list.value.typeId() != QMetaType::QVariantMap) {
        reportExtraFailure(u"Failed to read extra entitlements property list file at '%1': %2"_s.arg(
            shown, list ? u"The file is damaged or does not contain a dictionary."_s : list.error));
        return std::nullopt;
    }
    return list.value.toMap();
}

void Entitlements::reportExtraFailure(const QString &logError)
{
    document.reportFailure(u"Cannot Read Extra Entitlements"_s, logError);
}

bool Entitlements::saveEntitlementsDictionary(const QVariantMap &entitlements)
{
    if (document.logHandle()) {
        const QString text = platform::propertyListDescription(entitlements);
        const QUrl extra = document.extraEntitlementsURL();
        document.logToFile(extra.isEmpty() ? u"Entitlements: %1"_s.arg(text)
                                           : u"Entitlements, including those in the file '%1': %2"_s.arg(
                                               itempath::fromUrl(extra), text));
    }
    const auto list = platform::xmlPropertyListData(entitlements);
    if (!list) {
        document.reportFailure(u"Cannot Create Entitlements"_s,
                               u"Failed to create entitlements property list: %1"_s.arg(list.error));
        return false;
    }
    const QString folder = itempath::folder(itempath::fromUrl(document.appletURL()));
    const auto saved = document.host().files.writeFile(
        itempath::appending(folder, workingfolder::entitlementsName.toString()), list.data);
    if (!saved) {
        document.reportFailureAndRename(u"Cannot Save Entitlements"_s,
                                        u"Failed to save entitlements file: %1"_s.arg(saved.error()));
        return false;
    }
    return true;
}
