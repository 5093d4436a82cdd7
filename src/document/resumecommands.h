#pragma once

#include "document/itemcommands.h"
#include "run/waitrecord.h"

namespace sealwright {

/// Goes on with the wait for a verdict that an earlier run has begun. Main thread.
class ResumeCommands : private ItemCommands {
public:
    explicit ResumeCommands(MainWinController &owner)
        : ItemCommands(owner)
    {
    }

    /// Asks for the folder that the upload has left.
    void doGoOnWaiting();
    /// With a folder that a person has chosen or dropped, or with something in it. Says why not, where it is
    /// none.
    void goOnInFolder(const QString &path);
    void goOnByPerson(const WaitRecord &wait);
    /// For a script, which has said by `suppressDialogs` whether it wants dialogs.
    void scriptedResume(const WaitRecord &wait);

private:
    void goOn(const WaitRecord &wait);
    bool begin(const WaitRecord &wait);
    void showWait(const WaitRecord &wait);
};

} // namespace sealwright
