#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QList>
#include <QString>

#include <optional>

#include "platform/result.h"

namespace toolchain::codesignature {

/// Numbers of Apple's <mach-o/loader.h> and <mach/machine.h>.
inline constexpr quint32 cpuX86 = 7;
inline constexpr quint32 cpuX86_64 = 0x01000007;
inline constexpr quint32 cpuArm64 = 0x0100000c;
inline constexpr quint32 cpuArm64_32 = 0x0200000c;

enum class MachOFileType : quint32 {
    object = 1,
    executable = 2,
    dynamicLibrary = 6,
    dynamicLinker = 7,
    loadableBundle = 8,
    debugSymbols = 10,
    kernelExtension = 11
};

/// A stretch of bytes, counted from the beginning of its slice.
struct ByteRange {
    quint64 offset = 0;
    quint64 length = 0;

    [[nodiscard]] quint64 end() const { return offset + length; }
};

/// A segment command: where the command itself stands, and what of the file it maps.
struct MachOSegment {
    QByteArray name;
    quint64 commandOffset = 0; ///< from the beginning of the slice
    ByteRange file;
    quint64 virtualSize = 0;
};

/// LC_BUILD_VERSION or one of the LC_VERSION_MIN family. Versions are packed as xxxx.yy.zz.
struct MachOVersion {
    static constexpr quint32 macOS = 1;
    static constexpr quint32 iOS = 2;
    static constexpr quint32 tvOS = 3;
    static constexpr quint32 watchOS = 4;

    quint32 platform = 0; ///< as PLATFORM_MACOS and so on
    quint32 minimumSystem = 0;
    quint32 sdk = 0;
};

/// LC_CODE_SIGNATURE.
struct MachOSignatureCommand {
    quint64 commandOffset = 0; ///< from the beginning of the slice
    ByteRange data;
};

/// One architecture of a Mach-O file. Every range that stands here lies within the slice.
struct MachOSlice {
    ByteRange place; ///< in the file
    quint32 cpuType = 0;
    quint32 cpuSubtype = 0;
    bool is64Bit = true;
    bool isBigEndian = false;
    MachOFileType fileType = MachOFileType::object;
    quint32 flags = 0;
    quint32 commandCount = 0;
    QByteArray head; ///< the header and all load commands, as they stand
    QList<MachOSegment> segments;
    QList<MachOVersion> versions; ///< more than one in a file for two platforms
    QByteArray uuid; ///< 16 bytes; empty if there is none
    std::optional<ByteRange> infoPropertyList; ///< the section __TEXT,__info_plist
    std::optional<quint64>
        firstSection; ///< where the bytes of the first section begin: the room of the head ends
    std::optional<quint64> stringTableEnd; ///< where the symbols' names end
    std::optional<MachOSignatureCommand> signature;

    /// "x86_64", "arm64", …
    [[nodiscard]] QString architecture() const;
    [[nodiscard]] quint64 headerSize() const { return is64Bit ? 32 : 28; }
    [[nodiscard]] const MachOSegment *segment(QByteArrayView name) const;
    /// The first of the versions; null if there is none.
    [[nodiscard]] const MachOVersion *version() const;
    /// What a signature is made over: the bytes before it, or all that there are.
    [[nodiscard]] quint64 codeLength() const;
};

/// A thin or universal Mach-O file as its headers describe it.
struct MachOImage {
    QList<MachOSlice> slices; ///< in the order of the file; never empty
    bool isUniversal = false;
    bool hasWideHeader = false; ///< the universal header with 64-bit offsets
    quint64 size = 0; ///< of the file, in bytes

    /// Whether something lies behind the last slice, which nothing tells of.
    [[nodiscard]] bool hasMoreBehindSlices() const;
    /// "Mach-O thin (arm64)" or "Mach-O universal (x86_64 arm64)".
    [[nodiscard]] QString description() const;
    /// The slice that this toolchain takes for the machine's own: arm64 if there is one, else x86_64, else
    /// the first.
    [[nodiscard]] qsizetype nativeIndex() const;
};

/// Whether files of this type hold a signature of their own: programs, libraries, loadable bundles and kernel
/// extensions. Object files, symbols and the like are signed as any other file is.
[[nodiscard]] bool canHoldSignature(MachOFileType type);

/// Whether a universal file holds static libraries, as `ar` writes them, in place of Mach-O files.
[[nodiscard]] bool isUniversalArchive(QIODevice &file);

/// Whether a file that begins so claims to be Mach-O: thin or universal, of either byte order. A Java class,
/// which has the magic number of universal files, is told by its version. Eight bytes are enough.
[[nodiscard]] bool looksLikeMachO(QByteArrayView beginning);
[[nodiscard]] bool looksLikeMachOFile(const QString &path);

/// Reads the headers and load commands and nothing of the code. Bounds everything; the error says what is
/// cut, overlaps or reaches outside, without the file's name. Any thread. Formats: Apple's <mach-o/loader.h>
/// and <mach-o/fat.h>.
[[nodiscard]] platform::Result<MachOImage> readMachOImage(QIODevice &file);
/// The same of a file, whose name the error begins with. A link is followed.
[[nodiscard]] platform::Result<MachOImage> readMachOImage(const QString &path);

/// "x86_64", "arm64e", …; "cpu 7:3" for one without a name.
[[nodiscard]] QString architectureName(quint32 cpuType, quint32 cpuSubtype);

/// "13.5" or "10.15.4" of a packed version.
[[nodiscard]] QString versionText(quint32 packed);

/// Bytes of an open file; less of them, or none, where the file does not give them.
[[nodiscard]] QByteArray bytesAt(QIODevice &file, quint64 offset, quint64 length);

} // namespace toolchain::codesignature
