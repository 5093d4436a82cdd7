#pragma once

#include "formats/codesignature/digest.h"

#include <QByteArray>
#include <QMap>
#include <QString>

#include "platform/result.h"

namespace toolchain::codesignature {

/// Bits of a code directory's flags: CS_… of Apple's <kern/cs_blobs.h>.
namespace codeflag {
inline constexpr quint32 host = 0x1;
inline constexpr quint32 adhoc = 0x2;
inline constexpr quint32 hard = 0x100;
inline constexpr quint32 kill = 0x200;
inline constexpr quint32 expires = 0x400;
inline constexpr quint32 restrict = 0x800;
inline constexpr quint32 enforcement = 0x1000;
inline constexpr quint32 libraryValidation = 0x2000;
inline constexpr quint32 runtime = 0x10000;
inline constexpr quint32 linkerSigned = 0x20000;
} // namespace codeflag

/// "runtime", "adhoc,linker-signed"; "none" without flags.
[[nodiscard]] QString codeFlagsText(quint32 flags);

/// The flags that a comma-separated list names, as `codesign -o` and an Info.plist's CSFlags have them; a
/// number is taken too. The error names the word that is none.
[[nodiscard]] platform::Result<quint32> codeFlagsNamed(const QString &words);

/// Bits of execSegFlags: CS_EXECSEG_….
namespace execseg {
inline constexpr quint64 mainBinary = 0x1;
inline constexpr quint64 allowUnsigned = 0x10;
inline constexpr quint64 debugger = 0x20;
inline constexpr quint64 jit = 0x40;
inline constexpr quint64 skipLibraryValidation = 0x80;
inline constexpr quint64 canLoadCdHash = 0x100;
inline constexpr quint64 canExecuteCdHash = 0x200;
} // namespace execseg

/// What a code directory tells beside the digests. Format: Apple's <kern/cs_blobs.h>, CS_CodeDirectory.
struct CodeDirectoryFields {
    quint32 flags = 0;
    HashType hashType = HashType::sha256;
    quint8 platform = 0;
    quint8 pageShift = 0; ///< the page size is 1 << pageShift; 0: one page that holds everything
    quint64 codeLimit = 0; ///< how many bytes from the beginning are covered
    QString identifier;
    QString team; ///< empty: none
    quint64 execSegmentBase = 0;
    quint64 execSegmentLimit = 0;
    quint64 execSegmentFlags = 0;
    quint32 runtime = 0; ///< packed version; 0: none

    /// The oldest version of the format that can hold these fields, as codesign chooses it.
    [[nodiscard]] quint32 neededVersion() const;
    [[nodiscard]] quint32 codeSlotCount() const;
};

/// A code directory that has been read.
class CodeDirectory {
public:
    /// Reads the blob, header included. Everything that the fields name lies within it afterwards.
    [[nodiscard]] static platform::Result<CodeDirectory> parse(const QByteArray &blob);

    [[nodiscard]] const CodeDirectoryFields &fields() const { return m_fields; }
    [[nodiscard]] quint32 version() const { return m_version; }
    [[nodiscard]] quint32 specialSlotCount() const { return m_specialSlots; }
    [[nodiscard]] quint32 codeSlotCount() const { return m_codeSlots; }
    /// The digest of a special slot, 1 for the Info.plist; empty where there is no such slot.
    [[nodiscard]] QByteArrayView specialSlot(quint32 number) const;
    /// Whether a special slot is there and not filled with zeros.
    [[nodiscard]] bool hasSpecialSlot(quint32 number) const;
    [[nodiscard]] QByteArrayView codeSlot(quint32 index) const;
    [[nodiscard]] const QByteArray &bytes() const { return m_bytes; }

    /// The blob's digest of its own kind, at full length.
    [[nodiscard]] QByteArray digest() const;
    /// The first 20 bytes of it.
    [[nodiscard]] QByteArray cdHash() const { return digest().left(20); }

private:
    [[nodiscard]] platform::Result<QString> textAt(qsizetype offset) const;
    [[nodiscard]] platform::Outcome readNumbers();
    [[nodiscard]] platform::Outcome readTexts();
    [[nodiscard]] platform::Outcome checkSlots() const;

    QByteArray m_bytes;
    CodeDirectoryFields m_fields;
    quint32 m_version = 0;
    quint32 m_hashOffset = 0;
    quint32 m_specialSlots = 0;
    quint32 m_codeSlots = 0;
};

/// What a new code directory says of the files beside the code: slot number to digest.
using SpecialSlots = QMap<quint32, QByteArray>;

/// The beginning of a code directory up to its first code slot, made of the fields in the version they need.
/// The length in it counts the code slots, which are to follow.
[[nodiscard]] QByteArray codeDirectoryHead(const CodeDirectoryFields &fields,
                                           const SpecialSlots &specialSlots);

/// The length that a code directory would have in a certain version, in bytes.
[[nodiscard]] quint64 codeDirectorySize(const CodeDirectoryFields &fields, quint32 specialSlots,
                                        quint32 version);

} // namespace toolchain::codesignature
