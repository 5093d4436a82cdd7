#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/// The table of contents of a xar archive.
/// Format: the xar project's wiki, "xarformat".
namespace toolchain::xar {

/// Bytes of the heap, which stands behind the table.
struct Place {
    quint64 offset = 0; ///< from the heap's first byte
    quint64 size = 0;

    [[nodiscard]] quint64 end() const { return offset + size; }
};

/// The bytes of one file, as they are stored.
struct Piece {
    QString path; ///< of the file in the archive
    Place place;
    QString checksumStyle; ///< such as "sha1"
    QByteArray checksum; ///< of the stored bytes
};

struct Table {
    QString checksumStyle;
    Place checksum; ///< of the checksum of the table in its packed form
    QString signatureStyle; ///< empty if there is no signature
    Place signature; ///< of a signature over the checksum
    QByteArray certificate; ///< the signer's, in DER form
    quint64 reserved = 0; ///< bytes at the heap's front for checksum and signatures
    QStringList topNames; ///< of what lies at the archive's top
    QList<Piece> pieces;

    /// Behind the last byte of the heap that the table tells of.
    [[nodiscard]] quint64 heapEnd() const;
};

/// Nothing if the bytes are no such table, or if its files lie in the place that is kept for signatures.
[[nodiscard]] std::optional<Table> readTable(const QByteArray &xml);

/// The same table with a place for one signature, right behind the checksum, in place of those that it had.
/// All files move on behind it. Empty if the bytes are no table.
[[nodiscard]] QByteArray tableWithSignature(const QByteArray &xml, const Table &table,
                                            const QByteArray &certificate, quint64 signatureSize);

} // namespace toolchain::xar
