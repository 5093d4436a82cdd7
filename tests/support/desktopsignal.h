#pragma once

#include "platform/qt/desktopappearance.h"

#include <QDBusMessage>
#include <QDBusVariant>

/// Has the appearance hear the desktop's word for its colours: 0 no preference, 1 dark, 2 light, as the
/// desktop portal's Settings interface has them. For programs that link the desktop's platform.
inline void sayColourScheme(platform::DesktopAppearance &desktop, uint scheme)
{
    QDBusMessage signal = QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/portal/desktop"),
                                                     QStringLiteral("org.freedesktop.portal.Settings"),
                                                     QStringLiteral("SettingChanged"));
    signal << QStringLiteral("org.freedesktop.appearance") << QStringLiteral("color-scheme")
           << QVariant::fromValue(QDBusVariant(QVariant(scheme)));
    if (!QMetaObject::invokeMethod(&desktop, "settingChanged", Q_ARG(QDBusMessage, signal)))
        qFatal("the appearance does not hear the desktop");
}
