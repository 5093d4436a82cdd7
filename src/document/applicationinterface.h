#pragma once

#include "document/controls.h"
#include "platform/host.h"
#include "platform/property.h"
#include "tools/slwtaskmaster.h"

#include <QList>

namespace platform {
class Window;
}

namespace sealwright {

class MainWinController;
class WindowFactory;

/// Stands in the list of identities when there is none.
inline constexpr QStringView noIdentitiesPlaceholder = u"No Developer ID identities found";

/// What a script is told about a failure.
struct ScriptFailure {
    qint64 number = 0;
    QString text;
    QString offendingText; ///< the log's full text, where it is too long for the error's; null otherwise
};

/// The application as its documents, their windows and scripts know it. Main thread, unless a member says
/// otherwise.
class ApplicationInterface : public QObject {
    Q_OBJECT

public:
    /// The item of the File menu that repeats the front document's last action; without an action it is
    /// disabled.
    struct AgainItem {
        QString title;
        Action action = Action::none;
    };

    /// Any thread may read.
    ObservableProperty<QString> statusString;

    // What launch finds out; any thread may read.
    Property<QStringList> identities;
    Property<QStringList> installerIdentities;
    Property<quint64> altoolVersionNumber;
    Property<QString> altoolPath;
    Property<bool> hasDropDMG;
    ObservableProperty<QStringList> dropDMGConfigNames;

    /// The folders of the waits for a verdict that no run attended to when they were last looked for; paths.
    /// Empty once a person has said what is to become of them.
    ObservableProperty<QStringList> unattendedWaits;

    /// Whether the keychain was locked when it was last looked at.
    ObservableProperty<bool> isKeychainLocked;

    /// The shared runners of a notary tool of major version 3 or less. Any thread may read.
    Property<SLWTaskMasterPtr> taskMaster;
    Property<SLWTaskMasterPtr> uploadTaskMaster;
    /// A runner with the pauses that the user has set.
    virtual SLWTaskMasterPtr newTaskMaster() const = 0;

    virtual const platform::Host &host() const = 0;
    virtual WindowFactory &windowFactory() const = 0;
    /// Path of the program that looks at items, and of the tool root's file tool; empty for the host's own.
    virtual QString examineProgram() const = 0;
    virtual QString fileTool() const = 0;
    /// Path of the program that manages the keychain; empty where the host has a keychain of its own.
    virtual QString keychainProgram() const = 0;
    /// Asks that program whether the keychain is locked, and returns at once. Does nothing without one, nor
    /// where there is nothing to sign with.
    virtual void lookAtKeychain() = 0;
    /// Path of the folder that keeps the profiles.
    virtual QString profilesFolder() const = 0;

    // Documents
    /// Every open document, in the order of adding; this list is what keeps them alive.
    virtual const QList<std::shared_ptr<MainWinController>> &allControllers() const = 0;
    /// A new document with its window on screen, the application brought to the front.
    virtual std::shared_ptr<MainWinController> addedDocument() = 0;
    /// The same without bringing the application to the front; tag 1 makes a separate window, 2 a tab.
    virtual void newDocument(int tag) = 0;
    /// A title that no open document has; a null base is "Untitled".
    virtual QString uniqueWindowNameFrom(const QString &base) const = 0;
    virtual void removeWindowController(MainWinController &document) = 0;
    /// Takes files that were opened with the application or dropped on it; paths.
    virtual void applicationOpenFiles(const QStringList &paths) = 0;

    /// Goes on with every wait for a verdict that no run attends to, each in a new document.
    virtual void goOnWaiting() = 0;

    /// The error that a script gets for a report with these three texts. Any thread.
    virtual ScriptFailure scriptFailure(const QString &title, const QString &text,
                                        const QString &logError) const = 0;

    // What menus do
    /// The present item stays for an action that it does not know.
    virtual void menuNeedsUpdate(AgainItem &doAgainMenuItem) const = 0;
    virtual void doCloseAll() = 0;
    /// Has the person confirm that new documents are to start in their factory state. Open ones keep theirs.
    virtual void doResetDocumentDefaults() = 0;
    virtual void doShowAboutPanel() = 0;
    // Whether the page opened is not told.
    virtual void doSendUsEmail() = 0;
    virtual void doVisitOurWebsite() = 0;
    virtual void doShowUsersForum() = 0;
};

/// The document of a window; null if the window is no open document's.
[[nodiscard]] MainWinController *windowController(const ApplicationInterface &application,
                                                  const platform::Window *window);

} // namespace sealwright
