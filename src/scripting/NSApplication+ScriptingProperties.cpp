#include "scripting/NSApplication+Scripting.h"

#include "document/applicationinterface.h"
#include "document/entitlementswitches.h"
#include "document/mainwincontroller.h"
#include "platform/preferences.h"
#include "run/preferencekeys.h"
#include "scripting/scripterrors.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

using Application = NSApplicationScripting;
using ApplicationProperty = ScriptProperty<Application>;

platform::Preferences &preferences(const Application &application)
{
    return application.appDelegate().host().preferences;
}

/// No value removes the key.
void store(const Application &application, const QString &key, const QVariant &value)
{
    if (value.isValid())
        preferences(application).setValue(key, value);
    else
        preferences(application).remove(key);
}

/// What is empty, or not there, reads as nothing.
QVariant storedText(const Application &application, const QString &key)
{
    const QString text = preferences(application).string(key);
    return text.isEmpty() ? QVariant() : text;
}

/// As it is, be it empty.
QVariant storedConfiguration(const Application &application)
{
    const QVariant stored = preferences(application).value(key::dropDMGConfigName);
    return stored.isValid() ? stored.toString() : QVariant();
}

ApplicationProperty flag(const QString &name, const QString &key)
{
    return {
        name, [key](Application &application) { return preferences(application).boolean(key); },
        [key](Application &application, const QVariant &value) { store(application, key, value.toBool()); }};
}

ApplicationProperty text(const QString &name, const QString &key)
{
    return {name, [key](Application &application) { return storedText(application, key); },
            [key](Application &application, const QVariant &value) { store(application, key, value); },
            Takes::valueOrNothing};
}

ApplicationProperty withdrawn(const QString &name)
{
    const auto refuse = [] { setScriptError(scriptErrorWithdrawn, u"No longer supported."_s); };
    return {name,
            [refuse](Application &) {
                refuse();
                return false;
            },
            [refuse](Application &, const QVariant &) { refuse(); }, Takes::anything};
}

template <class List>
ApplicationProperty list(const QString &name, List (Application::*list)() const,
                         const ApplicationProperty::Write &write = nullptr)
{
    return {name, [list](Application &application) { return QVariant::fromValue((application.*list)()); },
            write, Takes::valueOrNothing};
}

QList<ApplicationProperty> listProperties()
{
    const auto doNothing = [](Application &, const QVariant &) {};
    return {
        list(u"orderedWindows"_s, &Application::orderedWindows, doNothing),
        list(u"allOrderedWindows"_s, &Application::allOrderedWindows),
        list(u"orderedPseudoDocuments"_s, &Application::orderedPseudoDocuments),
        list(u"orderedDocuments"_s, &Application::orderedDocuments),
        {.key = u"AEWaiting"_s,
         .read = [](Application &application) { return application.waiting(); },
         .whenAllAreRead = WhenAllAreRead::isLeftOut}, // it reads files, and the list is older than it
    };
}

QList<ApplicationProperty> stateProperties()
{
    return {
        {u"AEAppStatus"_s, [](Application &application) { return application.appDelegate().statusString(); },
         [](Application &, const QVariant &) { setScriptError(scriptErrorReadOnly); }, Takes::anything},
        {u"AEDeveloperIdentities"_s,
         [](Application &application) { return application.appDelegate().identities(); }},
        {u"AEPollingDelay"_s,
         [](Application &application) { return preferences(application).number(key::pollingDelay); },
         whenReady<Application>([](Application &application, const QVariant &value) {
             application.setAEPollingDelay(value.toFloat());
         }),
         Takes::valueOrNothing},
        {u"AEErrorRetryLimit"_s,
         [](Application &application) {
             return preferences(application).integer(key::prefRetryLimitFor239Failure);
         },
         whenReady<Application>([](Application &application, const QVariant &value) {
             application.setAEErrorRetryLimit(value.toLongLong());
         }),
         Takes::valueOrNothing},
    };
}

QList<ApplicationProperty> textProperties()
{
    return {
        {u"AEActiveIdentity"_s,
         [](Application &application) { return storedText(application, key::lastUsedIdentity); },
         [](Application &application, const QVariant &value) {
             application.setActiveIdentity(value.toString());
         },
         Takes::valueOrNothing},
        text(u"AEAppleID"_s, key::appleIDValue),
        text(u"AEAppPassword"_s, key::appPassValue),
        text(u"AEProviderName"_s, key::providerNameValue),
        {u"AEDropDMGConfig"_s, storedConfiguration,
         [](Application &application, const QVariant &value) {
             store(application, key::dropDMGConfigName, value);
         },
         Takes::valueOrNothing},
    };
}

QList<ApplicationProperty> entitlementProperties()
{
    QList<ApplicationProperty> properties;
    for (const EntitlementSwitch &row : entitlementSwitches())
        properties.append(flag(row.scriptKey, row.preference));
    return properties;
}

QList<ApplicationProperty> flagProperties()
{
    return {
        {u"AELogClearing"_s,
         [](Application &application) {
             return !preferences(application).boolean(key::dontClearLogEachTime);
         },
         [](Application &application, const QVariant &value) {
             store(application, key::dontClearLogEachTime, !value.toBool());
         }},
        flag(u"AESkipEnclosures"_s, key::dontSignEnclosures),
        flag(u"AECreateDMG"_s, key::createDiskImage),
        flag(u"AEUseDropDMG"_s, key::useDropDMGForImages),
        withdrawn(u"AERememberAppleID"_s),
        withdrawn(u"AERememberAppPassword"_s),
        withdrawn(u"AERememberProviderName"_s),
    };
}

} // namespace

const QList<ApplicationProperty> &NSApplicationScripting::properties()
{
    static const QList<ApplicationProperty> all =
        listProperties() + stateProperties() + textProperties() + flagProperties() + entitlementProperties();
    return all;
}

void NSApplicationScripting::setAEPollingDelay(float delay)
{
    // A value that is no number goes to a limit, too.
    const float limited = std::fmax(shortestPollingDelay, std::fmin(longestPollingDelay, delay));
    store(*this, key::pollingDelay, static_cast<double>(limited)); // a float has no plain form in the file
}

void NSApplicationScripting::setAEErrorRetryLimit(qint64 limit)
{
    store(*this, key::prefRetryLimitFor239Failure, std::max<qint64>(limit, lowestRetryLimit));
}

void NSApplicationScripting::setActiveIdentity(const QString &identity)
{
    if (identity.isNull())
        store(*this, key::lastUsedIdentity, {});
    if (!identity.isNull() && m_appDelegate.identities().contains(identity))
        store(*this, key::lastUsedIdentity, identity);
    else
        setScriptError(scriptErrorArgument);
}

} // namespace sealwright
