#pragma once

#include <QByteArray>
#include <QList>

#include <optional>

namespace notaryd {

/// A part of a multipart upload.
struct UploadedPart {
    int number = 0;
    QByteArray etag;
    qint64 size = 0; ///< not known where a sender names the part
};

/// The parts that the body of CompleteMultipartUpload names
/// (https://docs.aws.amazon.com/AmazonS3/latest/API/API_CompleteMultipartUpload.html), in its order; nothing
/// for what is no such list, or names none.
[[nodiscard]] std::optional<QList<UploadedPart>> partsIn(const QByteArray &list);

} // namespace notaryd
