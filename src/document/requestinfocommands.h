#pragma once

#include "document/servicecommands.h"

namespace sealwright {

/// Shows what the service has on record about a submission that has been lost track of. Main thread.
class RequestInfoCommands : private ServiceCommands {
public:
    explicit RequestInfoCommands(MainWinController &owner)
        : ServiceCommands(owner)
    {
    }

    void doInfoForUUIDInFile();
    void doInfoForUUIDOfLastUpload();
    void doInfoForUUIDOnClipboard();

    /// Prints the record of that request into the log, or without an identifier that of the newest entry in
    /// the account's history.
    void infoForRequestUUID(const std::optional<QString> &requestUUID);

private:
    void lookUpRequestInFile(const QString &path);
};

} // namespace sealwright
