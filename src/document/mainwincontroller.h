#pragma once

#include "document/documentcontrols.h"
#include "document/documentfields.h"
#include "document/steplist.h"
#include "platform/host.h"
#include "platform/window.h"
#include "run/runlog.h"
#include "run/status.h"

#include <functional>

namespace sealwright {

class ApplicationInterface;
class Run;
struct DocumentCommands;
struct RunInputs;

/// Who wants a document's window closed.
enum class CloseSender { person, script };

/// One document: one window, one set of credentials and signing settings, one workflow at a time. The list of
/// the application keeps it alive while its window is open, and a job that still runs for it keeps it a
/// little longer. It goes on the main thread, whoever lets go of it last.
class MainWinController : public QObject,
                          public std::enable_shared_from_this<MainWinController>,
                          public DocumentControls,
                          public DocumentFields {
    Q_OBJECT

public:
    /// Makes a document and loads its window. Main thread.
    static std::shared_ptr<MainWinController> withLoadedWindow(ApplicationInterface &appDelegate);
    ~MainWinController() override;

    /// The owner token for the runners, unique in the process.
    const QString uniqueID;

    /// The steps of the latest run, for those who show them. Main thread.
    StepList stepList;

    ApplicationInterface &appDelegate() const { return m_appDelegate; }
    const platform::Host &host() const;
    platform::Window &window() const { return *m_window; }
    /// What it can be told to do.
    DocumentCommands &commands() const { return *m_commands; }
    /// Does what a button or a menu item stands for. Main thread.
    void perform(Action action);

    /// The runner for all tools but the upload, and the runner for uploads. Any thread.
    SLWTaskMasterPtr taskRunner() const;
    SLWTaskMasterPtr uploadTaskRunner() const;

    /// Whether an open panel offers the item: of text files only a request's record.
    static bool shouldEnableURL(const QUrl &url);

    // Runs. Main thread.
    /// What a run takes along of this document as it is now.
    RunInputs runInputs() const;
    /// Makes a run, which is then the latest. Any thread.
    std::shared_ptr<Run> makeRun(const RunInputs &inputs, std::function<void(Run &)> atEnd);
    /// Makes one and has it go through the workflow; `atEnd` is called on the worker, after the last step.
    void startRun(const RunInputs &inputs, const Workflow &workflow, std::function<void(Run &)> atEnd);
    /// The number of the latest run. Any thread.
    quint64 runCount() const { return m_runCount(); }
    /// Which archive would be made now. Any thread.
    ArchiveKind archiveKind() const;

    // The three good ends of a run on an item. Worker thread.
    void endSigning();
    void endStapling();
    /// Of a script that wants no more than the upload.
    void endWithUpload();

    // The log. Any thread, unless it says otherwise. A line goes to the file at once and to the window a
    // moment later.
    RunLog log;
    Property<std::shared_ptr<platform::FileHandle>> &logHandle; ///< the open log file, or null
    void logString(const QString &message) { log.logString(message); }
    void logString(const QString &message, bool isError);
    void logError(const QString &message) { log.logError(message); }
    void logBoldString(const QString &message) { log.logBoldString(message); }
    void logToFile(const QString &message) { log.logToFile(message); }
    /// For the final report: in the window when the call returns. Main thread.
    void logErrorMain(const QString &message) { logStringMain(message, true); }
    void logStringMain(const QString &message, bool isError);
    void closeLog() { log.close(); }
    /// Empties the window log, unless the person wants it kept. Main thread.
    void clearLogUnlessKept();
    /// Answers the current script command with the text of the window log. Main thread.
    void contentsOfLog();
    TextAttributes logAttributes() const;
    TextAttributes errorAttributes() const;
    TextAttributes boldLogAttributes() const;
    TextAttributes italicLogAttributes() const;

    // Status and final report.
    /// Any thread.
    void changeStatus(QStringView newStatus);
    /// Main thread.
    void finalAlertOrMessage(const QString &title, const QString &text, const QString &logError);
    /// Any thread. The one report that follows a cancel is dropped.
    void dispatchFinalAlertOrMessage(const QString &title, const QString &text, const QString &logError);
    /// The usual report of a failure.
    void reportFailure(const QString &title, const QString &logError);
    /// The sheet at the end of a finished run; its second button shows the item in the file viewer. Main
    /// thread.
    void beginSuccessSheet(const platform::Alert &alert);
    /// Clears the six flags of a workflow and stops the spinner. Main thread.
    void endWorkflow();
    /// The result that a script gets for a finished submission or stapling: the item, or with disk images on
    /// the file that was last uploaded, if there has been one.
    QUrl scriptResult() const;
    /// The same file in the folder that really holds it, if giving the folder its last name has failed.
    QUrl whereItLies(const QUrl &url) const;
    /// Answers the script command that waits for this workflow, if one does. Any thread.
    void resumeScript(const QVariant &result);

    // Window commands. Main thread, but for a script's close.
    void doCancel();
    void doClearStatus();
    /// Has the person choose the extra entitlements file. Cancelling drops one that was chosen before.
    void doExtraEntitlements();
    /// Has the person confirm that new documents are to start with what this one shows.
    void doSetDocumentDefaults();
    void doPrint();
    void doRunPageLayout();
    /// Closes this window, as a person would. For a script, from any thread: once its command has ended.
    void doCloseDocument(CloseSender sender);
    /// Closes all tabs of this window's tab group. Of a window outside of one, none.
    void doCloseWindow();
    /// Whether a menu item with this action is enabled.
    bool validateMenuItem(Action action) const;
    bool windowShouldClose();
    void windowWillClose();
    /// Ends an edit in progress and gives up the keyboard focus. False when that is refused; the script that
    /// waits is then told so by the text, unless that is null.
    [[nodiscard]] bool finishEditing(const QString &blockedText);
    /// The same without telling anybody.
    bool giveUpFocus();
    void beginSheet(const platform::Alert &alert, std::function<void(int)> completion);
    /// Asks for an item. One of the two is called, unless the window closes before that.
    void askForItem(const platform::OpenPanel &panel, std::function<void(const QUrl &)> chosen,
                    std::function<void()> cancelled);
    /// Leaves a workflow whose panel was cancelled.
    void endBeforeStart();

    /// The standard output of a shell line, without any of the above. Null if it is no UTF-8 or nothing ran.
    QString runCommandSimple(const QString &commandLine) const;

    /// Queues the block with a hold on the document.
    void dispatchToMain(std::function<void()> block);

private:
    explicit MainWinController(ApplicationInterface &appDelegate);
    void windowDidLoad();
    void bindControls();
    void appendToWindowLog(const QString &line, LogStyle style);
    TextAttributes attributesFor(LogStyle style) const;
    QString itemName() const;
    void reportToScript(const QString &title, const QString &text, const QString &logError);

    ApplicationInterface &m_appDelegate;
    std::unique_ptr<platform::Window> m_window;
    std::unique_ptr<DocumentCommands> m_commands;
    Property<quint64> m_runCount; ///< the number of the latest run
};

using DocumentPtr = std::shared_ptr<MainWinController>;

} // namespace sealwright
