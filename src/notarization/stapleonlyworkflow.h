#pragma once

#include "document/itemworkflow.h"
#include "tools/slwtaskresponse.h"

#include <QUrl>

/// Takes up an item that has been submitted before: has the system confirm that it is acceptable, and staples
/// it where it lies. Needs no credentials.
class StapleOnlyWorkflow : private ItemWorkflow {
public:
    explicit StapleOnlyWorkflow(MainWinController &owner)
        : ItemWorkflow(owner)
    {
    }

    // Commands and entries. Main thread.
    void doStapleOnly();
    void doStapleAgain();
    /// For a script, which has said by `suppressDialogs` whether it wants dialogs.
    void scriptedStapleOnly(const QUrl &url);

    /// Starts with the item at the file URL, or asks for one if the URL is empty.
    void stapleOnly(const QUrl &url);

private:
    void stapleByPerson(const QUrl &url);
    void setItem(const QUrl &url);
    void chooseItem();
    void checkFolder();
    void askWhetherToContinue();
    void startStapling();
    void continueStapleOnly();
    void showAppletURL();

    // Worker thread.
    void runJob();
    [[nodiscard]] bool isAcceptable(const QString &item);
};

/// The kind of use, as the assessing tool names it, by the item's extension in any letter case.
[[nodiscard]] QString assessmentType(const QString &item);
/// Whether a line of the tool's text ends in the word for it.
[[nodiscard]] bool isAccepted(const QString &assessment);
/// The log line of an assessment that ended with a failure.
[[nodiscard]] QString assessmentFailureLine(const SLWTaskResponse &response);
