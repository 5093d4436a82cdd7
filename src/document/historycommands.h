#pragma once

#include "document/servicecommands.h"

namespace sealwright {

/// Shows the account's past submissions, as the notary tool prints them. Main thread.
class HistoryCommands : private ServiceCommands {
public:
    explicit HistoryCommands(MainWinController &owner)
        : ServiceCommands(owner)
    {
    }

    /// The command of a person: from page 0 on, as many pages as the document allows.
    void doFetchHistory();

    /// Without a page: the same. With one: only that page, in the form (text or XML) that the current script
    /// command asks for, as that command's result. If the reply says that the next page is page + 1, the
    /// command gets no answer.
    void fetchHistory(const std::optional<quint64> &page);

private:
    [[nodiscard]] OutputFormat formatForScript() const;
};

} // namespace sealwright
