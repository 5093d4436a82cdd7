#pragma once

#include <QByteArray>
#include <QString>

#include "platform/result.h"

#include <vector>

namespace toolchain::seal {

/// A file whose digests are wanted, and the digests.
struct DigestJob {
    QByteArray path; ///< relative to the base folder
    bool wantsSha1 = false;
    bool wantsSha256 = false;
    QByteArray sha1; ///< 20 bytes; empty if not wanted
    QByteArray sha256; ///< 32 bytes; empty if not wanted
    QString problem; ///< why there are no digests; empty if there are
};

/// Digests regular files on all cores, each read once. A link as the last part of a path is not followed; it,
/// and what else is no regular file, is a problem of that job. So is a file that changes while it is read.
void digestFiles(const QString &base, std::vector<DigestJob> &jobs);

} // namespace toolchain::seal
