#include "app/appdelegate.h"
#include "document/mainwincontroller.h"
#include "platform/applicationhost.h"
#include "platform/itempath.h"
#include "scripting/NSApplication+Scripting.h"
#include "scripting/dbus/busnames.h"
#include "scripting/dbus/busobjects.h"
#include "scripting/dbus/busvalue.h"
#include "scripting/dbus/lasterrors.h"
#include "scripting/dbus/makedocument.h"
#include "scripting/dbus/scriptcalls.h"
#include "scripting/dbus/sharedcommands.h"

#include <QDBusVariant>
#include <QGuiApplication>

using namespace Qt::StringLiterals;

namespace {

bool isActive()
{
    return qobject_cast<QGuiApplication *>(QCoreApplication::instance())
        && QGuiApplication::applicationState() == Qt::ApplicationActive;
}

NSApplicationScripting &scripting(const BusObject &object)
{
    return object.application.scripting();
}

BusAccessByKey properties()
{
    BusAccessByKey access = accessTo(NSApplicationScripting::properties(), &scripting);
    access.insert({
        {u"name"_s, {[](const BusObject &) { return QCoreApplication::applicationName(); }}},
        {u"version"_s, {[](const BusObject &) { return QCoreApplication::applicationVersion(); }}},
        {u"isActive"_s, {[](const BusObject &) { return isActive(); }}},
        {u"lastErrorFrom"_s, {[](const BusObject &object) {
             const QVariant offending = object.objects.lastErrors().of(object.caller);
             return offending.isValid() ? QVariant::fromValue(QDBusVariant(busvalue::toBus(offending)))
                                        : QVariant();
         }}},
    });
    return access;
}

using Handler = std::function<void(const BusObject &, const BusCall &)>;

/// The handler of a call that may open a document: an application that is about to quit has an error for it.
Handler openingDocuments(const Handler &handler)
{
    return [handler](const BusObject &object, const BusCall &call) {
        if (object.application.hasLaunchFailed())
            call.replyWithError(buserror::failed,
                                u"There is no notary tool, and Sealwright is about to quit."_s);
        else
            handler(object, call);
    };
}

const BusArgument madeFrom{u"properties"_s, u"a{sv}"_s};
const BusArgument madeDocument{u"document"_s, u"o"_s};

// What a desktop asks of an application

void activate(const BusObject &object, const BusCall &call)
{
    AppDelegate &application = object.application;
    const auto &documents = application.allControllers();
    if (documents.isEmpty()) {
        application.addedDocument();
        return call.reply();
    }
    // Windows that are put away are in no front-to-back list.
    platform::Window *const front = scripting(object).frontmostWindow();
    (front ? *front : documents.last()->window()).show();
    application.host().application.activate();
    call.reply();
}

void open(const BusObject &object, const BusCall &call)
{
    QStringList paths;
    const QStringList uris = call.texts(0);
    for (const QString &uri : uris) {
        if (const QUrl url = busvalue::fileUrl(uri); !url.isEmpty())
            paths.append(itempath::fromUrl(url)); // a folder's URL may end in a slash
    }
    object.application.applicationOpenFiles(paths);
    call.reply();
}

void newDocument(const BusObject &object, const BusCall &call)
{
    object.application.newDocument(0);
    call.reply();
}

void activateAction(const BusObject &object, const BusCall &call)
{
    const QString name = call.text(0);
    if (name == "quit"_L1) {
        call.reply();
        object.application.host().application.terminate();
    } else if (name == "new-document"_L1) {
        openingDocuments(newDocument)(object, call);
    } else {
        call.replyWithError(buserror::invalidArgs, u"There is no action %1."_s.arg(name));
    }
}

const BusArgument platformData{u"platform_data"_s, u"a{sv}"_s};

} // namespace

const BusHandlers &applicationHandlers()
{
    static const BusHandlers handlers{
        .properties = properties(),
        .commands = CommandsOf<NSApplicationScripting>(&scripting).shared(),
        .ownCalls = {{u"newScriptingObjectOfClass:forValueForKey:withContentsValue:properties:"_s,
                      {{madeFrom}, {madeDocument}, openingDocuments(makeDocument)}}},
    };
    return handlers;
}

const BusInterface &applicationInterface()
{
    static const BusInterface interface =
        busInterface(bus::applicationInterface, u"application"_s, applicationHandlers());
    return interface;
}

const BusInterface &desktopInterface()
{
    static const BusInterface interface {
        .name = bus::desktopInterface, .methods = {
            {u"Activate"_s, {platformData}, {}, openingDocuments(activate)},
            {u"Open"_s, {{u"uris"_s, u"as"_s}, platformData}, {}, openingDocuments(open), true},
            {u"ActivateAction"_s,
             {{u"action_name"_s, u"s"_s}, {u"parameter"_s, u"av"_s}, platformData},
             {},
             activateAction},
        }
    };
    return interface;
}
