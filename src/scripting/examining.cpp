#include "scripting/examining.h"

#include "document/applicationinterface.h"
#include "document/documentdefaults.h"
#include "document/entitlementswitches.h"
#include "document/mainwincontroller.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "platform/preferences.h"
#include "platform/process.h"
#include "platform/propertylist/propertylist.h"
#include "platform/workerqueue.h"
#include "run/preferencekeys.h"
#include "scripting/scripterrors.h"

#include <QUrl>

using namespace Qt::StringLiterals;

namespace sealwright::examining {

namespace {

/// Adds the extra file's entitlements, or says why they cannot be had.
void addExtraEntitlements(const platform::FileService &files, const QUrl &url, examine::Choices &choices)
{
    if (url.isEmpty())
        return;
    const QString path = itempath::fromUrl(url);
    const auto data = files.readFile(path);
    const auto list = data ? platform::propertyListFromData(*data) : data.failure();
    if (!data)
        choices.entitlementsError =
            u"Failed to read extra entitlements file at '%1': %2"_s.arg(path, data.error());
    else if (!list || list->typeId() != QMetaType::QVariantMap)
        choices.entitlementsError = u"Failed to read extra entitlements property list file at '%1': %2"_s.arg(
            path, list ? u"The file is damaged or does not contain a dictionary."_s : list.error());
    else
        choices.entitlements.insert(list->toMap());
}

/// "AB12CD34EF" of "Example Ltd (AB12CD34EF)".
QString teamOf(const QString &identity)
{
    return identity.endsWith(u')') ? identity.section(u'(', -1).chopped(1) : QString();
}

void addPreferences(const ApplicationInterface &application, examine::Choices &choices)
{
    const auto &preferences = application.host().preferences;
    choices.signsDeep = preferences.boolean(key::prefCodesignDeep);
    choices.replacesSignatures = preferences.boolean(key::prefCodesignForce);
    choices.fileTool = application.fileTool();
}

/// The path of the item under an argument; null, with the error set, if there is none.
QString itemUnder(const QString &name, const ScriptCommandPtr &command,
                  const ApplicationInterface &application)
{
    const QVariant value = command->evaluatedArguments().value(name);
    const QString path = value.typeId() == QMetaType::QUrl ? itempath::fromUrl(value.toUrl()) : QString();
    if (!path.isEmpty() && application.host().files.isReachable(path))
        return path;
    command->setScriptErrorNumber(scriptErrorArgument);
    command->setScriptErrorString(path.isEmpty() ? u"The argument %1 names no item."_s.arg(name)
                                                 : u"There is no item at '%1'."_s.arg(path));
    return {};
}

void answer(const ScriptCommandPtr &command, const platform::Result<QByteArray> &look)
{
    if (!look) {
        command->setScriptErrorNumber(scriptErrorGeneral);
        command->setScriptErrorString(look.error());
    }
    command->resumeExecutionWithResult(look ? QString::fromUtf8(*look) : QVariant());
}

/// Suspends the command until the work has ended on a worker.
void answerLater(const ScriptCommandPtr &command, const ApplicationInterface &application,
                 std::function<platform::Result<QByteArray>()> work)
{
    command->suspendExecution();
    application.host().workers.post([command, work = std::move(work)] { answer(command, work()); });
}

} // namespace

examine::Choices choicesOf(const MainWinController &document)
{
    examine::Choices choices;
    choices.entitlements = entitlementsFromSettings(document);
    addExtraEntitlements(document.host().files, document.extraEntitlementsURL(), choices);
    choices.skipPaths = document.skipPaths();
    choices.signsMainItemOnly = document.dontSignEnclosuresCheckbox.isOn();
    choices.packing = document.useDiskImage() ? examine::Packing::diskImage : examine::Packing::zip;
    choices.team = teamOf(document.identitiesPopup.titleOfSelectedItem());
    addPreferences(document.appDelegate(), choices);
    return choices;
}

examine::Choices choicesOfNewDocument(const ApplicationInterface &application)
{
    const auto &preferences = application.host().preferences;
    DocumentControls controls;
    for (const CheckboxDefault &setting : checkboxDefaults())
        (controls.*setting.checkbox).setState(preferences.boolean(setting.key) ? 1 : 0);
    examine::Choices choices;
    choices.entitlements = entitlementsFromSettings(controls);
    choices.signsMainItemOnly = controls.dontSignEnclosuresCheckbox.isOn();
    choices.packing =
        preferences.boolean(key::createDiskImage) ? examine::Packing::diskImage : examine::Packing::zip;
    choices.team = teamOf(preferences.string(key::lastUsedIdentity));
    addPreferences(application, choices);
    return choices;
}

platform::Result<QByteArray> run(const ApplicationInterface &application, const QStringList &arguments)
{
    const auto process = application.host().launcher.process(application.examineProgram(), arguments);
    if (const auto launched = process->launch(); !launched)
        return launched.failure();
    QByteArray json;
    QByteArray errorText;
    process->waitUntilExit([&json](const QByteArray &bytes) { json += bytes; },
                           [&errorText](const QByteArray &bytes) { errorText += bytes; });
    json += process->readOutputToEnd();
    errorText += process->readErrorToEnd();
    const int status = process->terminationStatus();
    if (!json.isEmpty() && (status == 0 || status == 1))
        return json;
    const QString prefix = u"sealwright-examine: "_s;
    QString text = QString::fromUtf8(errorText).trimmed();
    if (text.startsWith(prefix))
        text.remove(0, prefix.size());
    return platform::Error{text.isEmpty() ? u"The item could not be looked at (status %1)."_s.arg(status)
                                          : text};
}

platform::Result<QByteArray> examineItem(const ApplicationInterface &application, const QString &item,
                                         const examine::Choices &choices)
{
    return run(application, {u"--choices"_s, QString::fromUtf8(toJson(choices)), u"--"_s, item});
}

void answerExamination(const ScriptCommandPtr &command, const ApplicationInterface &application,
                       const examine::Choices &choices)
{
    const QString item = itemUnder(argument::at, command, application);
    if (!item.isEmpty())
        answerLater(command, application,
                    [&application, item, choices] { return examineItem(application, item, choices); });
}

void answerComparison(const ScriptCommandPtr &command, const ApplicationInterface &application)
{
    const QString old = itemUnder(argument::old, command, application);
    const QString recent = old.isEmpty() ? QString() : itemUnder(argument::recent, command, application);
    if (!recent.isEmpty())
        answerLater(command, application, [&application, old, recent] {
            return run(application, {u"--compare"_s, u"--"_s, old, recent});
        });
}

} // namespace sealwright::examining
