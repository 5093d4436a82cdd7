#pragma once

#include "examine/choices.h"
#include "platform/result.h"
#include "platform/scriptcommand.h"

namespace platform {
class Preferences;
}

namespace sealwright {

class ApplicationInterface;
class MainWinController;

/// Looks at items by the program that reads files nobody vouches for. Nothing of a document changes, and no
/// line goes to its log.
namespace examining {

/// What a run of the document would be made with now. Main thread.
[[nodiscard]] examine::Choices choicesOf(const MainWinController &document);
/// What the first run of a new document would be made with.
[[nodiscard]] examine::Choices choicesOfNewDocument(const ApplicationInterface &application);

/// Runs the program with these arguments, and answers what it says, as JSON. Worker thread.
[[nodiscard]] platform::Result<QByteArray> run(const ApplicationInterface &application,
                                               const QStringList &arguments);
/// Has it examine an item. Worker thread.
[[nodiscard]] platform::Result<QByteArray> examineItem(const ApplicationInterface &application,
                                                       const QString &item, const examine::Choices &choices);

/// Answers the command with the result of an examination, or with an error. Suspends it meanwhile. Main
/// thread.
void answerExamination(const ScriptCommandPtr &command, const ApplicationInterface &application,
                       const examine::Choices &choices);
/// The same for the comparison of the items under "old" and "new".
void answerComparison(const ScriptCommandPtr &command, const ApplicationInterface &application);

} // namespace examining

} // namespace sealwright
