#include "scripting/dbus/makedocument.h"

#include "app/appdelegate.h"
#include "scripting/NSApplication+Scripting.h"
#include "scripting/dbus/busnames.h"
#include "scripting/dbus/busobjects.h"
#include "scripting/dbus/scriptcalls.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

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

} // namespace

void makeDocument(const BusObject &application, const BusCall &call)
{
    const auto values = checkedValues(application, call.dictionary(0), call);
    if (!values)
        return;
    DocumentPtr document;
    const ScriptReply made = scriptcalls::carryOut(
        [&] { document = application.application.scripting().newScriptingDocument(*values); });
    if (made.isError())
        call.replyWithScriptError(made);
    else
        call.reply({QVariant::fromValue(application.objects.path(*document))});
}

} // namespace sealwright
