#pragma once

#include "platform/window.h"

#include <QDBusArgument>

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
