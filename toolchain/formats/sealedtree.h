#pragma once

#include <QByteArray>
#include <QCryptographicHash>
#include <QMap>
#include <QString>

namespace toolchain {

/// What a seal can say about one file: the digests of its bytes, or where it leads if it is a link.
struct SealedFile {
    QByteArray sha1; ///< 20 bytes; empty for a link
    QByteArray sha256; ///< 32 bytes; empty for a link
    QString linkTarget; ///< null for a file

    [[nodiscard]] bool isLink() const { return !linkTarget.isNull(); }
};

/// Digests the bytes of one file as they come.
class FileDigester {
public:
    void add(QByteArrayView bytes);

    [[nodiscard]] SealedFile result() const;

private:
    QCryptographicHash m_sha1{QCryptographicHash::Sha1};
    QCryptographicHash m_sha256{QCryptographicHash::Sha256};
};

/// Files and links by their path relative to the folder that a seal starts from. Folders do not appear.
using SealedTree = QMap<QString, SealedFile>;

struct SealedTreeResult {
    SealedTree tree;
    QString error; ///< what could not be read, naming it; empty if all could
};

/// Reads and digests every file under a folder. Links are never followed.
[[nodiscard]] SealedTreeResult readSealedTree(const QString &base);

} // namespace toolchain
