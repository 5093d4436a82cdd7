#pragma once

#include "platform/property.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace sealwright {

/// Statuses that no tool returned.
inline constexpr qint64 statusSkipped = 1001; ///< the run did not start, because its owner had cancelled it
inline constexpr qint64 statusLaunchFailure = 11000; ///< the tool could not be launched

/// The bytes of one output stream, filled by the runner while others may look.
using OutputBuffer = Property<QByteArray>;

/// The record of one tool run.
class SLWTaskResponse {
public:
    /// A response with these two fields set.
    static std::shared_ptr<SLWTaskResponse> responseWithPath(const QString &path, const QStringList &args);

    /// The tool's termination status, or one of the two above.
    Property<qint64> status;
    const QString path;
    const QStringList args;

    /// The streams' bytes; null when the run did not start. They are the runner's own buffers and are emptied
    /// by its next run, unless `keepData` was called before that.
    QByteArray outputData() const;
    QByteArray errorData() const;
    void setData(std::shared_ptr<OutputBuffer> output, std::shared_ptr<OutputBuffer> error);
    void keepData();

    /// The streams as text; null if there was nothing. Bytes that are no UTF-8 are read one by one.
    QString outputString() const;
    QString errorString() const;
    /// The tool's text: its standard output if there is any, otherwise its standard error; else null.
    QString text() const;

    /// The full report of the run for the log file.
    QString fileLogString() const;

    /// What the failure lines show as the number of an error: the reference to this record.
    qint64 reference() const { return reinterpret_cast<qint64>(this); }

    SLWTaskResponse(const QString &path, const QStringList &args);

private:
    std::shared_ptr<OutputBuffer> m_output;
    std::shared_ptr<OutputBuffer> m_error;
};

using SLWTaskResponsePtr = std::shared_ptr<SLWTaskResponse>;

/// The text if the bytes are UTF-8 from the first to the last.
[[nodiscard]] std::optional<QString> decodedUtf8(const QByteArray &bytes);

/// Text of a stream: null for nothing, otherwise UTF-8, and if it is not that, byte by byte.
[[nodiscard]] QString decodedToolOutput(const QByteArray &bytes);

/// The text as a message shows it: a null one as "(null)".
[[nodiscard]] QString orNull(const QString &text);

/// The report that goes to the log file; a null text shows as "(null)".
[[nodiscard]] QString toolReport(const QString &path, const QString &args, qint64 status,
                                 const QString &output, const QString &error);

} // namespace sealwright
