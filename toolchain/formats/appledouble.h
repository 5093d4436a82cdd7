#pragma once

#include "platform/result.h"

#include <QByteArray>
#include <QMap>

/// AppleDouble files: the attributes, the Finder's information and the resource fork of a file in a file of
/// their own. Format: RFC 1740, appendix B; the attributes lie behind the Finder's information as
/// bsd/vfs/vfs_xattr.c of Apple's published kernel sources describes.
namespace toolchain::appledouble {

inline constexpr const char *resourceFork = "com.apple.ResourceFork";
inline constexpr const char *finderInfo = "com.apple.FinderInfo";

/// Whether bytes begin as an AppleDouble file does.
[[nodiscard]] bool isAppleDouble(QByteArrayView bytes);

/// The bytes of a file with these attributes, by macOS's names. Finder information is filled up or cut to 32
/// bytes.
[[nodiscard]] QByteArray fileWith(const QMap<QByteArray, QByteArray> &attributes);

/// The attributes that a file holds; Finder information that is all zeros counts as none, and so does an
/// empty resource fork. An error says what of the file is damaged.
[[nodiscard]] platform::Result<QMap<QByteArray, QByteArray>> attributesIn(QByteArrayView bytes);

} // namespace toolchain::appledouble
