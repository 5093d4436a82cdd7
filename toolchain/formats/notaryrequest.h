#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>

namespace toolchain {

/// One thing that speaks against an archive, or that its sender should know.
struct NotaryIssue {
    QString path; ///< inside the archive, beginning with the archive's name
    QString message;
};

enum class Verdict { InProgress, Success, Invalid };

/// An upload and what became of it.
struct NotaryRequest {
    QString uuid; ///< 36 characters, lower case, no braces
    QString archiveName;
    QByteArray archiveDigest; ///< SHA-256, 64 lower-case hexadecimal digits
    QString bundleIdentifier; ///< as the sender gave it
    QDateTime uploaded; ///< UTC, whole seconds
    QList<NotaryIssue> issues; ///< none means approved
    QList<QByteArray> sealDigests; ///< of the archive's bundles, as `sealDigest` has them
    int polls = 0; ///< how often the sender has asked

    /// In progress while the sender has asked less than three times and the upload is younger than two
    /// minutes, so that a sender meets the waiting that the real service imposes.
    [[nodiscard]] Verdict verdict() const;
};

/// The form in which a request is kept.
[[nodiscard]] QByteArray jsonOf(const NotaryRequest &request);

/// Nothing for bytes that are not a request's whole form.
[[nodiscard]] std::optional<NotaryRequest> requestFromJson(const QByteArray &json);

/// The log that the sender of a decided request may read: JSON in the layout of the real service's.
[[nodiscard]] QByteArray logOf(const NotaryRequest &request);

} // namespace toolchain
