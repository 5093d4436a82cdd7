#pragma once

#include "examine/choices.h"
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

/// What the program answered.
struct Look {
    QByteArray json; ///< empty after a failure
    QString error; ///< for a person
};

/// Runs the program with these arguments. Worker thread.
[[nodiscard]] Look run(const ApplicationInterface &application, const QStringList &arguments);
/// Has it examine an item. Worker thread.
[[nodiscard]] Look examineItem(const ApplicationInterface &application, const QString &item,
                               const examine::Choices &choices);

/// Answers the command with the result of an examination, or with an error. Suspends it meanwhile. Main
/// thread.
void answerExamination(const ScriptCommandPtr &command, const ApplicationInterface &application,
                       const examine::Choices &choices);
/// The same for the comparison of the items under "old" and "new".
void answerComparison(const ScriptCommandPtr &command, const ApplicationInterface &application);

} // namespace examining

} // namespace sealwright
