#include "app/appdelegate.h"
#include "document/mainwincontroller.h"
#include "scripting/NSApplication+Scripting.h"
#include "scripting/dbus/busnames.h"
#include "scripting/dbus/busobjects.h"
#include "scripting/dbus/closewindow.h"

using namespace Qt::StringLiterals;

void closeWindow(const BusObject &object, const BusCall &call)
{
    call.reply();
    MainWinController &document = *object.document;
    document.dispatchToMain([&application = object.application, &document] {
        // An earlier close may have come first.
        if (application.scripting().windowController(&document.window()))
            document.window().performClose();
    });
}

const BusInterface &windowInterface()
{
    static const BusInterface interface {
        .name = bus::windowInterface,
        .properties = {{u"Title"_s, u"s"_s,
                        [](const BusObject &object) { return object.document->window().title(); }},
                       {u"Document"_s, u"o"_s,
                        [](const BusObject &object) {
                            return QVariant::fromValue(object.objects.path(*object.document));
                        }}},
        .methods = {
            {u"Close"_s, {}, {}, closeWindow}
        }
    };
    return interface;
}
