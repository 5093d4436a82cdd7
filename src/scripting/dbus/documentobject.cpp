#include "app/appdelegate.h"
#include "document/mainwincontroller.h"
#include "scripting/MainWinController+Scripting.h"
#include "scripting/NSApplication+Scripting.h"
#include "scripting/dbus/busnames.h"
#include "scripting/dbus/busobjects.h"
#include "scripting/dbus/closewindow.h"
#include "scripting/dbus/sharedcommands.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

MainWinControllerScripting scripting(const BusObject &object)
{
    return MainWinControllerScripting(*object.document);
}

BusAccessByKey properties()
{
    BusAccessByKey access = accessTo(MainWinControllerScripting::properties(), &scripting);
    access.insert(u"caller"_s,
                  {[](const BusObject &object) { return object.objects.callerOf(*object.document); }});
    return access;
}

QHash<QString, CommandHandler> commands()
{
    const CommandsOf<MainWinControllerScripting, MainWinControllerScripting> carriedOutBy(&scripting);
    QHash<QString, CommandHandler> all = carriedOutBy.shared();
    all.insert(u"AEFetchLog:"_s, carriedOutBy(&MainWinControllerScripting::AEFetchLog));
    all.insert(u"AEClearLog:"_s, carriedOutBy(&MainWinControllerScripting::AEClearLog));
    return all;
}

void cancel(const BusObject &object, const BusCall &call)
{
    if (object.document->canCancel())
        object.document->doCancel();
    call.reply();
}

} // namespace

const BusHandlers &documentHandlers()
{
    static const BusHandlers handlers{
        .properties = properties(),
        .commands = commands(),
        .ownCalls = {{u"doCancel:"_s, {{}, {}, cancel}}, {u"doCloseDocument:"_s, {{}, {}, closeWindow}}},
    };
    return handlers;
}

const BusInterface &documentInterface()
{
    static const BusInterface interface =
        busInterface(bus::documentInterface, u"document"_s, documentHandlers());
    return interface;
}

} // namespace sealwright
