#pragma once

#include "platform/window.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QList>
#include <QMap>
#include <QString>
#include <QUrl>
#include <QVariantMap>

#include <optional>

/// A window's bounds as they go over the bus, "(nnnn)": top, left, bottom, right.
inline QDBusArgument &operator<<(QDBusArgument &argument, const platform::QDRect &bounds)
{
    argument.beginStructure();
    argument << bounds.top << bounds.left << bounds.bottom << bounds.right;
    argument.endStructure();
    return argument;
}

inline const QDBusArgument &operator>>(const QDBusArgument &argument, platform::QDRect &bounds)
{
    argument.beginStructure();
    argument >> bounds.top >> bounds.left >> bounds.bottom >> bounds.right;
    argument.endStructure();
    return argument;
}

namespace sealwright {

/// The properties of one object, by interface.
using BusInterfaceProperties = QMap<QString, QVariantMap>;
using BusManagedObjects = QMap<QDBusObjectPath, BusInterfaceProperties>;

/// How values look on the bus. Any thread.
namespace busvalue {

/// Makes the types above and bounds known to the bus library; before the first message.
void registerTypes();

/// An invalid value and an empty URL become an empty "av", which stands for no value; any other URL becomes
/// its text.
[[nodiscard]] QVariant toBus(const QVariant &value);

/// The value that came over the bus if it has the signature, an invalid one if it stands for no value, and
/// nothing if it is of another type. Whole numbers may have any width, and are numbers as well.
[[nodiscard]] std::optional<QVariant> fromBus(const QVariant &value, const QString &signature);

/// The most characters that a text, or all texts of a list together, may have where a property or a command
/// takes them. A text of hundreds of megabytes would keep the application from answering anybody.
inline constexpr qsizetype mostCharacters = 16LL * 1024 * 1024;
[[nodiscard]] bool isTooLong(const QVariant &value);

/// A text as it can go over the bus, where a null character would end it.
[[nodiscard]] QString withoutNulls(QString text);

/// A text of the form "file:///..." that a file can have; every other text gives an empty URL.
[[nodiscard]] QUrl fileUrl(const QString &text);

} // namespace busvalue

} // namespace sealwright

Q_DECLARE_METATYPE(sealwright::BusInterfaceProperties)
Q_DECLARE_METATYPE(sealwright::BusManagedObjects)
