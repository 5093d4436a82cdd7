#pragma once

#include "formats/sealedtree.h"

#include <QByteArrayView>

#include <functional>

namespace toolchain {

/// What an archive or a disk image holds, read through once.
struct PackedFiles {
    SealedTree files; ///< every file and link by its path inside
    QMap<QString, QByteArray> kept; ///< the bytes of those files that were asked for
    QString error; ///< why it cannot be read to its end; empty if it can
};

/// Tells by a file's path whether its bytes are wanted; of a file longer than 64 MiB they are an error.
using KeepsBytes = std::function<bool(const QString &)>;

/// Takes the bytes of one file as they come.
class PackedFileTaker {
public:
    PackedFileTaker(PackedFiles &result, QString path, bool keepsBytes);

    /// False if the file has become too long to be kept, which is noted as the result's error.
    bool add(QByteArrayView bytes);

    /// Adds the file to the result.
    void finish();

private:
    PackedFiles &m_result;
    const QString m_path;
    const bool m_keepsBytes;
    FileDigester m_digester;
    QByteArray m_kept;
};

} // namespace toolchain
