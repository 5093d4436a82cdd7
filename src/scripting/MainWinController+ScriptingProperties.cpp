#include "scripting/MainWinController+Scripting.h"

#include "document/applicationinterface.h"
#include "document/entitlementswitches.h"
#include "document/mainwincontroller.h"
#include "document/profiles.h"
#include "platform/itempath.h"
#include "platform/preferences.h"
#include "run/preferencekeys.h"
#include "scripting/NSWindow+Scripting.h"
#include "scripting/scripterrors.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

using Document = MainWinControllerScripting;
using DocumentProperty = ScriptProperty<Document>;
using Controls = DocumentControls;

void refuseWrite(Document &, const QVariant &)
{
    setScriptError(scriptErrorReadOnly);
}

NSWindowScripting windowOf(Document &document)
{
    return NSWindowScripting(document.controller());
}

/// The checkbox's state is one number when the property is true and another when it is false.
DocumentProperty::Write setsState(Checkbox Controls::*checkbox, int whenTrue, int whenFalse)
{
    return [=](Document &document, const QVariant &value) {
        (document.controller().*checkbox).setState(value.toBool() ? whenTrue : whenFalse);
    };
}

DocumentProperty checkbox(const QString &name, Checkbox Controls::*box)
{
    return {name, [box](Document &document) { return (document.controller().*box).state() == 1; },
            whenReady<Document>(setsState(box, 1, 0))};
}

DocumentProperty text(const QString &name, TextField Controls::*field)
{
    return {name,
            [field](Document &document) {
                const QString value = (document.controller().*field).stringValue();
                return value.isEmpty() ? QVariant() : value;
            },
            whenReady<Document>([field](Document &document, const QVariant &value) {
                (document.controller().*field).setStringValue(value.isValid() ? value.toString() : u""_s);
            }),
            Takes::valueOrNothing};
}

QVariant activeIdentity(Document &document)
{
    const QString title = document.controller().identitiesPopup.titleOfSelectedItem();
    return title == noIdentitiesPlaceholder ? QVariant() : title;
}

QVariant toolPause(Document &document)
{
    const auto own = document.controller().ownTaskRunner();
    return own ? QVariant(own->pauseAfterExit()) : QVariant();
}

QList<DocumentProperty> stateProperties()
{
    return {
        {u"uniqueID"_s, [](Document &document) { return document.controller().uniqueID; }},
        {u"displayName"_s, [](Document &document) { return document.displayName(); }},
        {u"window"_s,
         [](Document &document) { return QVariant::fromValue(&document.controller().window()); }},
        {u"AEAppletFile"_s, [](Document &document) { return document.controller().appletURL(); }, refuseWrite,
         Takes::anything},
        {u"AEDocStatus"_s, [](Document &document) { return document.controller().statusString(); },
         refuseWrite, Takes::anything},
        {u"issues"_s, [](Document &document) { return document.controller().serviceIssues(); }},
        // Before those that it sets, so that a new document's own values stand over those of its profile.
        {u"profile"_s, [](Document &document) { return document.controller().profile(); },
         whenReady<Document>([](Document &document, const QVariant &value) {
             if (const auto used = profiles::use(document.controller(), value.toString()); !used)
                 setScriptError(scriptErrorArgument, used.error());
         })},
        {u"AEWindowTab"_s,
         [](Document &document) {
             return QVariant::fromValue(document.controller().window().tabGroup().selectedWindow());
         },
         refuseWrite, Takes::anything},
    };
}

QList<DocumentProperty> signingProperties()
{
    return {
        {u"toolPause"_s, toolPause, whenReady<Document>([](Document &document, const QVariant &value) {
             document.setToolPause(value.toDouble());
         })},
        checkbox(u"AESkipEnclosures"_s, &Controls::dontSignEnclosuresCheckbox),
        {u"AEPathsToSkip"_s, [](Document &document) { return document.controller().skipPaths(); },
         whenReady<Document>([](Document &document, const QVariant &value) {
             document.controller().skipPaths.set(value.toStringList());
         }),
         Takes::valueOrNothing},
        {u"AELogClearing"_s,
         [](Document &document) { return document.controller().dontClearCheckbox.state() == 0; },
         setsState(&Controls::dontClearCheckbox, 0, 1)},
        {u"AEIsTabbed"_s, [](Document &document) { return windowOf(document).AEIsTabbed(); },
         [](Document &document, const QVariant &value) { windowOf(document).setAEIsTabbed(value.toBool()); }},
        {u"AEActiveIdentity"_s, activeIdentity,
         whenReady<Document>([](Document &document, const QVariant &value) {
             document.setAEActiveIdentity(value.toString());
         }),
         Takes::valueOrNothing},
        text(u"AEAppleID"_s, &Controls::appleIDField),
        text(u"AEAppPassword"_s, &Controls::appPassField),
        text(u"AEProviderName"_s, &Controls::providerNameField),
    };
}

