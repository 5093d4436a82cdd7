#pragma once

#include "platform/scriptcommand.h"
#include "platform/window.h"
#include "scripting/scriptproperty.h"

#include <QList>

#include <memory>

namespace sealwright {

class ApplicationInterface;
class MainWinController;
class MainWinControllerScripting;

/// What scripts reach on the application, and its lists of windows and documents. The lists are made afresh
/// on each call, on the main thread.
class NSApplicationScripting {
public:
    explicit NSApplicationScripting(ApplicationInterface &appDelegate)
        : m_appDelegate(appDelegate)
    {
    }

    // Commands, each on a new document of its own. On the thread of script delivery; the work is queued to
    // the main thread.
    void AESubmitForNotarizing(const ScriptCommandPtr &command);
    void AEStapleOnly(const ScriptCommandPtr &command);
    void AESignOnly(const ScriptCommandPtr &command);
    /// Goes on with the wait for the verdict on a submission. Answers as stapling does.
    void AEResume(const ScriptCommandPtr &command);
    void AEFetchHistory(const ScriptCommandPtr &command);
    /// Leaves the document to a person, who then decides. Ends at once.
    void AEPrepareForNotarizing(const ScriptCommandPtr &command);

    // What tells and changes nothing. At any time, and without a document of its own.
    /// Tells what a run would do with an item, with the choices of the document that is named or of a new
    /// one.
    void AEExamine(const ScriptCommandPtr &command);
    void AECompare(const ScriptCommandPtr &command);

    /// Makes a document, and sets these of its properties by their keys.
    std::shared_ptr<MainWinController> newScriptingDocument(const QVariantMap &properties) const;

    /// True when the application is ready; otherwise the executing command has its error.
    [[nodiscard]] bool checkStatusIsReady() const;

    /// Nearly all of these are preferences, and what is written to them reaches documents that are made
    /// later.
    static const QList<ScriptProperty<NSApplicationScripting>> &properties();
    /// Moved to the nearer limit without a word; seconds.
    void setAEPollingDelay(float delay);
    void setAEErrorRetryLimit(qint64 limit);
    /// A null identity, as none, is removed and reported as wrong as well.
    void setActiveIdentity(const QString &identity);

    /// The folders of the submissions whose verdict is awaited, be it by a run or by nobody for now; paths,
    /// the oldest first.
    QStringList waiting() const;

    // Lists, front to back
    /// The document windows on screen; of a tab group the one that shows.
    QList<platform::Window *> orderedWindows() const;
    /// All document windows: of a tab group the one that shows, then the others by nearness to it.
    QList<platform::Window *> allOrderedWindows() const;
    QList<MainWinController *> orderedPseudoDocuments() const;
    QList<MainWinController *> orderedDocuments() const { return orderedPseudoDocuments(); }
    /// Null when no document window is open.
    platform::Window *frontmostWindow() const;
    MainWinController *frontmostPseudoDocument() const;

    ApplicationInterface &appDelegate() const { return m_appDelegate; }

    /// The document of a window; null if the window is no document's.
    MainWinController *windowController(const platform::Window *window) const;

private:
    MainWinControllerScripting addedDocument() const;

    ApplicationInterface &m_appDelegate;
};

/// The order in which the windows of one tab group are listed: the one at `index` first.
[[nodiscard]] QList<platform::Window *> tabsByNearness(const QList<platform::Window *> &tabs,
                                                       qsizetype index);

} // namespace sealwright
