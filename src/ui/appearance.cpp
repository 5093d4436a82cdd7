#include "ui/appearance.h"

#include "app/preferencekeys.h"
#include "platform/notifications.h"
#include "platform/preferences.h"
#include "ui/controlstyle.h"
#include "ui/theme.h"

#include <QApplication>
#include <QEvent>
#include <QScopedValueRollback>
#include <QStyle>

namespace sealwright {

using Scheme = platform::SystemAppearance::Scheme;

namespace {

constexpr QRgb darkWindow = 0xff343438;
constexpr QRgb darkBase = 0xff1c1c1e;
constexpr QRgb darkButton = 0xff46464b;
constexpr QRgb darkText = 0xffe6e6e8;
constexpr QRgb darkDimmed = 0xffa0a0a6;
constexpr QRgb darkHighlight = 0xff3d7bd9;
constexpr QRgb darkLink = 0xff6fa8ff;
constexpr QRgb lightWindow = 0xfff2f2f4;
constexpr QRgb lightHighlight = 0xff2f6fd0;

QPalette darkPalette()
{
    QPalette palette{QColor(darkButton), QColor(darkWindow)};
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText,
                            QPalette::BrightText})
        palette.setColor(role, QColor(darkText));
    palette.setColor(QPalette::Base, QColor(darkBase));
    palette.setColor(QPalette::AlternateBase, QColor(darkWindow));
    palette.setColor(QPalette::ToolTipBase, QColor(darkButton));
    palette.setColor(QPalette::PlaceholderText, QColor(darkDimmed));
    palette.setColor(QPalette::Highlight, QColor(darkHighlight));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(darkLink));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(darkDimmed));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(darkButton));
    return palette;
}

QPalette lightPalette()
{
    QPalette palette{QColor(lightWindow)};
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::Highlight, QColor(lightHighlight));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

} // namespace

Appearance::Appearance(const platform::SystemAppearance &desktop, platform::Preferences &preferences,
                       platform::DistributedNotifications &notifications)
    : m_desktop(desktop)
    , m_preferences(preferences)
    , m_notifications(notifications)
{
    connect(&desktop, &platform::SystemAppearance::changed, this, &Appearance::follow);
    if (!qobject_cast<ControlStyle *>(QApplication::style()))
        QApplication::setStyle(new ControlStyle);
    qApp->installEventFilter(this);
    follow();
}

bool Appearance::isDark(const QPalette &palette)
{
    return theme::isDark(palette);
}

bool Appearance::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange && !m_isApplying)
        follow();
    return QObject::eventFilter(watched, event);
}

void Appearance::follow()
{
    const QScopedValueRollback applying(m_isApplying, true);
    applyPalette();
    remember(isDark(QApplication::palette()));
}

void Appearance::applyPalette()
{
    QApplication::setPalette(QPalette()); // the one that the desktop gives
    QPalette palette = QApplication::palette();
    const bool wantsDark = m_desktop.scheme() == Scheme::dark;
    if (m_desktop.scheme() != Scheme::noPreference && wantsDark != isDark(palette))
        palette = wantsDark ? darkPalette() : lightPalette();
    QApplication::setPalette(theme::readable(palette));
}

void Appearance::remember(bool isDark)
{
    const bool wasDark = m_preferences.string(key::AppleInterfaceStyle) == darkInterfaceStyle;
    if (isDark == wasDark)
        return;
    if (isDark)
        m_preferences.setValue(key::AppleInterfaceStyle, darkInterfaceStyle.toString());
    else
        m_preferences.remove(key::AppleInterfaceStyle);
    m_notifications.post(platform::themeChangedNotification.toString());
}

} // namespace sealwright
