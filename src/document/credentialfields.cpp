#include "document/credentialfields.h"

#include "document/mainwincontroller.h"
#include "platform/applicationhost.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr qsizetype longestTooShortAppleID = 2;
constexpr qsizetype longestTooShortPasswordKey = 1;

bool refuse(MainWinController &document, const QString &title, const QString &text, TextField &field)
{
    document.host().application.beep();
    document.finalAlertOrMessage(title, text, text);
    field.makeFirstResponder();
    return false;
}

} // namespace

bool isMissingAppleID(const QString &appleID)
{
    return appleID.trimmed().size() <= longestTooShortAppleID;
}

bool isMissingPasswordKey(const QString &passwordKey)
{
    return passwordKey.trimmed().size() <= longestTooShortPasswordKey;
}

Credentials enteredCredentials(const MainWinController &document)
{
    return {.appleID = document.appleIDField.stringValue(),
            .passwordKey = document.appPassField.stringValue().trimmed(),
            .providerName = document.providerNameField.stringValue()};
}

bool checkCredentialFields(MainWinController &document)
{
    const Credentials credentials = enteredCredentials(document);
    if (isMissingAppleID(credentials.appleID))
        return refuse(document, u"Missing Apple ID"_s, u"You need to enter your Apple ID."_s,
                      document.appleIDField);
    if (isMissingPasswordKey(credentials.passwordKey))
        return refuse(
            document, u"Missing Password"_s,
            u"You need to enter the key to an application-specific password you have added to your login Keychain."_s,
            document.appPassField);
    return true;
}

} // namespace sealwright
