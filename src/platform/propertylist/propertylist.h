#pragma once

#include "platform/result.h"

#include <QByteArray>
#include <QString>
#include <QVariant>

/// Property lists in the forms of Apple's "Property List Programming Guide". All functions may be called from
/// any thread.
///
/// A dictionary is a QVariantMap, an array (or a set of the binary form) a QVariantList, a string a QString,
/// data a QByteArray, a date a QDateTime in UTC, an integer a qlonglong (a qulonglong beyond its range), a
/// real a double, a truth value a bool. A UID of the binary form is a QVariantMap {"CF$UID": number}.
namespace platform {

/// Reads a list in XML, binary (bplist00) or old-style text form, a strings file included, and tells the form
/// by its content. Of two equal keys in a dictionary the last one wins. Empty data, nesting beyond 512 levels
/// and lists that would take more memory than propertylist/limits.h allows are errors. The error says what is
/// wrong and where ("Line 4, column 12: ...", "Byte 37: ...").
[[nodiscard]] Result<QVariant> propertyListFromData(const QByteArray &data);

/// Writes the XML form (DTD "PropertyList-1.0") in UTF-8 with sorted keys, as Apple's tools write it. Takes
/// the types above, integers and reals of any width, and QStringList. A value that a list cannot hold, or
/// text that XML 1.0 cannot hold, is an error, which names the key path at which ("a.b[2]").
[[nodiscard]] Result<QByteArray> xmlPropertyListData(const QVariant &value);

/// The text of a value for a log line: containers in the old-style text form, with sorted keys and four
/// blanks a level; a truth value as 1 or 0; a string at the top level as it is. No line break at the end.
[[nodiscard]] QString propertyListDescription(const QVariant &value);

} // namespace platform
