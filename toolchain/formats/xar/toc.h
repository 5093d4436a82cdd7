#pragma once

#include <QByteArray>
#include <QCryptographicHash>
#include <QList>
#include <QString>

#include "platform/result.h"

#include <optional>

/// The table of contents of a xar archive. Format: the xar project's wiki, "xarformat".
namespace toolchain::xar {

/// Bytes of the heap, which stands behind the table.
struct HeapRange {
    quint64 offset = 0; ///< from the heap's first byte
    quint64 size = 0;

    [[nodiscard]] quint64 end() const { return offset + size; }
    [[nodiscard]] bool operator==(const HeapRange &) const = default;
};

struct Checksum {
    QString style; ///< such as "sha1"
    QByteArray value;
};

/// Bytes of a file or of one of its extended attributes.
struct HeapPiece {
    HeapRange place; ///< as they are stored
    quint64 size = 0; ///< unpacked, in bytes
    QString encoding; ///< a media type such as "application/x-gzip"; empty or "application/octet-stream": as
                      ///< they are
    Checksum archived; ///< of the stored bytes
    Checksum extracted; ///< of the unpacked ones
};

enum class TocFileType { file, folder, link, other };

struct TocFile {
    QString path; ///< with slashes between the names; a name itself has none and is neither "." nor ".."
    TocFileType type = TocFileType::file;
    QString typeText; ///< as the table has it
    QString linkTarget;
    quint32 mode = 0644; ///< permissions
    std::optional<HeapPiece> data;
    QList<HeapPiece> attributes;
};

/// A signature's place and the certificates that stand beside it.
struct TocSignature {
    QString style; ///< "RSA" or "CMS"
    HeapRange place;
    QList<QByteArray> certificates; ///< in DER form, the signer's first
};

struct Toc {
    QString checksumStyle;
    HeapRange checksum; ///< where the digest of the packed table stands
    std::optional<TocSignature> signature;
    std::optional<TocSignature> secondSignature; ///< "x-signature"
    QList<TocFile> files;

    /// Behind the last byte of the heap that the table tells of.
    [[nodiscard]] quint64 heapEnd() const;
    [[nodiscard]] const TocFile *file(QStringView path) const;
};

/// The digest that a style names; nothing for one that is not known.
[[nodiscard]] std::optional<QCryptographicHash::Algorithm> digestNamed(const QString &style);

/// Takes a table apart. Of two names of one file, as newer tables have them, the first counts. An error says
/// what is wrong, without the archive's name.
[[nodiscard]] platform::Result<Toc> readToc(const QByteArray &xml);

/// What a table is to say of its signatures: certificates and the room kept for each, right behind the
/// checksum.
struct SignatureRoom {
    QList<QByteArray> certificates; ///< in DER form, the signer's first
    quint64 rsaSize = 0; ///< bytes
    quint64 cmsSize = 0;
};

/// Stored bytes that move as a whole.
struct Move {
    HeapRange from;
    quint64 to = 0; ///< the new offset
};

struct SignedToc {
    QByteArray xml;
    QList<Move> moves; ///< in the order of their new places, without gaps; what no file claims is left behind
    HeapRange rsa;
    HeapRange cms;
};

/// The same table with these two signatures in place of those that it had, all else letter for letter as it
/// was.
[[nodiscard]] platform::Result<SignedToc> tocWithSignatures(const QByteArray &xml, const Toc &toc,
                                                            const SignatureRoom &room);

} // namespace toolchain::xar
