#pragma once

#include "document/documentcontrols.h"
#include "document/documentfields.h"
#include "document/steplist.h"
#include "platform/host.h"
#include "platform/window.h"

class AppDelegate;
struct DocumentExtensions;

/// The status words of a document and of the application.
namespace status {
inline constexpr QStringView loading = u"loading";
inline constexpr QStringView ready = u"ready";
inline constexpr QStringView interacting = u"interacting";
inline constexpr QStringView submitting = u"submitting";
inline constexpr QStringView waiting = u"waiting";
inline constexpr QStringView stapling = u"stapling";
inline constexpr QStringView fetching = u"fetching";
} // namespace status

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
    static std::shared_ptr<MainWinController> withLoadedWindow(AppDelegate &appDelegate);
    ~MainWinController() override;

    /// The owner token for the runners, unique in the process.
    const QString uniqueID;

    /// The steps of the latest run, for those who show them. Main thread.
    StepList stepList;

    AppDelegate &appDelegate() const { return m_appDelegate; }
    const platform::Host &host() const;
    platform::Window &window() const { return *m_window; }
    /// The workflows of this document.
    DocumentExtensions &steps() const { return *m_steps; }
    /// Does what a button or a menu item stands for. Main thread.
    void perform(Action action);

    /// The runner for all tools but the upload, and the runner for uploads. Any thread.
    SLWTaskMasterPtr taskRunner() const;
    SLWTaskMasterPtr uploadTaskRunner() const;

    /// Whether an open panel offers the item: of text files only a request's record.
    static bool shouldEnableURL(const QUrl &url);

    // The log. Any thread, unless it says otherwise. A line goes to the file at once and to the window a
    // moment later.
    void logString(const QString &message) { logString(message, false); }
    void logError(const QString &message) { logString(message, true); }
    void logString(const QString &message, bool isError);
    void logBoldString(const QString &message);
    void logToFile(const QString &message);
    /// For the final report: in the window when the call returns. Main thread.
    void logErrorMain(const QString &message) { logStringMain(message, true); }
    void logStringMain(const QString &message, bool isError);
    void closeLog();
    /// Empties the window log, unless the person wants it kept. Main thread.
    void clearLogUnlessKept();
    /// Answers the current script command with the text of the window log. Main thread.
    void contentsOfLog();
    TextAttributes logAttributes() const;
    TextAttributes errorAttributes() const;
    TextAttributes boldLogAttributes() const;
    TextAttributes italicLogAttributes() const;

    // The working folder. Worker thread.
    [[nodiscard]] bool createWorkingFolderAndLog();
    void renameWorkingFolderWith(const QString &suffix);
    /// Closes the log file that is open. If logging to a file is on, opens the one at the path, which is made
    /// if there is none and else is added to, and heads what follows with the banner.
    void openLog(const QString &path, const QString &banner);
    /// Puts the user's untouched item into the working folder, after a success. Nothing is reported.
    void moveOriginalIntoWorkingFolder();

    /// Marks the step as the one that runs from now on. Any thread.
    void beginStep(Step step);

    // Status and final report.
    /// Any thread.
    void changeStatus(QStringView newStatus);
    /// Main thread.
    void finalAlertOrMessage(const QString &title, const QString &text, const QString &logError);
    /// Any thread. The one report that follows a cancel is dropped.
    void dispatchFinalAlertOrMessage(const QString &title, const QString &text, const QString &logError);
    /// The usual report of a failed step, and the folder's new name.
    void reportFailure(const QString &title, const QString &logError);
    void reportFailureAndRename(const QString &title, const QString &logError);
    /// The sheet at the end of a finished run; its second button shows the item in the file viewer. Main
    /// thread.
    void beginSuccessSheet(const platform::Alert &alert);
    /// Clears the six flags of a workflow and stops the spinner. Main thread.
    void endWorkflow();
    /// The result that a script gets for a finished submission or stapling: the item, or with disk images on
    /// the file that was last uploaded, if there has been one.
    QUrl scriptResult() const;
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

    // Tool runs. Worker thread.
    SLWTaskResponsePtr runTool(const QString &path, const QStringList &args);
    SLWTaskResponsePtr runAltool(const SLWTaskMasterPtr &runner, const QStringList &args);
    /// Writes the tool's report to the log file, if one is wanted.
    SLWTaskResponsePtr logged(const SLWTaskResponsePtr &response);
    SLWTaskResponsePtr runAndLog(const QString &path, const QStringList &args)
    {
        return logged(runTool(path, args));
    }
    /// The standard output of a shell line, without any of the above. Null if it is no UTF-8 or nothing ran.
    QString runCommandSimple(const QString &commandLine) const;

    /// Runs the job with a hold on the document.
    void dispatchToWorker(std::function<void()> job);
    void dispatchToMain(std::function<void()> block);

private:
    explicit MainWinController(AppDelegate &appDelegate);
    void windowDidLoad();
    void bindControls();
    QString logLine(const QString &message) const;
    void writeToLogFile(const QString &line);
    void appendToWindowLog(const QString &line, LogStyle style);
    TextAttributes attributesFor(LogStyle style) const;
    void reportToScript(const QString &title, const QString &text, const QString &logError);
    bool emptyWorkingFolder(const QString &folder);

    AppDelegate &m_appDelegate;
    std::unique_ptr<platform::Window> m_window;
    std::unique_ptr<DocumentExtensions> m_steps;
};

using DocumentPtr = std::shared_ptr<MainWinController>;
