#pragma once

#include "document/documentextension.h"
#include "notarization/altoolarguments.h"

/// Learns by one cheap request whether Apple ID, password key and provider work together, before anything is
/// copied.
class CredentialCheck : private DocumentExtension {
public:
    explicit CredentialCheck(MainWinController &owner)
        : DocumentExtension(owner)
    {
    }

    /// False after a failure that has been reported. Worker thread; takes one network request.
    [[nodiscard]] bool checkAltool(const Credentials &credentials);
};

/// What a failed check tells the user; `errorString` is the tool's standard error.
[[nodiscard]] QString credentialMessage(const QString &errorString);
