#pragma once

#include "run/credentials.h"

namespace sealwright {

class MainWinController;

/// What stands in the document's fields for the notary service: the password key without blanks around it,
/// the rest as typed. Main thread.
[[nodiscard]] Credentials enteredCredentials(const MainWinController &document);

/// Whether what stands there would be refused as none.
[[nodiscard]] bool isMissingAppleID(const QString &appleID);
[[nodiscard]] bool isMissingPasswordKey(const QString &passwordKey);

/// Whether Apple ID and password key are there. False after a report, with the focus in the field that lacks
/// something. Main thread.
[[nodiscard]] bool checkCredentialFields(MainWinController &document);

} // namespace sealwright
