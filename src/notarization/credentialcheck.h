#pragma once

#include "document/documentextension.h"
#include "notarization/altoolarguments.h"

class TextField;

/// Judges what was entered for the notary service.
class CredentialCheck : private DocumentExtension {
public:
    explicit CredentialCheck(MainWinController &owner)
        : DocumentExtension(owner)
    {
    }

    /// What stands in the fields: the password key without blanks around it, the rest as typed. Main thread.
    [[nodiscard]] Credentials entered() const;
    /// Whether Apple ID and password key are there. False after a report, with the focus in the field that
    /// lacks something. Main thread.
    [[nodiscard]] bool checkFields();
    /// Learns by one cheap request whether Apple ID, password key and provider work together, before anything
    /// is copied. False after a failure that has been reported. Worker thread; takes one network request.
    [[nodiscard]] bool checkAltool(const Credentials &credentials);

private:
    bool refuse(const QString &title, const QString &text, TextField &field);
};

/// What the user is told when the keychain has no such item.
extern const QString invalidCredentialMessage;

/// What a failed check tells the user; `errorString` is the tool's standard error.
[[nodiscard]] QString credentialMessage(const QString &errorString);
