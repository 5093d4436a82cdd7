#pragma once

#include "run/credentials.h"
#include "run/workflow.h"

#include <optional>

namespace sealwright {

/// Shows the account's past submissions, page by page, as the notary tool prints them. The answer is the page
/// behind which no other follows.
[[nodiscard]] Workflow historyWorkflow();

/// What heads the log of a request for the history.
extern const QString fetchingHistory;

/// The page that a reply names as its next one; nothing if there is none, or if the reply cannot be read. A
/// reply in XML that is a property list without a next page names page 0. A plain one never names any.
[[nodiscard]] std::optional<quint64> nextPage(const QString &reply, OutputFormat format);

/// The report of a history that cannot be had; a null error string shows as "(null)".
[[nodiscard]] Failure historyFailure(const QString &message, const QString &errorString);
[[nodiscard]] QString historyFailureLine(const QString &message, const QString &errorString);

} // namespace sealwright
