#include "document/entitlementswitches.h"

#include "run/preferencekeys.h"

using namespace Qt::StringLiterals;

namespace sealwright {

const QList<EntitlementSwitch> &entitlementSwitches()
{
    using Controls = DocumentControls;
    using enum EntitlementSwitch::Kind;
    static const QList<EntitlementSwitch> switches{
        {resourceAccess, &Controls::eventsCheckbox, u"eventsCheckbox"_s, u"Apple events"_s,
         key::allowAppleEvents, u"AEAllowEvents"_s, u"com.apple.security.automation.apple-events"_s},
        {resourceAccess, &Controls::calendarsCheckbox, u"calendarsCheckbox"_s, u"Calendars"_s,
         key::allowCalendars, u"AEAllowCalendars"_s, u"com.apple.security.personal-information.calendars"_s},
        {resourceAccess, &Controls::audioCheckbox, u"audioCheckbox"_s, u"Audio input"_s, key::allowAudio,
         u"AEAllowAudio"_s, u"com.apple.security.device.audio-input"_s},
        {resourceAccess, &Controls::cameraCheckbox, u"cameraCheckbox"_s, u"Camera"_s, key::allowCamera,
         u"AEAllowCamera"_s, u"com.apple.security.device.camera"_s},
        {resourceAccess, &Controls::locationCheckbox, u"locationCheckbox"_s, u"Location"_s,
         key::allowLocation, u"AEAllowLocation"_s, u"com.apple.security.personal-information.location"_s},
        {resourceAccess, &Controls::photosCheckbox, u"photosCheckbox"_s, u"Photos library"_s,
         key::allowPhotos, u"AEAllowPhotos"_s, u"com.apple.security.personal-information.photos-library"_s},
        {resourceAccess, &Controls::addressBookCheckbox, u"addressBookCheckbox"_s, u"Address book"_s,
         key::allowAddressBook, u"AEAllowAddressBook"_s,
         u"com.apple.security.personal-information.addressbook"_s},
        {runtimeException, &Controls::disableLibCheckbox, u"disableLibCheckbox"_s,
         u"Disable library validation"_s, key::allowFrameworks, u"AEAllowFrameworks"_s,
         u"com.apple.security.cs.disable-library-validation"_s},
        {runtimeException, &Controls::allowJITCheckbox, u"allowJITCheckbox"_s, u"Allow JIT"_s,
         key::allowJITCode, u"AEAllowJITCode"_s, u"com.apple.security.cs.allow-jit"_s},
        {runtimeException, &Controls::allowUnsignedExecMemCheckbox, u"allowUnsignedExecMemCheckbox"_s,
         u"Allow unsigned executable memory"_s, key::allowUnsignedExecMem, u"AEAllowUnsignedExecMem"_s,
         u"com.apple.security.cs.allow-unsigned-executable-memory"_s},
        {runtimeException, &Controls::allowDYLDEnvCheckbox, u"allowDYLDEnvCheckbox"_s,
         u"Allow DYLD environment variables"_s, key::allowDYLDEnvVariables, u"AEAllowDYLDEnvVars"_s,
         u"com.apple.security.cs.allow-dyld-environment-variables"_s},
        {runtimeException, &Controls::disableMemProtectionCheckbox, u"disableMemProtectionCheckbox"_s,
         u"Disable executable page protection"_s, key::disableMemProtection, u"AEDisableMemProtection"_s,
         u"com.apple.security.cs.disable-executable-page-protection"_s},
        {debugging, &Controls::isDebugToolCheckbox, u"isDebugToolCheckbox"_s, u"Debugging tool"_s,
         key::isDebuggingTool, u"AEIsDebugTool"_s, u"com.apple.security.cs.debugger"_s},
    };
    return switches;
}

QVariantMap entitlementsFromSettings(const DocumentControls &settings)
{
    QVariantMap entitlements;
    for (const EntitlementSwitch &row : entitlementSwitches()) {
        if ((settings.*row.control).isOn())
            entitlements.insert(row.entitlement, true);
    }
    return entitlements;
}

} // namespace sealwright
