#include "scripting/dbus/makedocument.h"

#include "app/appdelegate.h"
#include "scripting/dbus/busnames.h"
#include "scripting/dbus/busobjects.h"
#include "scripting/dbus/scriptcalls.h"

using namespace Qt::StringLiterals;

namespace {

using Assignments = QList<scriptcalls::Assignment>;

/// Nothing if one of the properties cannot be set; the call has been answered then.
std::optional<Assignments> checkedAssignments(const QVariantMap &values, const BusCall &call)
{
    Assignments assignments;
    for (auto value = values.cbegin(); value != values.cend(); ++value) {
        const BusProperty *const property = documentInterface().property(value.key());
        if (!property) {
            call.replyWithError(buserror::invalidArgs, u"A document has no property %1."_s.arg(value.key()));
            return std::nullopt;
        }
        const auto assignment = scriptcalls::checkedAssignment(*property, value.value(), call);
        if (!assignment)
            return std::nullopt;
        assignments.append(*assignment);
    }
    return assignments;
}

} // namespace

void makeDocument(const BusObject &application, const BusCall &call)
{
    const auto assignments = checkedAssignments(call.dictionary(0), call);
    if (!assignments)
        return;
    const DocumentPtr document = application.application.addedDocument();
    const QDBusObjectPath path = application.objects.path(*document);
    const ScriptReply written =
        scriptcalls::write(*application.objects.find(path.path(), call.caller()), *assignments);
    if (written.isError())
        call.replyWithScriptError(written);
    else
        call.reply({QVariant::fromValue(path)});
}
