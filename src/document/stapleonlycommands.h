#pragma once

#include "document/itemcommands.h"

namespace sealwright {

/// Takes up an item that has been submitted before. Main thread.
class StapleOnlyCommands : private ItemCommands {
public:
    explicit StapleOnlyCommands(MainWinController &owner)
        : ItemCommands(owner)
    {
    }

    void doStapleOnly();
    void doStapleAgain();
    /// For a script, which has said by `suppressDialogs` whether it wants dialogs.
    void scriptedStapleOnly(const QUrl &url);

    /// Starts with the item at the file URL, or asks for one if the URL is empty.
    void stapleOnly(const QUrl &url);

private:
    /// The item that is stapled, and the name that the folder of a submitted one has.
    Item item() const;
    QString submittedFolder() const;
    void stapleByPerson(const QUrl &url);
    void setItem(const Item &item);
    void chooseItem();
    void checkFolder();
    void askWhetherToContinue();
    void startStapling();
    void continueStapleOnly();
    void showAppletURL();
};

} // namespace sealwright
