#pragma once

#include "notarization/servicequery.h"

/// Shows the account's past submissions, as the notary tool prints them.
class History : private ServiceQuery {
public:
    explicit History(MainWinController &owner)
        : ServiceQuery(owner)
    {
    }

    /// The command of a person: from page 0 on, as many pages as the document allows. Main thread.
    void doFetchHistory();

    /// The same without a page. With one, that page alone for the current script command, which also says
    /// whether it wants XML and gets the page as its result; of a page that names the one behind it as its
    /// next the command gets no answer. Main thread.
    void fetchHistory(const std::optional<quint64> &page);

private:
    /// Which pages are asked for.
    struct Pages {
        quint64 first;
        quint64 limit; ///< the first one that is not
        OutputFormat format;
    };

    [[nodiscard]] OutputFormat formatForScript() const;

    // The job. Worker thread; takes one network request a page.
    void fetchPages(const Pages &pages, const Credentials &credentials);
    void answerScript(const QString &output);
};

/// The page that a reply names as its next one; nothing if there is none, or if the reply cannot be read. A
/// reply in XML that is a property list without a next page names page 0. A plain one never names any.
[[nodiscard]] std::optional<quint64> nextPage(const QString &reply, OutputFormat format);
