#pragma once

#include "document/servicecommands.h"

/// Shows the account's past submissions, as the notary tool prints them. Main thread.
class HistoryCommands : private ServiceCommands {
public:
    explicit HistoryCommands(MainWinController &owner)
        : ServiceCommands(owner)
    {
    }

    /// The command of a person: from page 0 on, as many pages as the document allows.
    void doFetchHistory();

    /// The same without a page. With one, that page alone for the current script command, which also says
    /// whether it wants XML and gets the page as its result; of a page that names the one behind it as its
    /// next the command gets no answer.
    void fetchHistory(const std::optional<quint64> &page);

private:
    [[nodiscard]] OutputFormat formatForScript() const;
};
