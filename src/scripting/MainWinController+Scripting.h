#pragma once

#include "document/documentextension.h"
#include "scripting/scriptcommand.h"

/// What scripts reach on a document. On the thread of script delivery; the work is queued to the main thread.
class MainWinControllerScripting : private DocumentExtension {
public:
    explicit MainWinControllerScripting(MainWinController &owner)
        : DocumentExtension(owner)
    {
    }

    void AESubmitForNotarizing(const ScriptCommandPtr &command);
    /// Answers with the text of the window log, also while a workflow runs. The command of that workflow is
    /// then lost: the document knows one command at a time.
    void AEFetchLog(const ScriptCommandPtr &command);

    /// True when the document is ready; otherwise the executing command has its error.
    [[nodiscard]] bool checkStatusIsReady() const;

    /// Starts the submission that the command asks for on this document and suspends the command.
    void startSubmission(const ScriptCommandPtr &command);
};
