#pragma once

#include "platform/result.h"

#include <QByteArray>
#include <QString>

/// The place of a code signature in a disk image: between the image's data and its trailer, the koly block,
/// which tells where it lies. Format: cs_blobs.h of Apple's published kernel sources for the superblob
/// itself; Apple has published no description of the trailer.
namespace toolchain::udif {

/// The trailer of a disk image, and where the signature lies or would lie.
struct SignaturePlace {
    QByteArray trailer; ///< the 512 bytes as they are in the file
    quint64 contentLength = 0; ///< bytes before the signature; what a code directory covers, its code limit
    quint64 signatureLength = 0; ///< bytes of the superblob; 0 if the image is not signed

    [[nodiscard]] bool isSigned() const { return signatureLength > 0; }

    /// The 512 bytes whose digest stands in the special slot −6 of an image's code directory: the trailer
    /// with the signature's offset and a length of zero, so that neither the signature nor a ticket that is
    /// added to it later changes the digest.
    [[nodiscard]] QByteArray trailerToDigest() const;
};

/// Whether a file ends as a disk image does; false also for one that cannot be read. Reads four bytes.
[[nodiscard]] bool endsAsDiskImage(const QString &path);

/// Reads the trailer alone. An error says what of the file cannot be used, such as a signature that does not
/// lie right before the trailer.
[[nodiscard]] platform::Result<SignaturePlace> readSignaturePlace(const QString &path);

/// The superblob's bytes as they are; empty if the image is not signed. One of more than 16 MiB is an error.
[[nodiscard]] platform::Result<QByteArray> readImageSignature(const QString &path);

/// Puts a superblob in the place of the one that is there, or takes it out if it is empty. The image under
/// the path is the old or the new one at every moment, and keeps its mode. An error names the file.
[[nodiscard]] platform::Outcome replaceImageSignature(const QString &path, const QByteArray &superblob);

} // namespace toolchain::udif
