#pragma once

#include "document/documentextension.h"

#include <functional>

namespace platform {
struct Alert;
}

namespace sealwright {

class TextField;

/// The help on what a document's window asks for, as sheets. Main thread.
class HelpSheets : private DocumentExtension {
public:
    explicit HelpSheets(MainWinController &owner)
        : DocumentExtension(owner)
    {
    }

    void doAppPassHelp();
    void doTeamProviderHelp();
    void doExtraEntitlementsHelp();
    void doDropDMGHelp();

private:
    /// The field has the focus when the sheet has gone; then what is to come next gets the answer.
    void show(
        const platform::Alert &alert, TextField &fieldAfterwards, std::function<void(int)> next = [](int) {});
    void listProvidersIfChosen(int answer);
};

} // namespace sealwright
