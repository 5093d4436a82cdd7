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
inline constexpr quint32 firstUserItem = 16;

/// Where the fork of each special file is described, counted from the volume header.
inline constexpr qsizetype allocationFork = 112;
inline constexpr qsizetype extentsFork = 192;
inline constexpr qsizetype catalogFork = 272;
inline constexpr qsizetype forkSize = 80;
inline constexpr int extentsInFork = 8;

inline constexpr quint16 folderRecord = 1;
inline constexpr quint16 fileRecord = 2;
inline constexpr quint16 folderThread = 3;
inline constexpr quint16 fileThread = 4;

inline constexpr qint8 leafNode = -1;
inline constexpr qint8 indexNode = 0;
inline constexpr qint8 headerNode = 1;
inline constexpr qsizetype nodeDescriptorSize = 14;

/// Seconds from the first moment of 1904, from which HFS+ counts, to that of 1970.
inline constexpr qint64 secondsBefore1970 = 2'082'844'800;

} // namespace toolchain::hfsplus
