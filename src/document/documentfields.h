#pragma once

#include "platform/fileservice.h"
#include "platform/property.h"
#include "platform/timer.h"
#include "tools/slwtaskmaster.h"

#include <QStringList>
#include <QUrl>

#include <memory>

class ScriptCommand;

namespace sealwright {

/// What the again item of the File menu repeats.
enum LastAction : quint64 { nothingToRepeat = 0, submitAction = 1, stapleAction = 2, signAction = 3 };

/// The state of a document besides its controls. Any thread may read and write each field as a whole.
struct DocumentFields {
    // Flags
    Property<bool> isBusy; ///< a workflow owns the document
    Property<bool> isSubmitting; ///< before the upload's end
    Property<bool> isPolling; ///< waiting for the verdict
    ObservableProperty<bool> canCancel; ///< cancelling is offered
    Property<bool> isScripted; ///< a script command waits for this workflow
    Property<bool> suppressDialogs; ///< no sheet at the end
    ObservableProperty<bool> useDiskImage; ///< upload a disk image, not a zip
    ObservableProperty<bool> useDropDMG; ///< make the disk image with DropDMG
    Property<bool> loggingToFile; ///< a log file is wanted for this run
    /// The user cancelled; the workflow stops at its next check. Cleared by the report that it swallows, by
    /// an accepted upload and by going on with a recorded wait, and by nothing else.
    Property<bool> cancelPressed;

    /// The item being worked on: the copy in the working folder.
    Property<QUrl> appletURL;
    /// The folder that really holds the item, if giving the folder its last name has failed; null otherwise.
    Property<QString> folderLeftIn;
    /// Tells others that this document's run works in its folder.
    Property<std::shared_ptr<platform::FolderClaim>> folderClaim;
    /// The item that the user chose, where it lies.
    Property<QUrl> originalAppletURL;
    /// The last path component of that item, extension included.
    Property<QString> originalFileName;
    /// The title that the popup of DropDMG's configurations shows, for those who may not ask the popup.
    Property<QString> dropDMGConfiguration;
    /// Path of the file that is uploaded; null until a workflow sets it.
    Property<QString> submitFilePath;
    /// What the service's log of the latest verdict tells, as JSON: a list of objects.
    ObservableProperty<QString> serviceIssues{QStringLiteral("[]")};
    /// The extra entitlements file; empty if there is none.
    ObservableProperty<QUrl> extraEntitlementsURL;
    /// Paths that the signer skips, relative to the item's own.
    Property<QStringList> skipPaths;

    /// The name of the profile that the document was last set to; empty if there is none.
    ObservableProperty<QString> profile;

    /// The script command that waits for this document's answer, or has got it. Never cleared.
    Property<std::shared_ptr<ScriptCommand>> currentCommand;
    ObservableProperty<QString> statusString;
    Property<quint64> lastAction{nothingToRepeat};
    ObservableProperty<quint64> maxPageCount{1};
    Property<std::shared_ptr<platform::Timer>> staplingTimer; ///< the pending poll, or null
    Property<QString> awaitedRequest; ///< the service's name for it; of the latest wait
    Property<quint64> infoFailureCount; ///< failures while polling
    Property<quint64> info239FailureCount; ///< failures with status 239 while polling
    Property<SLWTaskMasterPtr> ownTaskRunner; ///< null with a tool of major version 3 or less
    /// This document's copy of the notary tool's path.
    Property<QString> altoolPath;
};

} // namespace sealwright
