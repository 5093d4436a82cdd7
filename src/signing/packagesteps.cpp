#include "signing/packagesteps.h"

#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "run/run.h"
#include "signing/signingarguments.h"
#include "tools/failureline.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

const QString productsignTool = u"/usr/bin/productsign"_s;
const QString packageError = u"Error Signing .pkg File"_s;

StepResult replacePackage(Run &run, const QString &signedPackage)
{
    const auto replaced = run.host.files.replaceItem(run.itemPath(), signedPackage);
    if (!replaced)
        return Failure{packageError, u"Error replacing signed .pkg file: %1"_s.arg(replaced.error())};
    return Done{};
}

StepResult signPackage(Run &run)
{
    run.log.logBoldString(u"Signing installer .pkg..."_s);
    const QString &package = run.itemPath();
    const auto directory = run.host.files.replacementDirectory(package);
    if (!directory)
        return Failure{u"Error Verifying Signing"_s, u"Error in spctl: returned 0 but no output received."_s,
                       FolderFate::keepsItsName};
    // A sibling of the new folder, not a file in it.
    const QString output = *directory + u'.' + itempath::lastComponent(package);
    const auto response = run.tools.runAndLog(
        productsignTool, signingarguments::productsign(package, run.inputs().identity, output));
    if (response->status() != 0)
        return Failure{packageError, toolFailureLine(*response, u"in productsign"_s)};
    return replacePackage(run, output);
}

} // namespace

bool hasUsableSignature(const SLWTaskResponse &assessment)
{
    const QString verdict = assessment.errorString();
    return assessment.status() == 0 && !verdict.isNull() && !verdict.contains("=no usable signature"_L1);
}

StepResult checkPkgAndSign(Run &run)
{
    run.log.logBoldString(u"Checking .pkg..."_s);
    const auto assessment =
        run.tools.runAndLog(signingarguments::spctlTool, signingarguments::spctlInstall(run.itemPath()));
    if (hasUsableSignature(*assessment))
        return Done{};
    return signPackage(run);
}

} // namespace sealwright
