#pragma once

#include "platform/propertylist/propertylist.h"

/// One reader for each form of a property list.
namespace platform::propertylist {

/// The XML form of the DTD "PropertyList-1.0". An encoding that its declaration names no longer counts.
[[nodiscard]] Result<QVariant> readXmlList(const QString &text);

/// The binary form, as its public header comment in Apple's CFBinaryPList.c lays it out.
[[nodiscard]] Result<QVariant> readBinaryList(const QByteArray &data);

/// The text form of Apple's "Old-Style ASCII Property Lists", and the strings file, which is a dictionary
/// without its braces.
[[nodiscard]] Result<QVariant> readTextList(const QString &text);

} // namespace platform::propertylist
