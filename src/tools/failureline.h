#pragma once

#include "tools/slwtaskresponse.h"

namespace sealwright {

/// The log line of a failed tool: "Error 123 in ditto: its standard error" or, where it printed nothing,
/// "Error 123 in ditto.". `what` stands between the number and the colon. The number is the reference to the
/// response and not its status, which stands in the log file's report.
[[nodiscard]] inline QString toolFailureLine(const SLWTaskResponse &response, const QString &what)
{
    const QString head = QStringLiteral("Error ") + QString::number(response.reference()) + u' ' + what;
    const QString error = response.errorString();
    return error.isNull() ? head + u'.' : head + QStringLiteral(": ") + error;
}

} // namespace sealwright
