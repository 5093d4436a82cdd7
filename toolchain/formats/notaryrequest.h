#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace toolchain {

/// One thing that speaks against an archive, or that its sender should know.
struct NotaryIssue {
    QString path; ///< inside the archive, beginning with the archive's name
    QString message;
    QString severity = QStringLiteral("error"); ///< or "warning", which refuses nothing
    QString architecture = {}; ///< "x86_64", "arm64"; empty where the issue is of no one architecture
    QString docUrl = {}; ///< empty if there is none
};

enum class Verdict { inProgress, success, invalid };

/// How far an upload has come. What never was uploaded whole stays in progress, as with the real service.
enum class Phase { announced, uploaded, reviewed };

/// One hash that the ticket of an approval vouches for.
struct TicketEntry {
    QString path; ///< as in an issue
    int hashType = 2; ///< 1 SHA-1, 2 SHA-256
    QByteArray hash; ///< 40 lower-case hexadecimal digits
    QString architecture; ///< may be empty
};

/// An upload and what became of it.
struct NotaryRequest {
    QString uuid; ///< 36 characters, lower case, no braces
    QString archiveName;
    QByteArray archiveDigest; ///< SHA-256, 64 lower-case hexadecimal digits
    QString bundleIdentifier; ///< as the sender gave it
    QDateTime uploaded; ///< UTC
    QList<NotaryIssue> issues; ///< none of severity "error" means approved
    QList<TicketEntry> ticketContents; ///< of what was approved
    int polls = 0; ///< how often the sender has asked
    Phase phase = Phase::reviewed;
    QDateTime decided; ///< UTC; not valid before
    QStringList webhooks; ///< addresses that are told of the end; mostly none
    QString team; ///< whose key has submitted it

    [[nodiscard]] bool isApproved() const;

    /// In progress until it has been reviewed, and while the sender has asked less than three times and the
    /// upload is younger than two minutes, so that a sender meets the waiting that the real service imposes.
    [[nodiscard]] Verdict verdict() const;
};

/// The form in which a request is kept.
[[nodiscard]] QByteArray jsonOf(const NotaryRequest &request);

/// Nothing for bytes that are not a request's whole form.
[[nodiscard]] std::optional<NotaryRequest> requestFromJson(const QByteArray &json);

/// The log that the sender of a decided request may read: JSON in the layout of the real service's.
[[nodiscard]] QByteArray logOf(const NotaryRequest &request);

} // namespace toolchain
