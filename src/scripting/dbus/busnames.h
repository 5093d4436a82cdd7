#pragma once

#include <QString>

namespace sealwright {

/// Names that the application and its client agree on.
namespace bus {

inline const QString service = QStringLiteral("org.sealwright.Sealwright");
inline const QString applicationPath = QStringLiteral("/org/sealwright/Sealwright");
inline const QString documentsPath = QStringLiteral("/org/sealwright/Sealwright/document");
inline const QString windowsPath = QStringLiteral("/org/sealwright/Sealwright/window");

inline const QString applicationInterface = QStringLiteral("org.sealwright.Application");
inline const QString documentInterface = QStringLiteral("org.sealwright.Document");
inline const QString windowInterface = QStringLiteral("org.sealwright.Window");

// https://specifications.freedesktop.org/desktop-entry-spec/latest/dbus.html
inline const QString desktopInterface = QStringLiteral("org.freedesktop.Application");
// https://dbus.freedesktop.org/doc/dbus-specification.html#standard-interfaces
inline const QString objectManagerInterface = QStringLiteral("org.freedesktop.DBus.ObjectManager");
inline const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
inline const QString introspectableInterface = QStringLiteral("org.freedesktop.DBus.Introspectable");
inline const QString peerInterface = QStringLiteral("org.freedesktop.DBus.Peer");

/// Whether a text is a file as it goes over the bus.
[[nodiscard]] inline bool isFileUrl(const QString &text)
{
    return text.startsWith(QStringLiteral("file:///"));
}

/// The last element of a document's path: its identifier with "_" for whatever a path may not hold.
[[nodiscard]] inline QString pathElement(QString uniqueID)
{
    for (QChar &letter : uniqueID) {
        const bool isPlain = letter.unicode() < 0x80 && letter.isLetterOrNumber();
        if (!isPlain)
            letter = u'_';
    }
    return uniqueID;
}

} // namespace bus

namespace buserror {

inline const QString failed = QStringLiteral("org.freedesktop.DBus.Error.Failed");
inline const QString invalidArgs = QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs");
inline const QString limitsExceeded = QStringLiteral("org.freedesktop.DBus.Error.LimitsExceeded");
inline const QString propertyReadOnly = QStringLiteral("org.freedesktop.DBus.Error.PropertyReadOnly");
inline const QString unknownObject = QStringLiteral("org.freedesktop.DBus.Error.UnknownObject");
inline const QString unknownInterface = QStringLiteral("org.freedesktop.DBus.Error.UnknownInterface");
inline const QString unknownMethod = QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod");
inline const QString unknownProperty = QStringLiteral("org.freedesktop.DBus.Error.UnknownProperty");

// A script error's name is one of these prefixes and the number's digits.
inline const QString scriptErrorPrefix = QStringLiteral("org.sealwright.Error.N");
inline const QString negativeScriptErrorPrefix = QStringLiteral("org.sealwright.Error.Minus");

} // namespace buserror

} // namespace sealwright
