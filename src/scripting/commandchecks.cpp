#include "scripting/commandchecks.h"

#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "run/item.h"
#include "run/status.h"
#include "run/waits.h"
#include "scripting/scripterrors.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

const QString applicationPrefix = u"Developer ID Application: "_s;

/// The item that the command names, if it is there; null otherwise.
QString itemPath(const platform::FileService &files, const ScriptCommandPtr &command)
{
    const QVariant at = command->evaluatedArguments().value(argument::at);
    const QString path = at.typeId() == QMetaType::QUrl ? itempath::fromUrl(at.toUrl()) : QString();
    return !path.isEmpty() && files.isReachable(path) ? path : QString();
}

bool isPlainFolder(const platform::FileService &files, const QString &path)
{
    const std::optional<bool> isPackage = files.isPackage(path);
    return isPackage && !*isPackage && files.kind(path).isDirectory;
}

/// The item as the command gave it; nothing, with the error set on the command, if it will not do.
std::optional<QUrl> itemIf(bool isAllowed, const ScriptCommandPtr &command)
{
    if (isAllowed)
        return command->evaluatedArguments().value(argument::at).toUrl();
    command->setScriptErrorNumber(scriptErrorArgument);
    return std::nullopt;
}

std::nullopt_t refused(const ScriptCommandPtr &command, qint64 number, const QString &text)
{
    command->setScriptErrorNumber(number);
    if (!text.isNull())
        command->setScriptErrorString(text);
    return std::nullopt;
}

} // namespace

namespace commandchecks {

std::optional<QUrl> submittableItem(const platform::FileService &files, const ScriptCommandPtr &command)
{
    const QString path = itemPath(files, command);
    return itemIf(submittableExtensions().contains(itempath::lowerExtension(path)), command);
}

std::optional<QUrl> signableItem(const platform::FileService &files, const ScriptCommandPtr &command)
{
    const QString path = itemPath(files, command);
    const bool isAllowed =
        !path.isNull() && (itempath::lowerExtension(path) == "app"_L1 || isPlainFolder(files, path));
    return itemIf(isAllowed, command);
}

std::optional<WaitRecord> openWait(const platform::Host &host, const ScriptCommandPtr &command)
{
    const QVariant at = command->evaluatedArguments().value(argument::at);
    const QString path = at.typeId() == QMetaType::QUrl ? itempath::fromUrl(at.toUrl()) : QString();
    if (path.isEmpty())
        return refused(command, scriptErrorArgument, {});
    const auto wait = waits::at(host, path);
    if (!wait)
        return refused(command, scriptErrorArgument, wait.error());
    if (waits::isAttended(host, *wait))
        return refused(command, scriptErrorGeneral, u"Another run works in '%1'."_s.arg(wait->folder));
    return *wait;
}

QString knownIdentity(const ScriptCommandPtr &command, const QStringList &identities)
{
    QString identity = command->evaluatedArguments().value(argument::signingIdentity).toString();
    if (identity.startsWith(applicationPrefix))
        identity.remove(0, applicationPrefix.size());
    return identities.contains(identity) ? identity : QString();
}

bool isReady(const QString &statusString, const QString &receiver)
{
    if (statusString == status::ready)
        return true;
    setScriptError(scriptErrorBusy, busyText(receiver, statusString));
    return false;
}

QString busyText(const QString &receiver, const QString &statusString)
{
    return u"%1 is busy, status: %2."_s.arg(receiver, statusString);
}

} // namespace commandchecks

} // namespace sealwright
