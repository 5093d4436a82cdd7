#pragma once

#include <QByteArray>
#include <QList>

#include "platform/result.h"

namespace toolchain::codesignature {

/// Magic numbers of the blobs of a code signature: CSMAGIC_… of Apple's <kern/cs_blobs.h>.
namespace magic {
inline constexpr quint32 requirement = 0xfade0c00;
inline constexpr quint32 requirementSet = 0xfade0c01;
inline constexpr quint32 codeDirectory = 0xfade0c02;
inline constexpr quint32 embeddedSignature = 0xfade0cc0;
inline constexpr quint32 wrapper = 0xfade0b01;
inline constexpr quint32 entitlements = 0xfade7171;
inline constexpr quint32 entitlementsDer = 0xfade7172;
} // namespace magic

/// Types of the blobs in an embedded signature, which are the numbers of the special slots too: CSSLOT_….
namespace slot {
inline constexpr quint32 codeDirectory = 0;
inline constexpr quint32 infoPropertyList = 1;
inline constexpr quint32 requirements = 2;
inline constexpr quint32 resources = 3;
inline constexpr quint32 entitlements = 5;
inline constexpr quint32 imageTrailer = 6;
inline constexpr quint32 entitlementsDer = 7;
inline constexpr quint32 firstAlternateDirectory = 0x1000;
inline constexpr quint32 lastAlternateDirectory = 0x1004;
inline constexpr quint32 cms = 0x10000;
inline constexpr quint32 ticket = 0x10002;
} // namespace slot

/// A blob: its magic number, its whole length and its content.
[[nodiscard]] QByteArray makeBlob(quint32 magic, QByteArrayView content);

/// The bytes of the blob at the beginning, header included. The error says what is wrong with the header.
[[nodiscard]] platform::Result<QByteArrayView> blobIn(QByteArrayView bytes, quint32 magic);

/// What is in a blob behind its header; empty if there is nothing.
[[nodiscard]] QByteArrayView blobContent(QByteArrayView blob);

/// A blob within a super blob.
struct IndexedBlob {
    quint32 type = 0;
    QByteArray bytes; ///< with its header
};

/// An index and the blobs that it names: an embedded signature, or a set of requirements.
class SuperBlob {
public:
    SuperBlob() = default;
    explicit SuperBlob(quint32 magic)
        : m_magic(magic)
    {
    }

    /// Reads one from the beginning of the bytes; what follows it is not looked at. Refuses what reaches
    /// beyond its length, overlaps or stands there twice.
    [[nodiscard]] static platform::Result<SuperBlob> parse(QByteArrayView bytes, quint32 magic);

    /// Puts a blob in, in place of one of the same type. The index stays sorted by type.
    void set(quint32 type, QByteArray blob);
    void remove(quint32 type);

    /// The blob with its header; null if there is none.
    [[nodiscard]] QByteArray blob(quint32 type) const;
    [[nodiscard]] const QList<IndexedBlob> &blobs() const { return m_blobs; }

    /// The length of all, in bytes.
    [[nodiscard]] qsizetype size() const;
    /// Index and blobs one after the other, without a gap.
    [[nodiscard]] QByteArray bytes() const;

private:
    quint32 m_magic = magic::embeddedSignature;
    QList<IndexedBlob> m_blobs;
};

/// The header and the index of a super blob whose blobs have these types and lengths.
[[nodiscard]] QByteArray superBlobIndex(quint32 magic, const QList<std::pair<quint32, qsizetype>> &blobs);

} // namespace toolchain::codesignature
