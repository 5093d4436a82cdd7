#include "signing/packagesteps.h"

#include "document/mainwincontroller.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "signing/signingarguments.h"
#include "tools/failureline.h"

using namespace Qt::StringLiterals;

namespace {

const QString productsignTool = u"/usr/bin/productsign"_s;
const QString packageError = u"Error Signing .pkg File"_s;

} // namespace

bool hasUsableSignature(const SLWTaskResponse &assessment)
{
    const QString verdict = assessment.errorString();
    return assessment.status() == 0 && !verdict.isNull() && !verdict.contains("=no usable signature"_L1);
}

bool PackageSteps::checkPkgAndSignWithID(const QString &identity)
{
    document.logBoldString(u"Checking .pkg..."_s);
    const QString package = itempath::fromUrl(document.appletURL());
    const auto assessment =
        document.runAndLog(signingarguments::spctlTool, signingarguments::spctlInstall(package));
    return hasUsableSignature(*assessment) || signPackage(identity);
}

bool PackageSteps::signPackage(const QString &identity)
{
    document.logBoldString(u"Signing installer .pkg..."_s);
    const QString package = itempath::fromUrl(document.appletURL());
    const auto directory = document.host().files.replacementDirectory(package);
    if (!directory) {
        document.reportFailure(u"Error Verifying Signing"_s,
                               u"Error in spctl: returned 0 but no output received."_s);
        return false;
    }
    // A sibling of the new folder, not a file in it.
    const QString output = *directory + u'.' + itempath::lastComponent(package);
    const auto response =
        document.runAndLog(productsignTool, signingarguments::productsign(package, identity, output));
    if (response->status() != 0) {
        document.reportFailureAndRename(packageError, toolFailureLine(*response, u"in productsign"_s));
        return false;
    }
    return replacePackage(output);
}

bool PackageSteps::replacePackage(const QString &signedPackage)
{
    const auto replaced =
        document.host().files.replaceItem(itempath::fromUrl(document.appletURL()), signedPackage);
    if (replaced)
        return true;
    document.reportFailureAndRename(packageError,
                                    u"Error replacing signed .pkg file: %1"_s.arg(replaced.error()));
    return false;
}
