#pragma once

#include "run/run.h"

namespace sealwright {

// What is put on record of a wait when it begins, so that no wait ends with its process. Worker thread.

/// Puts the upload with that identifier on record, where the run's folder lies now. Of one that is on record
/// already nothing changes.
void recordWait(Run &run, const QString &requestUUID);

/// Writes the request's identifier into the folder.
void saveRequestUUID(Run &run);

/// Gives the folder the name of an accepted upload, and writes the request's identifier into it. The record
/// follows.
void nameSubmittedFolder(Run &run);

/// Hears what the notary tool prints while it uploads. The wait is on record as soon as the receipt is whole:
/// between that and the tool's end the process may be killed.
class ReceiptListener {
public:
    explicit ReceiptListener(Run &run)
        : m_run(run)
    {
    }

    void hear(const QByteArray &output);

private:
    Run &m_run;
    QByteArray m_heard;
};

} // namespace sealwright
