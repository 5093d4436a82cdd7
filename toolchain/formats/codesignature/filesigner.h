#pragma once

#include "formats/codesignature/signatureplan.h"

#include <QString>

namespace toolchain::codesignature {

/// The signature of a file that holds none within, by the slots of its parts; blobs with their headers.
/// `trailer` is what the special slot of a disk image digests, null for other files. The file is read once,
/// whole.
[[nodiscard]] platform::Result<SuperBlob> signatureOfFile(const QString &path, quint64 length,
                                                          const SignaturePlan &plan);

/// Signs a file by extended attributes.
[[nodiscard]] platform::Outcome signByAttributes(const QString &path, const SignaturePlan &plan);
[[nodiscard]] platform::Outcome removeAttributesOfSignature(const QString &path);

/// Signs the main file of a bundle that is no Mach-O file: the parts lie in files of their own in this
/// folder.
[[nodiscard]] platform::Outcome signBesideSeal(const QString &mainFile, const QString &sealFolder,
                                               const SignaturePlan &plan);

/// Signs a disk image, whose trailer becomes a part of what is digested.
[[nodiscard]] platform::Outcome signDiskImage(const QString &path, SignaturePlan plan);

/// What an unsigned disk image would be signed with ad hoc, under a name that does not depend on the file's:
/// by its code directory a ticket can name an image that nobody has signed. Nothing is written.
[[nodiscard]] platform::Result<SuperBlob> impliedSignatureOfImage(const QString &path);

} // namespace toolchain::codesignature
