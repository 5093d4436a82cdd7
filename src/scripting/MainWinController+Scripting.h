#pragma once

#include "platform/scriptcommand.h"
#include "scripting/scriptproperty.h"

#include <QUrl>

#include <functional>

namespace sealwright {

class MainWinController;
struct WaitRecord;

/// What scripts reach on a document. On the thread of script delivery; the work is queued to the main thread.
/// As short-lived as one wants: it refers to the document and holds nothing else.
class MainWinControllerScripting {
public:
    explicit MainWinControllerScripting(MainWinController &owner)
        : document(owner)
    {
    }

    void AESubmitForNotarizing(const ScriptCommandPtr &command);
    void AEStapleOnly(const ScriptCommandPtr &command);
    void AESignOnly(const ScriptCommandPtr &command);
    void AEFetchHistory(const ScriptCommandPtr &command);
    /// Leaves the document to a person, who then decides. Ends at once.
    void AEPrepareForNotarizing(const ScriptCommandPtr &command);

    /// Tells what a run of this document would do with an item. At any time; changes nothing.
    void AEExamine(const ScriptCommandPtr &command);

    /// Both go ahead while a workflow runs. The command of that workflow is then lost: the document knows one
    /// command at a time.
    void AEFetchLog(const ScriptCommandPtr &command);
    void AEClearLog(const ScriptCommandPtr &command);

    /// True when the document is ready; otherwise the executing command has its error.
    [[nodiscard]] bool checkStatusIsReady() const;

    /// Each is the live value of a control or a field. No read looks at the preferences.
    static const QList<ScriptProperty<MainWinControllerScripting>> &properties();
    /// Makes the writes one after the other, also when one of them is an error. Main thread.
    void setScriptingProperties(const QVariantMap &valuesByKey);
    void setAEActiveIdentity(const QString &identity);
    /// Of the document's own runner, in seconds.
    void setToolPause(double seconds);
    /// Takes the URL of a property list, and has an error for that, too.
    void setAEExtraEntitlements(const QVariant &url);
    /// With DropDMG missing, turning it on turns it off for documents that are made later.
    void setAEUseDropDMG(bool usesDropDMG);
    void setAEDropDMGConfig(const QVariant &name);

    QString displayName() const;
    /// For messages to those who write scripts.
    QString description() const;
    MainWinController &controller() const { return document; }

    // What a command asks for, after its checks. Each suspends the command until the work has ended.
    void startSubmission(const ScriptCommandPtr &command);
    void startStapling(const ScriptCommandPtr &command);
    void startResuming(const ScriptCommandPtr &command, const WaitRecord &wait);
    void startSigning(const ScriptCommandPtr &command);
    void startHistory(const ScriptCommandPtr &command);
    /// The same for a person's submission to come, with an identity or, for a null one, the present one.
    void prepare(const ScriptCommandPtr &command, const QString &identity);

private:
    /// Makes the command the one that the document works for, and queues the work.
    void suspend(const ScriptCommandPtr &command, std::function<void()> work);
    /// The same for work that begins only if the document is still ready when its turn comes.
    void suspendWorkflow(const ScriptCommandPtr &command, std::function<void()> work);
    void suspendWithItem(const ScriptCommandPtr &command, std::function<void(const QUrl &)> work);

    MainWinController &document;
};

} // namespace sealwright
