#include "notarization/credentialcheck.h"

#include "document/mainwincontroller.h"
#include "platform/applicationhost.h"

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype longestTooShortAppleID = 2;
constexpr qsizetype longestTooShortPasswordKey = 1;

} // namespace

const QString invalidCredentialMessage =
    u"Invalid Apple ID, or invalid key for app-specific password in login keychain."_s;

QString credentialMessage(const QString &errorString)
{
    if (errorString.contains("The specified item could not be found in the keychain"_L1))
        return invalidCredentialMessage;
    return u"Unknown problem using altool. Check that the app-specific pasword, Apple ID, and team provider name are correct."_s;
}

Credentials CredentialCheck::entered() const
{
    return {.appleID = document.appleIDField.stringValue(),
            .passwordKey = document.appPassField.stringValue().trimmed(),
            .providerName = document.providerNameField.stringValue()};
}

bool CredentialCheck::checkFields()
{
    const Credentials credentials = entered();
    if (credentials.appleID.trimmed().size() <= longestTooShortAppleID)
        return refuse(u"Missing Apple ID"_s, u"You need to enter your Apple ID."_s, document.appleIDField);
    if (credentials.passwordKey.size() <= longestTooShortPasswordKey)
        return refuse(
            u"Missing Password"_s,
            u"You need to enter the key to an application-specific password you have added to your login Keychain."_s,
            document.appPassField);
    return true;
}

bool CredentialCheck::refuse(const QString &title, const QString &text, TextField &field)
{
    document.host().application.beep();
    document.finalAlertOrMessage(title, text, text);
    field.makeFirstResponder();
    return false;
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