QList<DocumentProperty> entitlementProperties()
{
    QList<DocumentProperty> properties;
    for (const EntitlementSwitch &row : entitlementSwitches())
        properties.append(checkbox(row.scriptKey, row.control));
    properties.append(
        {u"AEExtraEntitlements"_s,
         [](Document &document) { return document.controller().extraEntitlementsURL(); },
         [](Document &document, const QVariant &value) { document.setAEExtraEntitlements(value); },
         Takes::anything});
    return properties;
}

QList<DocumentProperty> diskImageProperties()
{
    return {
        {u"AECreateDMG"_s, [](Document &document) { return document.controller().useDiskImage(); },
         [](Document &document, const QVariant &value) {
             document.controller().useDiskImage.set(value.toBool());
         }},
        {u"AEUseDropDMG"_s, [](Document &document) { return document.controller().useDropDMG(); },
         [](Document &document, const QVariant &value) { document.setAEUseDropDMG(value.toBool()); }},
        {u"AEDropDMGConfig"_s,
         [](Document &document) { return document.controller().dropDMGConfigsPopup.titleOfSelectedItem(); },
         [](Document &document, const QVariant &value) { document.setAEDropDMGConfig(value); },
         Takes::anything},
    };
}

} // namespace

const QList<DocumentProperty> &MainWinControllerScripting::properties()
{
    static const QList<DocumentProperty> all =
        stateProperties() + signingProperties() + entitlementProperties() + diskImageProperties();
    return all;
}

void MainWinControllerScripting::setScriptingProperties(const QVariantMap &valuesByKey)
{
    for (const DocumentProperty &property : properties()) {
        if (property.write && valuesByKey.contains(property.key))
            property.write(*this, valuesByKey.value(property.key));
    }
}

void MainWinControllerScripting::setAEActiveIdentity(const QString &identity)
{
    const QStringList titles = document.identitiesPopup.itemTitles();
    const bool isChoice = titles != QStringList{noIdentitiesPlaceholder.toString()};
    if (isChoice && !identity.isNull() && titles.contains(identity))
        document.identitiesPopup.selectItemWithTitle(identity);
    else
        setScriptError(scriptErrorArgument);
}

void MainWinControllerScripting::setToolPause(double seconds)
{
    constexpr double longest = 60;
    const auto own = document.ownTaskRunner();
    if (!own)
        return setScriptError(scriptErrorArgument, u"Documents share their runners with this notary tool."_s);
    if (!(seconds >= 0 && seconds <= longest))
        return setScriptError(scriptErrorArgument, u"A pause lasts from 0 to 60 seconds."_s);
    own->setPauseAfterExit(seconds);
}

void MainWinControllerScripting::setAEExtraEntitlements(const QVariant &url)
{
    const bool isUrl = url.typeId() == QMetaType::QUrl;
    if (isUrl && itempath::lowerExtension(itempath::fromUrl(url.toUrl())) == "plist"_L1)
        document.extraEntitlementsURL.set(url.toUrl());
    setScriptError(scriptErrorArgument); // in every case: scripts in use expect it
}

void MainWinControllerScripting::setAEUseDropDMG(bool usesDropDMG)
{
    if (!usesDropDMG || document.appDelegate().hasDropDMG())
        return document.useDropDMG.set(usesDropDMG);
    document.host().preferences.setValue(key::useDropDMGForImages, false);
    setScriptError(scriptErrorNoDropDMG, u"DropDMG.app is not installed."_s);
}

void MainWinControllerScripting::setAEDropDMGConfig(const QVariant &name)
{
    const ApplicationInterface &application = document.appDelegate();
    if (name.typeId() == QMetaType::QString && application.hasDropDMG()
        && application.dropDMGConfigNames().contains(name.toString()))
        document.dropDMGConfigsPopup.selectItemWithTitle(name.toString());
    else
        setScriptError(scriptErrorNoConfiguration, u"No such DropDMG configuration available."_s);
}

QString MainWinControllerScripting::displayName() const
{
    return document.window().title();
}

QString MainWinControllerScripting::description() const
{
    return u"MainWinController '%1'"_s.arg(displayName());
}

} // namespace sealwright
