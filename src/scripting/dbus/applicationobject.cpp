#include "app/appdelegate.h"
#include "document/mainwincontroller.h"
#include "platform/applicationhost.h"
#include "platform/itempath.h"
#include "scripting/dbus/busnames.h"
#include "scripting/dbus/busobjects.h"
#include "scripting/dbus/scriptcalls.h"

#include <QDBusVariant>
#include <QGuiApplication>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

using Application = NSApplicationScripting;
using Handler = std::function<void(const BusObject &, const BusCall &)>;

bool isActive()
{
    return qobject_cast<QGuiApplication *>(QCoreApplication::instance())
        && QGuiApplication::applicationState() == Qt::ApplicationActive;
}

QVariant lastErrorFrom(const BusObject &object)
{
    const QVariant offending = object.objects.lastErrors().of(object.caller);
    return offending.isValid() ? QVariant::fromValue(QDBusVariant(busvalue::toBus(offending))) : QVariant();
}

QList<BusRow> properties()
{
    return rowsOf(Application::properties())
        + QList<BusRow>{
            {u"name"_s, [](const BusObject &) { return QCoreApplication::applicationName(); }},
            {u"version"_s, [](const BusObject &) { return QCoreApplication::applicationVersion(); }},
            {u"isActive"_s, [](const BusObject &) { return isActive(); }},
            {u"lastErrorFrom"_s, lastErrorFrom},
        };
}

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

// New documents

/// The values by the properties' keys. Nothing if one of the properties cannot be set; the call has been
/// answered then.
std::optional<QVariantMap> checkedValues(const BusObject &application, const QVariantMap &given,
                                         const BusCall &call)
{
    QVariantMap values;
    for (auto value = given.cbegin(); value != given.cend(); ++value) {
        const BusProperty *const property = documentInterface().property(value.key());
        if (!property) {
            call.replyWithError(buserror::invalidArgs, u"A document has no property %1."_s.arg(value.key()));
            return std::nullopt;
        }
        const auto checked = scriptcalls::checkedValue(application, *property, value.value(), call);
        if (!checked)
            return std::nullopt;
        values.insert(property->definition.key, *checked);
    }
    return values;
}

void makeDocument(const BusObject &application, const BusCall &call)
{
    const auto values = checkedValues(application, call.dictionary(0), call);
    if (!values)
        return;
    DocumentPtr document;
    const ScriptReply made = scriptcalls::carryOut(
        [&] { document = application.as<Application>().newScriptingDocument(*values); });
    if (made.isError())
        call.replyWithScriptError(made);
    else
        call.reply({QVariant::fromValue(application.objects.path(*document))});
}

// What a desktop asks of an application

bool isActivationToken(const QString &text)
{
    constexpr qsizetype longest = 1024;
    return !text.isEmpty() && text.size() <= longest
        && std::all_of(text.cbegin(), text.cend(), [](QChar character) { return character.isPrint(); });
}

/// What the desktop handed over so that a window may come to the front; null if it gave nothing of use.
/// Desktops of before the xdg-activation protocol have the identifier of a startup notification for it.
QString activationToken(const QVariantMap &platformData)
{
    for (const QString &key : {u"activation-token"_s, u"desktop-startup-id"_s}) {
        const QVariant value = platformData.value(key);
        if (value.typeId() == QMetaType::QString && isActivationToken(value.toString()))
            return value.toString();
    }
    return {};
}

/// The handler of a request whose argument of that number is the desktop's data.
Handler withActivationToken(qsizetype platformData, const Handler &handler)
{
    return [platformData, handler](const BusObject &object, const BusCall &call) {
        if (const QString token = activationToken(call.dictionary(platformData)); !token.isEmpty())
            object.application.host().application.setActivationToken(token);
        handler(object, call);
    };
}

void activate(const BusObject &object, const BusCall &call)
{
    AppDelegate &application = object.application;
    const auto &documents = application.allControllers();
    if (documents.isEmpty()) {
        application.addedDocument();
        return call.reply();
    }
    // Windows that are put away are in no front-to-back list.
    platform::Window *const front = object.as<Application>().frontmostWindow();
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
    using scriptcalls::command;
    static const BusHandlers handlers = [] {
        BusHandlers all{properties(), scriptcalls::sharedCommands<Application>()};
        all.methods.insert(u"AECompare:"_s, command(&Application::AECompare));
        all.methods.insert(u"AEResume:"_s, command(&Application::AEResume));
        all.methods.insert(u"newScriptingObjectOfClass:forValueForKey:withContentsValue:properties:"_s,
                           scriptcalls::ownCall({{u"properties"_s, u"a{sv}"_s}}, {{u"document"_s, u"o"_s}},
                                                openingDocuments(makeDocument)));
        return all;
    }();
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
            {u"Activate"_s, {platformData}, {}, openingDocuments(withActivationToken(0, activate))},
            {u"Open"_s,
             {{u"uris"_s, u"as"_s}, platformData},
             {},
             openingDocuments(withActivationToken(1, open)),
             Readiness::atOnce},
            {u"ActivateAction"_s,
             {{u"action_name"_s, u"s"_s}, {u"parameter"_s, u"av"_s}, platformData},
             {},
             withActivationToken(2, activateAction)},
        }
    };
    return interface;
}

} // namespace sealwright
