#pragma once

#include "document/documentextension.h"
#include "notarization/pollinginfo.h"
#include "tools/slwtaskresponse.h"

/// Hands the prepared file to the notary service, once.
class UploadStep : private DocumentExtension {
public:
    explicit UploadStep(MainWinController &owner)
        : DocumentExtension(owner)
    {
    }

    /// Uploads `submitFilePath` and starts the wait for the verdict. True if it has; false after a failure
    /// that has been reported, and also when a script asked not to wait. Worker thread.
    [[nodiscard]] bool uploadForNotarizing(const Credentials &credentials, const QString &bundleID);

private:
    void deleteArchive();
    void deleteItem();
    bool reportFailedUpload(const SLWTaskResponse &response);
    bool reportNoIdentifier(const SLWTaskResponse &response);
    void markAccepted();
    void saveRequestUUID(const QString &requestUUID);
    bool scriptSkipsStapling() const;
    void endWithoutStapling();
    void startPolling(const Credentials &credentials, const QString &requestUUID);
};
