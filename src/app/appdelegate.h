#pragma once

#include "document/applicationinterface.h"
#include "document/mainwincontroller.h"
#include "platform/notifications.h"
#include "run/waitrecord.h"

#include <QList>
#include <QUrl>

#include <optional>

namespace sealwright {

class NSApplicationScripting;

/// The one application-wide object: what launch finds out, the two shared runners and the list of documents.
/// Main thread, unless a member says otherwise.
class AppDelegate : public ApplicationInterface {
    Q_OBJECT

public:
    /// What the host and its makers fill in.
    struct Configuration {
        QString dropDMGFolder; ///< path of the folder that holds DropDMG's configurations
        QUrl supportAddress; ///< a mailto: URL
        QUrl website;
        QUrl usersForum;
        QVariantMap information; ///< the application's own information dictionary
        QString credits; ///< path of the credits, rich text
        QString buildDate; ///< as "MMM d yyyy", in English
        QString examineProgram = {}; ///< path of the program that looks at items
        QString fileTool = {}; ///< path of the tool root's own file tool; empty where there is none
        QString profilesFolder = {}; ///< path of the folder that keeps the profiles
        QString keychainProgram = {}; ///< path of what manages the tool root's keychain; empty: nothing does
    };

    AppDelegate(const platform::Host &host, WindowFactory &windowFactory, Configuration configuration);
    ~AppDelegate() override;

    /// Registers the defaults; comes before everything else.
    static void initialize(platform::Preferences &preferences);

    // Launch, in this order. Both block: nothing may start before they are done.
    void applicationWillFinishLaunching();
    void applicationDidFinishLaunching();
    void applicationWillTerminate();
    /// The host ends the application by the signal of that name: each log of a run says so as its last line,
    /// and the application quits. No tool is cancelled or waited for, as at any quitting.
    void endBySignal(const QString &signal);
    /// Whether there is no notary tool: the application is about to quit, and nothing may open a document.
    bool hasLaunchFailed() const { return m_hasLaunchFailed; }
    bool applicationShouldTerminateAfterLastWindowClosed() const { return false; }

    /// Takes files that were opened with the application or dropped on it; paths. Those with other extensions
    /// than the five, compared exactly, are left out, but for folders that an upload has left. Until launch
    /// has ended they wait.
    void applicationOpenFiles(const QStringList &paths) override;
    /// A new document for each item, in direct-submit mode. With a folder that an upload has left it goes on
    /// waiting.
    QList<DocumentPtr> loadDroppedURLs(const QList<QUrl> &urls);

    /// Goes on with every wait for a verdict that nobody attends to, each in a new document.
    void goOnWaiting() override;

    // Documents
    /// A new document with its window on screen, the application brought to the front.
    DocumentPtr addedDocument() override;
    /// The same without bringing the application to the front; tag 1 makes a separate window, 2 a tab.
    void newDocument(int tag) override;
    /// A title that no open document has; a null base is "Untitled".
    QString uniqueWindowNameFrom(const QString &base) const override;
    void removeWindowController(MainWinController &document) override;
    void doCloseAll() override;
    /// Has the person confirm that new documents are to start in their factory state. Open ones keep theirs.
    void doResetDocumentDefaults() override;

    void menuNeedsUpdate(AgainItem &doAgainMenuItem) const override;
    bool validateMenuItem() const { return true; }

    void doShowAboutPanel() override;
    /// A short remark on how long this build stays usable.
    static QString daysToGo();

    // Support
    void doSendUsEmail() override;
    void doVisitOurWebsite() override;
    void doShowUsersForum() override;

    static bool shouldPresentNotification(const platform::UserNotification &notification);

    /// Any thread.
    void changeStatus(QStringView newStatus);
    /// A runner with the pauses that the user has set.
    SLWTaskMasterPtr newTaskMaster() const override;

    // Discovery
    void sampleCodesignIdentities();
    bool checkForXcode();
    bool checkForTransporter();
    void findVersionNumberOfAltool();
    void checkForDropDMG();
    void loadDropDMGConfigNames();
    void loadDropDMGConfigNamesViaScript();
    void dropDMGConfigChange();
    QString runCommandSimple(const QString &commandLine) const;

    /// Every open document, in the order of adding; this list is what keeps them alive.
    const QList<DocumentPtr> &allControllers() const override { return m_allControllers; }

    const platform::Host &host() const override { return m_host; }
    const Configuration &configuration() const { return m_configuration; }
    WindowFactory &windowFactory() const override { return m_windowFactory; }
    QString examineProgram() const override { return m_configuration.examineProgram; }
    QString fileTool() const override { return m_configuration.fileTool; }
    QString keychainProgram() const override { return m_configuration.keychainProgram; }
    void lookAtKeychain() override;
    QString profilesFolder() const override { return m_configuration.profilesFolder; }
    NSApplicationScripting &scripting() const { return *m_scripting; }
    ScriptFailure scriptFailure(const QString &title, const QString &text,
                                const QString &logError) const override;

Q_SIGNALS:
    void documentAdded(MainWinController *document);
    void documentRemoved(MainWinController *document);

private:
    DocumentPtr makeTitledDocument();
    void append(const DocumentPtr &document);
    bool findAltool();
    void quitWithoutAltool();
    QList<WaitRecord> openWaits() const;
    void lookForWaits();
    bool hasMendedToolRoot();
    void setConfigNames(const QStringList &names);
    void setNoConfigNames(const QString &placeholder);

    const platform::Host m_host;
    WindowFactory &m_windowFactory;
    const Configuration m_configuration;
    std::unique_ptr<NSApplicationScripting> m_scripting;
    QList<DocumentPtr> m_allControllers;
    std::optional<QList<QUrl>> m_droppedURLs;
    bool m_hasLaunchFailed = false;
};

} // namespace sealwright
