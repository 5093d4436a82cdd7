#pragma once

#include "platform/propertylist/propertylist.h"

/// What the two text forms of a property list, XML and old-style, have in common.
namespace platform::propertylist {

/// Decodes by byte order mark, by the zero bytes of UTF-16 in a "<", by an XML declaration, or else as UTF-8.
/// U+0000 stands for bytes that are no text in that encoding.
[[nodiscard]] Result<QString> decodeListText(const QByteArray &data);

/// The place of the character at that offset as an error begins with it: "Line 4, column 12: ".
[[nodiscard]] QString placeInText(QStringView text, qsizetype offset);

/// The error for text with a U+0000 in it, at the first one; null when there is none.
[[nodiscard]] QString undecodedBytes(QStringView text);

} // namespace platform::propertylist
