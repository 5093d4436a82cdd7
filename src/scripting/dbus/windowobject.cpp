#include "document/mainwincontroller.h"
#include "scripting/NSWindow+Scripting.h"
#include "scripting/dbus/bushandlers.h"
#include "scripting/dbus/busnames.h"
#include "scripting/dbus/closewindow.h"

using namespace Qt::StringLiterals;

namespace sealwright {

void closeWindow(const BusObject &object, const BusCall &call)
{
    call.reply();
    object.document->doCloseDocument(CloseSender::script);
}

namespace {

NSWindowScripting scripting(const BusObject &object)
{
    return NSWindowScripting(*object.document);
}

} // namespace

const BusHandlers &windowHandlers()
{
    static const BusHandlers handlers{
        .properties = accessTo(NSWindowScripting::properties(), &scripting),
        .commands = {},
        .ownCalls = {{u"performClose:"_s, {{}, {}, closeWindow}}},
    };
    return handlers;
}

const BusInterface &windowInterface()
{
    static const BusInterface interface = busInterface(bus::windowInterface, u"window"_s, windowHandlers());
    return interface;
}

} // namespace sealwright
