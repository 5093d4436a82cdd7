#pragma once

#include "formats/xar/xartable.h"

namespace toolchain {

class DigestSigner;
struct DigestSignature;

/// A xar archive, which is what a flat installer package is, with its signature and with what stands behind
/// it.
/// Format: the xar project's wiki, "xarformat".
class XarFile {
public:
    /// Whether a file begins as a xar archive does; false also for one that cannot be read.
    [[nodiscard]] static bool looksLikeOne(const QString &path);

    /// Reads the table of contents, whose checksum must agree with it and be SHA-1 or SHA-256.
    explicit XarFile(QString path);

    /// Why there is no reading; empty if there is.
    [[nodiscard]] const QString &error() const { return m_error; }

    /// Whether it is an installer package: a Distribution or a PackageInfo lies at its top.
    [[nodiscard]] bool isPackage() const;

    /// The path of the first file whose bytes do not agree with the table of contents; empty if all do. Reads
    /// the whole archive.
    [[nodiscard]] QString damagedFile() const;

    [[nodiscard]] bool isSigned() const { return !m_table.signatureStyle.isEmpty(); }

    /// The certificate that is in the table of contents, in DER form.
    [[nodiscard]] const QByteArray &certificate() const { return m_table.certificate; }

    /// Whether the signature is an RSA signature over the table's checksum by the certificate's key.
    [[nodiscard]] bool signatureFits() const;

    /// SHA-256 of the table of contents, in its packed form, and of the signature, in lower-case hexadecimal
    /// digits.
    [[nodiscard]] QByteArray sealDigest() const;

    /// What stands behind the archive, of which its table of contents does not tell.
    [[nodiscard]] QByteArray tail() const;

    /// Replaces that. Answers what went wrong, or an empty text.
    [[nodiscard]] QString writeTail(const QByteArray &tail) const;

    /// Writes a copy that has the signer's signature and no tail. The signer must have an RSA key. Answers
    /// what went wrong, or an empty text.
    [[nodiscard]] QString writeSigned(const DigestSigner &signer, const QString &path) const;

private:
    bool readTable();
    [[nodiscard]] QByteArray heapBytes(const xar::Place &place) const;
    [[nodiscard]] qint64 heapStart() const { return m_headerSize + m_packedTable.size(); }

    const QString m_path;
    QString m_error;
    qint64 m_headerSize = 0; ///< in bytes
    QByteArray m_header;
    QByteArray m_packedTable;
    QByteArray m_xml;
    QByteArray m_checksum;
    xar::Table m_table;
};

} // namespace toolchain
