#pragma once

#include "document/documentextension.h"
#include "notarization/altoolarguments.h"
#include "tools/slwtaskresponse.h"

#include <functional>
#include <optional>

/// What the queries of the notary service share, which a person or a script makes beside a submission. They
/// change nothing on disk, and cannot be cancelled.
class ServiceQuery : protected DocumentExtension {
protected:
    explicit ServiceQuery(MainWinController &owner)
        : DocumentExtension(owner)
    {
    }
    ~ServiceQuery() = default;

    /// Makes the document busy and answers with whose account is asked; nothing if what was entered cannot be
    /// right, which has been reported then, or if an edit cannot be ended, of which a waiting script is told
    /// by the text. Main thread.
    [[nodiscard]] std::optional<Credentials> beginQuery(const QString &blockedText);

    /// Runs the notary tool. Worker thread; takes one network request.
    [[nodiscard]] SLWTaskResponsePtr ask(const QStringList &arguments);

    /// Reports that the history cannot be had. Worker thread.
    void reportHistoryFailure(const QString &message, const QString &errorString);

    /// Makes the document ready and idle, after the script has its answer, if there is one. Worker thread.
    void finishQuery(const std::function<void()> &answer = {});
    /// Makes the document idle, whatever its status. Main thread.
    void makeIdle();
};

/// What heads the log of a request for the history.
extern const QString fetchingHistory;

/// The log line of such a failure; a null error string shows as "(null)".
[[nodiscard]] QString historyFailureLine(const QString &message, const QString &errorString);
