#pragma once

#include "document/itemcommands.h"

#include <memory>

namespace sealwright {

/// Submits an item, from its choice to the run. Main thread.
class SubmitCommands : private ItemCommands {
public:
    explicit SubmitCommands(MainWinController &owner)
        : ItemCommands(owner)
    {
    }

    void doSubmit();
    void doDirectSubmit();
    void doSubmitAgain();
    void doCancelDirectSubmit();
    void scriptedSubmit(const QUrl &url);

    /// Checks what was entered and starts the submission of the item, or asks for one if the URL is empty.
    void submitURL(const QUrl &url);

    /// Loads the document with an item, plans its steps and waits for a person; starts nothing. A null
    /// identity keeps the selection.
    void prepareForDirectSubmit(const QUrl &url, const QString &identity);

    /// The titles and actions of the buttons outside of direct-submit mode.
    void setOrdinaryButtons();

private:
    bool checkFields(const Item &item);
    bool checkKind();
    void chooseItem();
    void startWithOriginal();
    Workflow workflow() const;
    void planSteps();
    void keepStepsPlanned();
    void submitAsync();
    void submitByPerson(const QUrl &url);
    void _prepareDirectSubmitUI();
    void _cancelDirectSubmitUI();
    void setOrdinaryControlsHidden(bool isHidden);

    std::unique_ptr<QObject> m_waiting; ///< there while an item waits for a person
};

} // namespace sealwright
