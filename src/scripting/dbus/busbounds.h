#pragma once

#include <QDBusArgument>

/// A window's bounds as they go over the bus, "(nnnn)": points from the top left corner of the main screen.
struct BusBounds {
    short top = 0;
    short left = 0;
    short bottom = 0;
    short right = 0;
    bool operator==(const BusBounds &) const = default;
};
Q_DECLARE_METATYPE(BusBounds)

inline QDBusArgument &operator<<(QDBusArgument &argument, const BusBounds &bounds)
{
    argument.beginStructure();
    argument << bounds.top << bounds.left << bounds.bottom << bounds.right;
    argument.endStructure();
    return argument;
}

inline const QDBusArgument &operator>>(const QDBusArgument &argument, BusBounds &bounds)
{
    argument.beginStructure();
    argument >> bounds.top >> bounds.left >> bounds.bottom >> bounds.right;
    argument.endStructure();
    return argument;
}
