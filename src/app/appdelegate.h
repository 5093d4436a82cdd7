#pragma once

#include "document/controls.h"
#include "document/mainwincontroller.h"
#include "platform/host.h"
#include "platform/notifications.h"
#include "platform/property.h"
#include "tools/slwtaskmaster.h"

#include <QList>
#include <QUrl>

#include <optional>

class NSApplicationScripting;
class WindowFactory;

/// Stands in the list of identities when there is none.
inline constexpr QStringView noIdentitiesPlaceholder = u"No Developer ID identities found";

/// The one application-wide object: what launch finds out, the two shared runners and the list of documents.
/// Main thread, unless a member says otherwise.
class AppDelegate : public QObject {
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
    };

    AppDelegate(const platform::Host &host, WindowFactory &windowFactory, Configuration configuration);
    ~AppDelegate() override;

    /// Registers the defaults; comes before everything else.
    static void initialize(platform::Preferences &preferences);

    // Launch, in this order. Both block: nothing may start before they are done.
    void applicationWillFinishLaunching();
    void applicationDidFinishLaunching();
    void applicationWillTerminate();
    /// Whether there is no notary tool: the application is about to quit, and nothing may open a document.
    bool hasLaunchFailed() const { return m_hasLaunchFailed; }
    bool applicationShouldTerminateAfterLastWindowClosed() const { return false; }

    /// Takes files that were opened with the application or dropped on it; paths. Those with other extensions
    /// than the five, compared exactly, are left out. Until launch has ended they wait.
    void applicationOpenFiles(const QStringList &paths);
    /// A new document for each item, in direct-submit mode.
    QList<DocumentPtr> loadDroppedURLs(const QList<QUrl> &urls);

    // Documents
    /// A new document with its window on screen, the application brought to the front.
    DocumentPtr addedDocument();
    /// The same without bringing the application to the front; tag 1 makes a separate window, 2 a tab.
    void newDocument(int tag);
    /// A title that no open document has; a null base is "Untitled".
    QString uniqueWindowNameFrom(const QString &base) const;
    void removeWindowController(MainWinController &document);
    void doCloseAll();
    /// Has the person confirm that new documents are to start in their factory state. Open ones keep theirs.
    void doResetDocumentDefaults();

    /// The item of the File menu that repeats the front document's last action; without an action it is
    /// disabled. The present one stays for an action that it does not know.
    struct AgainItem {
        QString title;
        Action action = Action::none;
    };
    void menuNeedsUpdate(AgainItem &doAgainMenuItem) const;
    bool validateMenuItem() const { return true; }

    void doShowAboutPanel();
    /// A short remark on how long this build stays usable.
    static QString daysToGo();

    // Support. Whether the page opened is not told.
    void doSendUsEmail();
    void doVisitOurWebsite();
    void doShowUsersForum();

    static bool shouldPresentNotification(const platform::UserNotification &notification);

    // Status; any thread may read.
    void changeStatus(QStringView newStatus);
    ObservableProperty<QString> statusString;

    // What launch finds out; any thread may read.
    Property<QStringList> identities;
    Property<QStringList> installerIdentities;
    Property<quint64> altoolVersionNumber;
    Property<QString> altoolPath;
    Property<bool> hasDropDMG;
    ObservableProperty<QStringList> dropDMGConfigNames;

    /// The shared runners of a notary tool of major version 3 or less.
    Property<SLWTaskMasterPtr> taskMaster;
    Property<SLWTaskMasterPtr> uploadTaskMaster;
    /// A runner with the pauses that the user has set.
    SLWTaskMasterPtr newTaskMaster() const;

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
    const QList<DocumentPtr> &allControllers() const { return m_allControllers; }

    const platform::Host &host() const { return m_host; }
    const Configuration &configuration() const { return m_configuration; }
    WindowFactory &windowFactory() const { return m_windowFactory; }
    NSApplicationScripting &scripting() const { return *m_scripting; }

Q_SIGNALS:
    void documentAdded(MainWinController *document);
    void documentRemoved(MainWinController *document);

private:
    DocumentPtr makeTitledDocument();
    void append(const DocumentPtr &document);
    bool findAltool();
    void quitWithoutAltool();
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
