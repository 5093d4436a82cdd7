#include "notarization/credentialcheck.h"

#include "notarization/altoolarguments.h"
#include "run/run.h"

using namespace Qt::StringLiterals;

namespace sealwright {

const QString invalidCredentialMessage =
    u"Invalid Apple ID, or invalid key for app-specific password in login keychain."_s;

QString credentialMessage(const QString &errorString)
{
    if (errorString.contains("The specified item could not be found in the keychain"_L1))
        return invalidCredentialMessage;
    return u"Unknown problem using altool. Check that the app-specific pasword, Apple ID, and team provider name are correct."_s;
}

StepResult checkAltool(Run &run)
{
    run.log.logBoldString(
        u"Checking if Apple ID, key for app-specific password in login keychain, and team provider are in sync..."_s);
    const auto response = run.tools.askService(altoolarguments::history(u"0"_s, run.inputs().credentials));
    if (response->status() == 0)
        return Done{};
    const QString message = credentialMessage(response->errorString());
    return Failure{u"Cannot Continue"_s, message, FolderFate::keepsItsName, message};
}

} // namespace sealwright
