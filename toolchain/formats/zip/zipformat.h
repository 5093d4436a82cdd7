#pragma once

#include "formats/littleendian.h"

/// Numbers of zip archives. Format: PKWARE's APPNOTE.TXT, and the Info-ZIP project's extra field for times.
namespace toolchain::zip {

inline constexpr quint32 localSignature = 0x04034b50;
inline constexpr quint32 centralSignature = 0x02014b50;
inline constexpr quint32 endSignature = 0x06054b50;
inline constexpr quint32 end64Signature = 0x06064b50;
inline constexpr quint32 locatorSignature = 0x07064b50;

inline constexpr qsizetype localSize = 30; ///< of a local header without name and extra fields
inline constexpr qsizetype centralSize = 46; ///< of a directory's entry, likewise
inline constexpr qsizetype endSize = 22;
inline constexpr qsizetype end64Size = 56;
inline constexpr qsizetype locatorSize = 20;

inline constexpr quint16 isEncrypted = 0x0001;
inline constexpr quint16 storedMethod = 0;
inline constexpr quint16 deflateMethod = 8;
inline constexpr quint16 madeOnUnix = 3 << 8;
inline constexpr quint16 sizesField = 0x0001; ///< the extra field with what takes 64 bits
inline constexpr quint16 timesField = 0x5455; ///< the extra field with times in seconds since 1970
inline constexpr quint32 in64 = 0xffffffff; ///< a number that stands in the extra field

} // namespace toolchain::zip
