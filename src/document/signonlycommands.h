#pragma once

#include "document/itemcommands.h"

namespace sealwright {

/// Signs a copy of an app, or of what is in a folder, and leaves it in a folder named for that. Nothing is
/// uploaded. Main thread.
class SignOnlyCommands : private ItemCommands {
public:
    explicit SignOnlyCommands(MainWinController &owner)
        : ItemCommands(owner)
    {
    }

    void doSignOnly();
    /// Signs the item of the last run again, which may since lie in the folder of that run.
    void doSignAgain();
    /// For a script, which has said by `suppressDialogs` whether it wants dialogs.
    void scriptedSignOnly(const QUrl &url);

    /// Starts the signing of the item at the file URL, or asks for one if the URL is empty.
    void signOnlyURL(const QUrl &url);

private:
    void signByPerson(const QUrl &url);
    void chooseItem(const QString &identity);
    void startWithOriginal(const QString &identity);
};

} // namespace sealwright
