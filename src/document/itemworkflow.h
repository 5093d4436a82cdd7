#pragma once

#include "document/documentextension.h"
#include "document/documentfields.h"
#include "document/plannedsteps.h"
#include "platform/window.h"

/// What the workflows have in common that begin with an item of the user's.
class ItemWorkflow : protected DocumentExtension {
protected:
    explicit ItemWorkflow(MainWinController &owner)
        : DocumentExtension(owner)
    {
    }
    ~ItemWorkflow() = default;

    // Main thread.

    /// A person is there to see dialogs, and no script waits.
    void setStartedByPerson();
    /// Makes the file URL's item the one that the user chose, and the action the one to offer again.
    void setOriginal(const QUrl &url, LastAction action);
    /// Whether an item lies where the user's did. If it has gone, the one that a finished run has kept in the
    /// folder with that suffix is copied back first.
    [[nodiscard]] bool recoverOriginal(QStringView suffix);
    /// Tells that nothing lies at the path any more; then there is nothing left to repeat.
    void reportFileNotFound(const QString &path);

    /// Ends what is being typed and marks the document as submitting. False if the window refuses, and then
    /// nothing has changed.
    [[nodiscard]] bool beginSubmitting();
    /// Reports that the workflow does not start. Always false.
    bool refuse(const QString &title, const QString &text);
    /// Whether an identity can be chosen at all; if none can, that has been reported.
    [[nodiscard]] bool checkIdentity(const QString &identity);

    /// Shows the name in the window, starts the spinner and clears the log, unless it is to be kept.
    void showItem(const QString &name);
    /// What the settings say at this moment about the steps of a run.
    [[nodiscard]] StepOptions stepOptions() const;

    // Worker thread.

    /// Whether the chain goes on: the step has worked, and nobody has cancelled.
    [[nodiscard]] bool goesOn(bool stepWorked) const;
};
