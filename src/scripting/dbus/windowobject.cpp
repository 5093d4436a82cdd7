#include "document/mainwincontroller.h"
#include "scripting/dbus/busnames.h"
#include "scripting/dbus/busobjects.h"
#include "scripting/dbus/closewindow.h"

using namespace Qt::StringLiterals;

void closeWindow(const BusObject &object, const BusCall &call)
{
    call.reply();
    object.document->doCloseDocument(CloseSender::script);
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
