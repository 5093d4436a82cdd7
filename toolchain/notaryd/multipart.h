#pragma once

#include "notaryd/partlist.h"
#include "platform/result.h"

#include <QString>

namespace notaryd {

/// How the file is called that lists an object's parts.
inline const QString partListSuffix = QStringLiteral(".parts");

/// Makes one file of the parts that a list names: the first one's grows by the others, each of which is gone
/// as soon as it has been added. False if that cannot be done now; it may be tried again.
[[nodiscard]] bool joinParts(const QString &list, const QString &object);

/// A multipart upload under way, as a folder of its parts beside the object that they will become
/// (https://docs.aws.amazon.com/AmazonS3/latest/userguide/mpuoverview.html).
class MultipartUpload {
public:
    using Part = UploadedPart;

    /// Answers the new upload's identifier; empty on failure.
    [[nodiscard]] static QByteArray begin(const QString &objectFolder);

    MultipartUpload(const QString &objectFolder, QByteArray identifier);

    [[nodiscard]] const QByteArray &identifier() const { return m_identifier; }
    [[nodiscard]] bool isOpen() const;
    [[nodiscard]] bool isCompleted() const;

    /// Moves a file to the place of a part; one of that number is replaced. False for a number that is none.
    [[nodiscard]] bool keepPart(const QByteArray &number, const QString &file, const QByteArray &etag) const;
    [[nodiscard]] QList<Part> parts() const; ///< by number

    /// Notes at `listPath()` which parts make the object. An error is one of the storage's codes.
    [[nodiscard]] platform::Outcome complete(const QByteArray &list) const;
    [[nodiscard]] QString listPath() const;
    void abort() const;

private:
    [[nodiscard]] QString partPath(const Part &part) const;
    [[nodiscard]] QString objectionTo(const QList<Part> &wanted) const;
    [[nodiscard]] bool listParts(const QList<Part> &wanted) const;

    const QByteArray m_identifier;
    const bool m_isIdentifier;
    const QString m_folder;
};

} // namespace notaryd
