#pragma once

#include "document/documentextension.h"
#include "tools/slwtaskresponse.h"

#include <QStringList>

/// Attaches the ticket to the item and leaves the finished folder.
class StaplingSteps : private DocumentExtension {
public:
    explicit StaplingSteps(MainWinController &owner)
        : DocumentExtension(owner)
    {
    }

    /// Staples the document's item and ends the workflow. Of a submission, known by its folder's name, it
    /// also puts the untouched item away and gives the folder its last name. Worker thread.
    void runStaplerAndFinish();

    /// Whether the folder of the document's item has the name that an accepted upload gives it.
    [[nodiscard]] bool isInSubmittedFolder() const;

private:
    void reportFailure(const SLWTaskResponse &response, bool isSubmission);
    void endSilently();
    void endWithDialog();
    void endCommon();
};

/// The arguments for xcrun.
[[nodiscard]] QStringList staplerArguments(const QString &item);
/// The log line of a failed stapling.
[[nodiscard]] QString staplerFailureLine(const SLWTaskResponse &response);
