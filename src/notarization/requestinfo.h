#pragma once

#include "run/workflow.h"

#include <optional>

namespace sealwright {

/// Shows what the service has on record about a submission that has been lost track of: the request that the
/// run names, or the newest entry in the account's history.
[[nodiscard]] Workflow requestInfoWorkflow();

/// Whether a text has the form that the clipboard must have: groups of 8, 4, 4, 4 and 12 of the characters 0
/// to 9 and a to h, with hyphens between them and nothing around.
[[nodiscard]] bool isRequestUUID(const QString &text);

/// The identifier of the first entry in the notary tool's reply, an XML property list; nothing if there is
/// none.
[[nodiscard]] std::optional<QString> newestRequestUUID(const QString &history);

/// What the user is told when the history cannot be had for a lookup. Of a tool that said nothing the
/// keychain is to blame.
[[nodiscard]] QString lookupFailureMessage(const QString &errorString);

/// The log line of a failed lookup; it shows the reference to the response, and not the status that a failed
/// poll shows.
[[nodiscard]] QString lookupFailureLine(const SLWTaskResponse &response);

} // namespace sealwright
