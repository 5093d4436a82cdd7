#pragma once

#include "document/documentextension.h"
#include "document/documentfields.h"
#include "platform/window.h"
#include "run/item.h"
#include "signing/signonlyworkflow.h"

namespace sealwright {

/// What the commands have in common that begin a run on an item of the user's. Main thread.
class ItemCommands : protected DocumentExtension {
protected:
    explicit ItemCommands(MainWinController &owner)
        : DocumentExtension(owner)
    {
    }
    ~ItemCommands() = default;

    /// A person is there to see dialogs, and no script waits.
    void setStartedByPerson();
    /// Makes the item the one that the user chose, and the action the one to offer again.
    void setOriginal(const Item &item, LastAction action);
    /// The item that the user chose last.
    [[nodiscard]] Item original() const;
    /// Whether an item lies at the original's place. If there is none, the copy in the result folder with
    /// that suffix, which a finished run has left, is copied back first.
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
    /// What a run that signs takes along; nothing, which has been reported, if its entitlements cannot be
    /// had.
    [[nodiscard]] std::optional<RunInputs> signingInputs(const QString &identity) const;
};

} // namespace sealwright
