#include "app/appdelegate.h"
#include "document/documentextensions.h"
#include "document/mainwincontroller.h"
#include "scripting/NSApplication+Scripting.h"
#include "scripting/dbus/busnames.h"
#include "scripting/dbus/busobjects.h"
#include "scripting/dbus/closewindow.h"
#include "scripting/dbus/scriptcalls.h"
#include "scripting/dbus/sharedcommands.h"

using namespace Qt::StringLiterals;

namespace {

QList<BusProperty> properties()
{
    return {
        {u"UniqueID"_s, u"s"_s, [](const BusObject &object) { return object.document->uniqueID; }},
        {u"DisplayName"_s, u"s"_s, [](const BusObject &object) { return object.document->window().title(); }},
        {u"Window"_s, u"o"_s,
         [](const BusObject &object) {
             return QVariant::fromValue(object.objects.path(object.document->window()));
         }},
        {u"Caller"_s, u"s"_s,
         [](const BusObject &object) { return object.objects.callerOf(*object.document); }},
        {u"DocStatus"_s, u"s"_s, [](const BusObject &object) { return object.document->statusString(); },
         [](const BusObject &, const QVariant &) { scriptcalls::fail(scriptcalls::readOnlyNumber); }, true},
    };
}

void cancel(const BusObject &object, const BusCall &call)
{
    if (object.document->canCancel())
        object.document->doCancel();
    call.reply();
}

MainWinControllerScripting &scripting(const BusObject &object)
{
    return object.document->steps().scripting;
}

QList<BusMethod> methods()
{
    return scriptcalls::sharedCommands<MainWinControllerScripting>(&scripting)
        + QList<BusMethod>{
            scriptcalls::command(u"FetchLog"_s, {},
                                 [](const BusObject &object, const ScriptCommandPtr &command) {
                                     scripting(object).AEFetchLog(command);
                                 }),
            scriptcalls::command(u"ClearLog"_s, {},
                                 [](const BusObject &object, const ScriptCommandPtr &command) {
                                     scripting(object).AEClearLog(command);
                                 }),
            {u"Cancel"_s, {}, {}, cancel},
            {u"Close"_s, {}, {}, closeWindow},
        };
}

} // namespace

const BusInterface &documentInterface()
{
    static const BusInterface interface {
        .name = bus::documentInterface, .properties = properties(), .methods = methods(), .signalList = {
            {u"LogAppended"_s, {{u"text"_s, u"s"_s}, {u"style"_s, u"s"_s}}},
            {u"LogCleared"_s, {}},
            {u"StatusChanged"_s, {{u"status"_s, u"s"_s}}}
        }
    };
    return interface;
}
