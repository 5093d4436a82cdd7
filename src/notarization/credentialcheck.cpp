#include "notarization/credentialcheck.h"

#include "document/mainwincontroller.h"

using namespace Qt::StringLiterals;

QString credentialMessage(const QString &errorString)
{
    if (errorString.contains("The specified item could not be found in the keychain"_L1))
        return u"Invalid Apple ID, or invalid key for app-specific password in login keychain."_s;
    return u"Unknown problem using altool. Check that the app-specific pasword, Apple ID, and team provider name are correct."_s;
}

bool CredentialCheck::checkAltool(const Credentials &credentials)
{
    document.logBoldString(
        u"Checking if Apple ID, key for app-specific password in login keychain, and team provider are in sync..."_s);
    const auto response =
        document.runAltool(document.taskRunner(), altoolarguments::history(u"0"_s, credentials));
    if (response->status() == 0)
        return true;
    const QString message = credentialMessage(response->errorString());
    document.dispatchFinalAlertOrMessage(u"Cannot Continue"_s, message, message);
    return false;
}
