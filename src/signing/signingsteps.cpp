#include "signing/signingsteps.h"

#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "platform/preferences.h"
#include "run/preferencekeys.h"
#include "run/run.h"
#include "run/workingfoldernames.h"
#include "signing/bundlescanner.h"
#include "signing/logging.h"
#include "signing/signingarguments.h"
#include "tools/failureline.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

const QString xattrTool = u"/usr/bin/xattr"_s;
const QString codesignTool = u"/usr/bin/codesign"_s;

constexpr unsigned readOnlyForAll = 0444;

const QString signingError = u"Error Signing Code"_s;

QString entitlementsPath(const Run &run)
{
    return run.folder.path(workingfolder::entitlementsName);
}

/// As the settings say at each use.
signingarguments::CodesignOptions options(const Run &run)
{
    const auto &preferences = run.host.preferences;
    return {.deep = preferences.boolean(key::prefCodesignDeep),
            .force = preferences.boolean(key::prefCodesignForce)};
}

void lockScriptIn(Run &run, const QString &app)
{
    const QString inside = u"Contents/Resources/Scripts/main.scpt"_s;
    const QString script = itempath::appending(app, inside);
    if (!run.host.files.isReachable(script))
        return;
    const bool isLocked{run.host.files.setPermissionsInside(app, inside, readOnlyForAll)};
    if (run.tools.logsToFile())
        run.log.logToFile(u"Locking main.scpt: %1, result: %2"_s.arg(script, isLocked ? u"1"_s : u"0"_s));
}

QStringList membersInSigningOrder(Run &run)
{
    OrderedPathSet signableSet;
    QSet<QString> setToSubtract;
    BundleScanner(run).parseDirectory(run.itemPath(), signableSet, setToSubtract,
                                      pathsToPassOver(run.itemPath(), run.inputs().skipPaths));
    QStringList members = signingOrder(signableSet, setToSubtract);
    qCDebug(signingLogging).noquote() << "to be signed:" << members;
    return members;
}

StepResult signMember(Run &run, const QString &item)
{
    if (itempath::lowerExtension(item) == "app"_L1)
        lockScriptIn(run, item);
    run.log.logBoldString(u"Signing '...%1'..."_s.arg(item.mid(run.itemPath().size())));
    const auto response = run.tools.runAndLog(
        codesignTool,
        signingarguments::codesignMember(item, run.inputs().identity, entitlementsPath(run), options(run)));
    if (response->status() != 0)
        return Failure{signingError, memberFailureLine(*response, item)};
    return Done{};
}

/// Without any test for a cancel between two members: where it finds no tool running, the next one is signed.
StepResult signAll(Run &run, const QStringList &members)
{
    qsizetype begun = 0;
    for (const QString &member : members) {
        run.progress.advanced(++begun, members.size());
        if (StepResult result = signMember(run, member); !std::holds_alternative<Done>(result))
            return result;
    }
    return Done{};
}

StepResult signItem(Run &run, const QString &entitlements)
{
    run.log.logBoldString(u"Signing main file '%1'..."_s.arg(itempath::abbreviatedWithTilde(run.itemPath())));
    const auto response =
        run.tools.runAndLog(codesignTool,
                            signingarguments::codesignMainFile(run.itemPath(), run.inputs().identity,
                                                               entitlements, options(run)));
    if (response->status() != 0)
        return Failure{signingError, toolFailureLine(*response, u"in codesign"_s)};
    return Done{};
}

} // namespace

QString xattrFailureLine(const SLWTaskResponse &response)
{
    return u"Error %1 in xattr%2. A possible cause is that one or more files with extended attributes also have their permissions set to read-only."_s
        .arg(QString::number(response.reference()),
             response.errorString().isNull() ? u". "_s : u": "_s + response.errorString());
}

QString memberFailureLine(const SLWTaskResponse &response, const QString &item)
{
    return toolFailureLine(response, u"signing '%1'"_s.arg(item));
}

StepResult clearXattrs(Run &run)
{
    run.log.logBoldString(u"Clearing extended attributes..."_s);
    const auto response = run.tools.runAndLog(xattrTool, signingarguments::xattr(run.itemPath()));
    if (response->status() == 0)
        return lockMainScpt(run);
    return Failure{u"Error Clearing Attributes"_s, xattrFailureLine(*response)};
}

StepResult lockMainScpt(Run &run)
{
    lockScriptIn(run, run.itemPath());
    return Done{};
}

StepResult codesignMembers(Run &run)
{
    run.log.logBoldString(u"Examining contents..."_s);
    QStringList members = membersInSigningOrder(run);
    if (members.isEmpty())
        return Failure{signingError, u"No signable items found."_s};
    members.removeLast(); // whatever it is: where the item is a bundle, it is the item
    return signAll(run, members);
}

StepResult codesignAllMembers(Run &run)
{
    run.log.logBoldString(u"Examining contents..."_s);
    const QStringList members = membersInSigningOrder(run);
    if (members.isEmpty())
        return Failure{signingError, u"No signable items found."_s};
    return signAll(run, members);
}

StepResult codesignItem(Run &run)
{
    return signItem(run, entitlementsPath(run));
}

StepResult codesignDiskImage(Run &run)
{
    return signItem(run, {});
}

bool wantsAssessment(Run &run)
{
    return run.host.preferences.boolean(key::prefDoPostCodesignCheck);
}

StepResult assessSignature(Run &run)
{
    run.log.logBoldString(u"Checking code signature..."_s);
    run.tools.runAndLog(signingarguments::spctlTool, signingarguments::spctlExec(run.itemPath()));
    return Done{};
}

} // namespace sealwright
