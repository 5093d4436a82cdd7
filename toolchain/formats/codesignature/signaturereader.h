#pragma once

#include "formats/codesignature/codebundle.h"
#include "formats/codesignature/codedirectory.h"
#include "formats/codesignature/machoimage.h"
#include "formats/codesignature/superblob.h"

#include <optional>

#include "platform/result.h"

namespace toolchain::codesignature {

enum class CodeKind {
    machO, ///< signed within the file
    generic, ///< signed by extended attributes, or in the seal's folder if it is the main file of a bundle
    diskImage ///< signed before its trailer
};

/// The signature of one slice of a Mach-O file, or the whole signature of anything else.
struct SignedPart {
    QString architecture; ///< empty if it is no slice
    QList<CodeDirectory> directories; ///< the primary one first; none: not signed
    SuperBlob blobs; ///< all that the signature consists of
    QString damage; ///< why the signature that is there cannot be read; empty if it can, or if there is none

    [[nodiscard]] bool isSigned() const { return !directories.isEmpty(); }
    /// By a linker, which counts as not signed where something is to be signed.
    [[nodiscard]] bool isLinkerSigned() const;
    /// The directory that a CMS signature is made over. Only where it is signed.
    [[nodiscard]] const CodeDirectory &primary() const { return directories.first(); }
    /// The directory with the best digest. Only where it is signed.
    [[nodiscard]] const CodeDirectory &best() const;
    /// The 20 bytes by which the code is known.
    [[nodiscard]] QByteArray cdHash() const { return best().cdHash(); }
    /// The set of requirements, with its header; empty if there is none.
    [[nodiscard]] QByteArray requirements() const { return blobs.blob(slot::requirements); }
    /// The entitlements as the property list that was signed; empty if there are none.
    [[nodiscard]] QByteArray entitlements() const;
    /// The CMS signature as DER; empty if it is ad hoc.
    [[nodiscard]] QByteArray cms() const;
    /// The stapled ticket of a disk image; empty if there is none.
    [[nodiscard]] QByteArray ticket() const;
};

/// Any item that can be signed, with what is found of its signature.
struct SignedCode {
    QString path; ///< as it was given
    CodeKind kind = CodeKind::generic;
    std::optional<CodeBundle> bundle; ///< of a folder
    QString mainFile; ///< the file that the code directories describe
    std::optional<MachOImage> image; ///< of Mach-O
    QList<SignedPart> parts; ///< in the order of the slices; never empty

    [[nodiscard]] qsizetype nativeIndex() const { return image ? image->nativeIndex() : 0; }
    /// The slice that this toolchain takes for the machine's own, or the only part.
    [[nodiscard]] const SignedPart &native() const { return parts[nativeIndex()]; }
    [[nodiscard]] bool isSigned() const { return native().isSigned(); }
    /// "app bundle with Mach-O universal (x86_64 arm64)", "generic", "disk image", …
    [[nodiscard]] QString formatText() const;
};

/// How much is read of a Mach-O file's signature.
enum class SignatureDepth {
    whole,
    heads ///< without the digests of the code, and so without a hash of the code: see signatureheads.h
};

/// Reads what there is of an item's signature: of a Mach-O file, a bundle, a framework, a disk image or any
/// other file. An item without a signature is no failure. The error is a sentence of codebundle.h or says
/// what is damaged, without the item's name. Reads the whole signature, and of the code nothing but its head.
/// Any thread.
[[nodiscard]] platform::Result<SignedCode> readSignedCode(const QString &path,
                                                          SignatureDepth depth = SignatureDepth::whole);

/// The same; an item that is not signed is a failure, with the text `text::notSigned`.
[[nodiscard]] platform::Result<SignedCode> readCodeSignature(const QString &path);

/// Takes apart the bytes of an embedded signature.
[[nodiscard]] platform::Result<SignedPart> readSignedPart(QByteArrayView superBlob);

/// The name of the file or, behind "com.apple.cs.", of the attribute that holds a blob outside of Mach-O
/// files; empty for one that has none.
[[nodiscard]] QString slotFileName(quint32 slotNumber);
inline const QByteArray signatureAttributes = QByteArrayLiteral("com.apple.cs.");
/// Whether a blob lies there without its header.
[[nodiscard]] bool isStoredRaw(quint32 slotNumber);

} // namespace toolchain::codesignature
