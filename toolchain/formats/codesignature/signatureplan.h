#pragma once

#include "formats/codesignature/codedirectory.h"
#include "formats/codesignature/superblob.h"

#include <QMap>

#include <functional>

namespace toolchain::codesignature {

/// The digest of a finished code directory, at full length.
struct DirectoryDigest {
    HashType type = HashType::sha256;
    QByteArray digest;
};

/// Makes the CMS signature over code directories: `contentDigest` is the SHA-256 of the primary one, whatever
/// its own digest is; the list has all of them, the primary one first. Answers DER.
using CmsMaker = std::function<platform::Result<QByteArray>(const QByteArray &contentDigest,
                                                            const QList<DirectoryDigest> &directories)>;

/// Everything that a signature is to consist of; the digests of the code are still to be made.
struct SignaturePlan {
    static constexpr quint64 usualCmsRoom = 18000;

    CodeDirectoryFields
        fields; ///< of all directories; the digest's kind and the code limit are filled in later
    QList<HashType> digests; ///< one directory each, in this order
    /// What the special slots digest: whole blobs for requirements and entitlements, which become part of the
    /// signature; for others the bytes of the file.
    QMap<quint32, QByteArray> components;
    /// The same for files that are too long to be held: their digests, in the order of `digests`.
    QMap<quint32, QList<QByteArray>> digestedFiles;
    quint64 cmsRoom = usualCmsRoom; ///< bytes that are kept for the CMS signature
    CmsMaker makeCms; ///< none: ad hoc
    quint64 segmentAlignment =
        0x4000; ///< of the size in memory of __LINKEDIT; older tools took 0x1000 for x86_64
};

/// The fields of one of the directories.
[[nodiscard]] CodeDirectoryFields directoryFields(const SignaturePlan &plan, HashType digest,
                                                  quint64 codeLimit);

/// Digests of the components.
[[nodiscard]] SpecialSlots specialSlotsOf(const SignaturePlan &plan, HashType digest);

/// The number of a directory's slot: 0 for the first, then 0x1000 and on.
[[nodiscard]] quint32 directorySlot(qsizetype index);

/// The blobs that the signature has beside its directories and the CMS signature.
[[nodiscard]] SuperBlob componentBlobs(const SignaturePlan &plan);

/// How many bytes of a Mach-O file are set aside for the signature: an estimate as codesign's, which counts
/// every directory at the length of its latest version.
[[nodiscard]] quint64 roomForSignature(const SignaturePlan &plan, quint64 codeLimit);

/// The CMS signature as a blob; an empty one of what is signed ad hoc.
[[nodiscard]] platform::Result<QByteArray> cmsBlob(const SignaturePlan &plan, const QByteArray &contentDigest,
                                                   const QList<DirectoryDigest> &directories);

} // namespace toolchain::codesignature
