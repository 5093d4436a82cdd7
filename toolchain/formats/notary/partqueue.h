#pragma once

#include "formats/notary/httpclient.h"

#include <mutex>
#include <optional>

namespace toolchain::notary {

/// The parts of an upload that nobody has begun to send, and what became of the others. Any thread.
class PartQueue {
public:
    explicit PartQueue(qsizetype count)
        : m_etags(count)
    {
    }

    /// The next part to send, counted from 0; -1 if none is left, or if another one cannot be had.
    [[nodiscard]] qsizetype next();

    void done(qsizetype part, const QByteArray &etag);

    /// A part that somebody else is to send.
    void giveBack(qsizetype part);

    /// The reply for which a part cannot be had; the first one stays.
    void failed(const HttpReply &reply);
    [[nodiscard]] bool hasFailed() const;
    [[nodiscard]] std::optional<HttpReply> failedReply() const;

    /// The list of parts that makes the upload whole
    /// (https://docs.aws.amazon.com/AmazonS3/latest/API/API_CompleteMultipartUpload.html).
    [[nodiscard]] QByteArray list() const;

private:
    mutable std::mutex m_mutex;
    QByteArrayList m_etags; ///< as the storage gave them
    qsizetype m_next = 0;
    QList<qsizetype> m_givenBack;
    std::optional<HttpReply> m_failed;
};

} // namespace toolchain::notary
