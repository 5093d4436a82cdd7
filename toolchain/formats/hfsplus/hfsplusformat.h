#pragma once

#include <QtGlobal>

/// Numbers of the HFS+ format.
/// Format: Apple Technical Note TN1150.
namespace toolchain::hfsplus {

inline constexpr quint64 volumeHeaderOffset = 1024;
inline constexpr qsizetype volumeHeaderSize = 512;
inline constexpr quint16 signature = 0x482b; ///< "H+"
inline constexpr quint16 caseSensitiveSignature = 0x4858; ///< "HX"
inline constexpr quint16 version = 4;
inline constexpr quint32 wasUnmounted = 1 << 8;

inline constexpr quint32 rootParent = 1;
inline constexpr quint32 rootFolder = 2;
inline constexpr quint32 extentsFile = 3;
inline constexpr quint32 catalogFile = 4;
inline constexpr quint32 attributesFile = 8;
inline constexpr quint32 firstUserItem = 16;

/// Where the fork of each special file is described, counted from the volume header.
inline constexpr qsizetype extentsFork = 192;
inline constexpr qsizetype catalogFork = 272;
inline constexpr qsizetype attributesFork = 352;
inline constexpr qsizetype forkSize = 80;
inline constexpr int extentsInFork = 8;

inline constexpr quint16 folderRecord = 1;
inline constexpr quint16 fileRecord = 2;
inline constexpr quint16 folderThread = 3;
inline constexpr quint16 fileThread = 4;

/// What the flags of a file's or folder's record tell.
inline constexpr quint16 threadExists = 0x0002;
inline constexpr quint16 hasAttributes = 0x0004;
inline constexpr quint16 isInLinkChain = 0x0020;
inline constexpr quint16 hasDateAdded = 0x0080; ///< among the Finder's information, in seconds since 1970
inline constexpr qsizetype dateAddedOffset = 20;

/// The kinds of records in the attributes' tree.
inline constexpr quint32 inlineAttribute = 0x10;
inline constexpr quint32 forkAttribute = 0x20;
inline constexpr quint32 moreOfForkAttribute = 0x30;
inline constexpr qsizetype longestInlineAttribute =
    3802; ///< bytes; as much as macOS keeps so in nodes of 8 KiB
inline constexpr qsizetype longestAttributeName = 127; ///< UTF-16 units

/// The folder in the root folder that holds what hard links stand for, in files called iNode and a number.
/// Its name begins with four NULs.
inline constexpr char16_t linksFolder[] = u"\0\0\0\0HFS+ Private Data";
inline constexpr qsizetype linksFolderLength = 21;
/// A record's hint at the text encoding that its name came from, as TextCommon.h of Apple's headers makes up
/// such numbers: Unicode in its canonical composed variant. macOS does not look at it; names come back here
/// as they were by it.
inline constexpr quint32 composedNameEncoding = 0x00030103;

inline constexpr qsizetype finderInfoSize =
    32; ///< bytes of a record, that of the folder or file and more of it

inline constexpr qint8 leafNode = -1;
inline constexpr qint8 indexNode = 0;
inline constexpr qint8 headerNode = 1;
inline constexpr qsizetype nodeDescriptorSize = 14;

/// Seconds from the first moment of 1904, from which HFS+ counts, to that of 1970.
inline constexpr qint64 secondsBefore1970 = 2'082'844'800;

} // namespace toolchain::hfsplus
