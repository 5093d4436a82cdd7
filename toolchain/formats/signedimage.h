#pragma once

#include "formats/digestsignature.h"
#include "formats/ticket.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace toolchain {

/// What codesign and stapler leave in a disk image, in the place of a code signature: between the property
/// list and the trailer, which says where. It is a note of this toolchain in JSON and means nothing to macOS.
struct ImageNote {
    DigestSignature signature; ///< over the image's digest; no bytes if it is not signed
    std::optional<Ticket> ticket;
};

/// A UDIF disk image with the note in it.
class SignedImage {
public:
    /// Whether a file ends as a disk image does; false also for one that cannot be read.
    [[nodiscard]] static bool looksLikeOne(const QString &path);

    /// Reads the whole image.
    explicit SignedImage(QString path);

    /// Why it cannot be read as an image; empty if it can.
    [[nodiscard]] const QString &error() const { return m_error; }

    /// SHA-256 of everything but the note and what the trailer says of its place; 32 bytes.
    [[nodiscard]] const QByteArray &digest() const { return m_digest; }

    /// By which the notary knows the image: SHA-256 of the digest, the certificate and the signature, in
    /// lower-case hexadecimal digits.
    [[nodiscard]] QByteArray sealDigest() const;

    /// Whether something other than a note of this toolchain stands in the place of the signature.
    [[nodiscard]] bool hasForeignSignature() const { return m_hasForeignSignature; }

    [[nodiscard]] const ImageNote &note() const { return m_note; }

    /// Replaces the note and what else is in its place. Nothing else of the image changes. Answers what went
    /// wrong, or an empty text.
    [[nodiscard]] QString write(const ImageNote &note) const;

private:
    bool readTrailer();
    bool readContent();
    void readNote();

    const QString m_path;
    QString m_error;
    QByteArray m_digest;
    QByteArray m_trailer; ///< as if there were no note
    qint64 m_contentLength = 0; ///< of what stands before the note, in bytes
    qint64 m_noteLength = 0;
    bool m_hasForeignSignature = false;
    ImageNote m_note;
};

} // namespace toolchain
