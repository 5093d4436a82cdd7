#include "signing/signingsteps.h"

#include "app/preferencekeys.h"
#include "document/documentextensions.h"
#include "document/mainwincontroller.h"
#include "document/workingfoldernames.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "platform/preferences.h"
#include "tools/failureline.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QString xattrTool = u"/usr/bin/xattr"_s;
const QString codesignTool = u"/usr/bin/codesign"_s;

constexpr unsigned readOnlyForAll = 0444;

const QString signingError = u"Error Signing Code"_s;

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

QString SigningSteps::itemPath() const
{
    return itempath::fromUrl(document.appletURL());
}

QString SigningSteps::entitlementsPath() const
{
    return itempath::appending(itempath::folder(itemPath()), workingfolder::entitlementsName.toString());
}

signingarguments::CodesignOptions SigningSteps::options() const
{
    const auto &preferences = document.host().preferences;
    return {.deep = preferences.boolean(key::prefCodesignDeep),
            .force = preferences.boolean(key::prefCodesignForce)};
}

bool SigningSteps::clearXattrs()
{
    document.logBoldString(u"Clearing extended attributes..."_s);
    const auto response = document.runAndLog(xattrTool, signingarguments::xattr(itemPath()));
    if (response->status() == 0)
        return lockMainScpt();
    document.reportFailureAndRename(u"Error Clearing Attributes"_s, xattrFailureLine(*response));
    return false;
}

bool SigningSteps::lockMainScpt()
{
    lockScriptIn(itemPath());
    return true;
}

void SigningSteps::lockScriptIn(const QString &app)
{
    auto &files = document.host().files;
    const QString script = app + u"/Contents/Resources/Scripts/main.scpt"_s;
    if (!files.isReachable(script))
        return;
    const bool isLocked{files.setPermissions(script, readOnlyForAll)};
    if (document.loggingToFile())
        document.logToFile(u"Locking main.scpt: %1, result: %2"_s.arg(script, isLocked ? u"1"_s : u"0"_s));
}

bool SigningSteps::codesignMembersWithID(const QString &identity, bool skipMain)
{
    document.logBoldString(u"Examining contents..."_s);
    QStringList members = membersInSigningOrder();
    if (members.isEmpty()) {
        document.reportFailureAndRename(signingError, u"No signable items found."_s);
        return false;
    }
    if (skipMain)
        members.removeLast(); // whatever it is: where the item is a bundle, it is the item
    return std::all_of(members.cbegin(), members.cend(),
                       [&](const QString &member) { return signMember(member, identity); });
}

QStringList SigningSteps::membersInSigningOrder()
{
    OrderedPathSet signableSet;
    QSet<QString> setToSubtract;
    document.steps().scanner.parseDirectory(itemPath(), signableSet, setToSubtract,
                                            pathsToPassOver(itemPath(), document.skipPaths()));
    return signingOrder(signableSet, setToSubtract);
}

bool SigningSteps::signMember(const QString &item, const QString &identity)
{
    if (itempath::lowerExtension(item) == "app"_L1)
        lockScriptIn(item);
    document.logBoldString(u"Signing '...%1'..."_s.arg(item.mid(itemPath().size())));
    const auto response = document.runAndLog(
        codesignTool, signingarguments::codesignMember(item, identity, entitlementsPath(), options()));
    if (response->status() == 0)
        return true;
    document.reportFailureAndRename(signingError, memberFailureLine(*response, item));
    return false;
}

bool SigningSteps::signAndCheckAppWithID(const QString &identity, bool needsEntitlements)
{
    document.logBoldString(u"Signing main file '%1'..."_s.arg(itempath::abbreviatedWithTilde(itemPath())));
    const QString entitlements = needsEntitlements ? entitlementsPath() : QString();
    const auto response = document.runAndLog(
        codesignTool, signingarguments::codesignMainFile(itemPath(), identity, entitlements, options()));
    if (response->status() != 0) {
        document.reportFailureAndRename(signingError, toolFailureLine(*response, u"in codesign"_s));
        return false;
    }
    if (needsEntitlements && document.host().preferences.boolean(key::prefDoPostCodesignCheck)) {
        document.beginStep(Step::checkSignature);
        checkSignature();
    }
    return true;
}

void SigningSteps::checkSignature()
{
    document.logBoldString(u"Checking code signature..."_s);
    // What the assessment says is for the log file; it holds nothing up.
    document.runAndLog(signingarguments::spctlTool, signingarguments::spctlExec(itemPath()));
}
