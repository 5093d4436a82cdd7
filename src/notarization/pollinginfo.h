#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace sealwright {

/// The preference, held to the range that the service is asked at; seconds.
[[nodiscard]] double limitedPollingDelay(float preference);

/// The service's receipt for an upload, an XML property list.
struct UploadReceipt {
    QString requestUUID; ///< as the service gave it; its form is not checked
    QString successMessage; ///< null if there is none
};

/// Reads what the upload printed; nothing without a request identifier.
[[nodiscard]] std::optional<UploadReceipt> uploadReceipt(const QByteArray &output);

/// The verdict in a report: the lower-cased word behind "Status: ", or "No result".
[[nodiscard]] QString verdict(const QString &report);

/// Where the service's log of the request lies, as the report gives it; null if it does not.
[[nodiscard]] QString logFileURL(const QString &report);

/// The issues in the service's log, one under the other; nothing if the log has no list of them.
[[nodiscard]] std::optional<QString> issuesSummary(const QByteArray &log);

/// The objects of that list as JSON, for programs; an empty list if the log has none.
[[nodiscard]] QString issuesAsJson(const QByteArray &log);

} // namespace sealwright
