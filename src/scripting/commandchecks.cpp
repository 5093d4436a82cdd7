#include "scripting/commandchecks.h"

#include "document/mainwincontroller.h"
#include "notarization/submitworkflow.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "scripting/scripterrors.h"

using namespace Qt::StringLiterals;

namespace commandchecks {

std::optional<QUrl> submittableItem(const platform::FileService &files, const ScriptCommandPtr &command)
{
    const QVariant at = command->evaluatedArguments().value(argument::at);
    const QUrl url = at.typeId() == QMetaType::QUrl ? at.toUrl() : QUrl();
    const QString path = itempath::fromUrl(url);
    if (!submittableExtensions().contains(itempath::lowerExtension(path)) || !files.isReachable(path)) {
        command->setScriptErrorNumber(scriptErrorArgument);
        return std::nullopt;
    }
    return url;
}

bool isReady(const QString &statusString, const QString &receiver)
{
    if (statusString == status::ready)
        return true;
    if (const auto command = ScriptCommand::executingCommand()) {
        command->setScriptErrorNumber(scriptErrorBusy);
        command->setScriptErrorString(u"%1 is busy, status: %2."_s.arg(receiver, statusString));
    }
    return false;
}

} // namespace commandchecks
