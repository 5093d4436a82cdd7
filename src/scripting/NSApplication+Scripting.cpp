#include "scripting/NSApplication+Scripting.h"

#include "document/applicationinterface.h"
#include "document/mainwincontroller.h"
#include "platform/applicationhost.h"
#include "run/waits.h"
#include "scripting/MainWinController+Scripting.h"
#include "scripting/commandchecks.h"
#include "scripting/examining.h"

#include <QHash>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

using DocumentsByWindow = QHash<const platform::Window *, MainWinController *>;

/// Of every open document. To look for each window's document in the list took a second with thousands.
DocumentsByWindow documentsByWindow(const ApplicationInterface &application)
{
    DocumentsByWindow documents;
    documents.reserve(application.allControllers().size());
    for (const DocumentPtr &document : application.allControllers())
        documents.insert(&document->window(), document.get());
    return documents;
}

} // namespace

void NSApplicationScripting::AESubmitForNotarizing(const ScriptCommandPtr &command)
{
    if (commandchecks::submittableItem(m_appDelegate.host().files, command) && checkStatusIsReady())
        addedDocument().startSubmission(command);
}

void NSApplicationScripting::AEStapleOnly(const ScriptCommandPtr &command)
{
    if (commandchecks::submittableItem(m_appDelegate.host().files, command) && checkStatusIsReady())
        addedDocument().startStapling(command);
}

void NSApplicationScripting::AESignOnly(const ScriptCommandPtr &command)
{
    if (commandchecks::signableItem(m_appDelegate.host().files, command) && checkStatusIsReady())
        addedDocument().startSigning(command);
}

void NSApplicationScripting::AEResume(const ScriptCommandPtr &command)
{
    const auto wait = commandchecks::openWait(m_appDelegate.host(), command);
    if (wait && checkStatusIsReady())
        addedDocument().startResuming(command, *wait);
}

void NSApplicationScripting::AEFetchHistory(const ScriptCommandPtr &command)
{
    if (checkStatusIsReady())
        addedDocument().startHistory(command);
}

void NSApplicationScripting::AEPrepareForNotarizing(const ScriptCommandPtr &command)
{
    if (commandchecks::submittableItem(m_appDelegate.host().files, command) && checkStatusIsReady())
        addedDocument().prepare(command, commandchecks::knownIdentity(command, m_appDelegate.identities()));
}

void NSApplicationScripting::AEExamine(const ScriptCommandPtr &command)
{
    const auto *document =
        command->evaluatedArguments().value(argument::document).value<MainWinController *>();
    examining::answerExamination(command, m_appDelegate,
                                 document ? examining::choicesOf(*document)
                                          : examining::choicesOfNewDocument(m_appDelegate));
}

void NSApplicationScripting::AECompare(const ScriptCommandPtr &command)
{
    examining::answerComparison(command, m_appDelegate);
}

MainWinControllerScripting NSApplicationScripting::addedDocument() const
{
    return MainWinControllerScripting(*m_appDelegate.addedDocument());
}

DocumentPtr NSApplicationScripting::newScriptingDocument(const QVariantMap &properties) const
{
    const DocumentPtr document = m_appDelegate.addedDocument();
    MainWinControllerScripting(*document).setScriptingProperties(properties);
    return document;
}

bool NSApplicationScripting::checkStatusIsReady() const
{
    return commandchecks::isReady(m_appDelegate.statusString(), u"Application"_s);
}

QStringList NSApplicationScripting::waiting() const
{
    QStringList folders;
    for (const WaitRecord &wait : waits::all(m_appDelegate.host()))
        folders.append(wait.folder);
    return folders;
}

QList<platform::Window *> NSApplicationScripting::orderedWindows() const
{
    const DocumentsByWindow documents = documentsByWindow(m_appDelegate);
    QList<platform::Window *> windows = m_appDelegate.host().application.windowsFrontToBack();
    windows.removeIf([&documents](const platform::Window *window) { return !documents.contains(window); });
    return windows;
}

platform::Window *NSApplicationScripting::frontmostWindow() const
{
    const auto windows = orderedWindows();
    return windows.isEmpty() ? nullptr : windows.first();
}

MainWinController *NSApplicationScripting::frontmostPseudoDocument() const
{
    return windowController(frontmostWindow());
}

QList<platform::Window *> NSApplicationScripting::allOrderedWindows() const
{
    QList<platform::Window *> all;
    for (platform::Window *window : orderedWindows()) {
        const auto tabs = window->tabbedWindows();
        if (tabs.isEmpty())
            all.append(window);
        else
            all.append(tabsByNearness(tabs, tabs.indexOf(window)));
    }
    return all;
}

QList<platform::Window *> tabsByNearness(const QList<platform::Window *> &tabs, qsizetype index)
{
    QList<platform::Window *> left = tabs.first(index);
    QList<platform::Window *> ordered = tabs.sliced(index);
    std::reverse(left.begin(), left.end());
    return ordered + left;
}

QList<MainWinController *> NSApplicationScripting::orderedPseudoDocuments() const
{
    const DocumentsByWindow known = documentsByWindow(m_appDelegate);
    QList<MainWinController *> documents;
    for (const platform::Window *window : allOrderedWindows())
        documents.append(known.value(window));
    return documents;
}

MainWinController *NSApplicationScripting::windowController(const platform::Window *window) const
{
    return sealwright::windowController(m_appDelegate, window);
}

} // namespace sealwright
