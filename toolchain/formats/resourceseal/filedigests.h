#pragma once

#include <QByteArray>
#include <QString>

#include "platform/result.h"

#include <array>
#include <functional>
#include <vector>

namespace toolchain::seal {

/// A digest without an allocation of its own: a large bundle has some hundred thousands of them.
template <std::size_t Size>
struct StoredDigest {
    std::array<char, Size> bytes{};
    bool isMade = false;

    /// Empty if it has not been made. Lives as long as this object stays in its place.
    [[nodiscard]] QByteArray view() const
    {
        return isMade ? QByteArray::fromRawData(bytes.data(), qsizetype(Size)) : QByteArray();
    }
    friend bool operator==(const StoredDigest &digest, const QByteArray &other)
    {
        return digest.view() == other;
    }
};

/// A file whose digests are wanted, and the digests.
struct DigestJob {
    QByteArray path; ///< relative to the base folder
    bool wantsSha1 = false;
    bool wantsSha256 = false;
    StoredDigest<20> sha1;
    StoredDigest<32> sha256;
    QString problem; ///< why there are no digests; empty if there are
};

/// Digests regular files on all cores, each read once. A link as the last part of a path is not followed; it,
/// and what else is no regular file, is a problem of that job. So is a file that changes while it is read.
void digestJobs(const QString &base, std::size_t count,
                const std::function<DigestJob &(std::size_t number)> &jobAt);

template <typename Job>
void digestFiles(const QString &base, std::vector<Job> &jobs)
{
    digestJobs(base, jobs.size(), [&jobs](std::size_t number) -> DigestJob & { return jobs[number]; });
}

} // namespace toolchain::seal
