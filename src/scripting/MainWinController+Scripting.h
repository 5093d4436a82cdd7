#pragma once

#include "document/documentextension.h"
#include "scripting/scriptcommand.h"

#include <functional>

/// What scripts reach on a document. On the thread of script delivery; the work is queued to the main thread.
class MainWinControllerScripting : private DocumentExtension {
public:
    explicit MainWinControllerScripting(MainWinController &owner)
        : DocumentExtension(owner)
    {
    }

    void AESubmitForNotarizing(const ScriptCommandPtr &command);
    void AEStapleOnly(const ScriptCommandPtr &command);
    void AESignOnly(const ScriptCommandPtr &command);
    void AEFetchHistory(const ScriptCommandPtr &command);
    /// Leaves the document to a person, who then decides. Ends at once.
    void AEPrepareForNotarizing(const ScriptCommandPtr &command);

    /// Both go ahead while a workflow runs. The command of that workflow is then lost: the document knows one
    /// command at a time.
    void AEFetchLog(const ScriptCommandPtr &command);
    void AEClearLog(const ScriptCommandPtr &command);

    /// True when the document is ready; otherwise the executing command has its error.
    [[nodiscard]] bool checkStatusIsReady() const;

    // What a command asks for, after its checks. Each suspends the command until the work has ended.
    void startSubmission(const ScriptCommandPtr &command);
    void startStapling(const ScriptCommandPtr &command);
    void startSigning(const ScriptCommandPtr &command);
    void startHistory(const ScriptCommandPtr &command);
    /// The same for a person's submission to come, with an identity or, for a null one, the present one.
    void prepare(const ScriptCommandPtr &command, const QString &identity);

private:
    /// Makes the command the one that the document works for, and queues the work.
    void suspend(const ScriptCommandPtr &command, std::function<void()> work);
    void suspendWithItem(const ScriptCommandPtr &command, std::function<void(const QUrl &)> work);
};
