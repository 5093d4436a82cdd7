#pragma once

#include "formats/bytestreams.h"
#include "formats/xar/toc.h"

#include <QFile>

#include <functional>

namespace toolchain::xar {

/// What a signer makes of the table's checksum.
struct SignatureValues {
    QByteArray rsa;
    QByteArray cms; ///< may be shorter than the room that is kept for it
};

/// Called with the checksum and the digest it was made with; a second time if the room for the CMS turned out
/// too small.
using SignChecksum = std::function<platform::Result<SignatureValues>(const QByteArray &checksum,
                                                                     QCryptographicHash::Algorithm)>;

/// Who signs: the chain that goes into the table, and the length of the RSA value.
struct ArchiveSigner {
    QList<QByteArray> certificates; ///< in DER form, the signer's first
    quint64 rsaSize = 256; ///< bytes
    SignChecksum sign;
};

/// A xar archive, which is what a flat installer package is. Reads the file when it is asked, and holds no
/// more of it than the table. Format: the xar project's wiki, "xarformat".
class Archive {
public:
    /// Whether a file begins as a xar archive does; false also for one that cannot be read.
    [[nodiscard]] static bool looksLikeOne(const QString &path);

    /// Reads the table, whose checksum must agree with it and be SHA-1, SHA-256 or SHA-512. The error does
    /// not name the file.
    [[nodiscard]] static platform::Result<Archive> open(const QString &path);

    [[nodiscard]] const QString &path() const { return m_path; }
    [[nodiscard]] const Toc &toc() const { return m_toc; }
    [[nodiscard]] const QByteArray &checksum() const { return m_checksum; }
    [[nodiscard]] QCryptographicHash::Algorithm checksumAlgorithm() const { return m_algorithm; }

    /// Whether it is an installer package: a Distribution or a PackageInfo lies at its top.
    [[nodiscard]] bool isPackage() const;

    /// The stored bytes of a place of at most 16 MiB; empty if it is larger or cannot be read.
    [[nodiscard]] QByteArray heapBytes(const HeapRange &place) const;

    /// The first file whose stored bytes do not agree with the table; empty if all do. Reads the whole
    /// archive.
    [[nodiscard]] QString damagedFile() const;

    /// Gives a file's unpacked bytes to the sink, and stops with an error where they do not agree with the
    /// table, where the packing is not known, or where the sink stops. The error names the file in the
    /// archive.
    [[nodiscard]] platform::Outcome unpack(const TocFile &file, const ByteSink &sink) const;

    /// The same for a small file; one of more than `most` bytes is an error.
    [[nodiscard]] platform::Result<QByteArray> contentOf(const TocFile &file, qint64 most) const;

    /// Writes a copy with these signatures and without a ticket. What is under the path before stays until
    /// the copy is whole. Answers what went wrong, naming the file.
    [[nodiscard]] platform::Outcome writeSigned(const QString &path, const ArchiveSigner &signer) const;

    /// The ticket that is attached behind the heap; empty if there is none.
    [[nodiscard]] QByteArray ticket() const;

    /// Puts a ticket behind the heap in place of one that is there. The file is the old or the new one at
    /// every moment.
    [[nodiscard]] platform::Outcome attachTicket(const QByteArray &ticket) const;

private:
    Archive() = default;
    [[nodiscard]] platform::Outcome readHead(QFile &file);
    [[nodiscard]] qint64 heapStart() const { return m_header.size() + m_packedToc.size(); }
    [[nodiscard]] qint64 heapEnd() const { return heapStart() + qint64(m_toc.heapEnd()); }

    QString m_path;
    QByteArray m_header;
    QByteArray m_packedToc;
    QByteArray m_xml;
    QByteArray m_checksum;
    QCryptographicHash::Algorithm m_algorithm = QCryptographicHash::Sha1;
    Toc m_toc;
};

} // namespace toolchain::xar
