#pragma once

#include "platform/systemappearance.h"

#include <QPalette>

namespace platform {
class DistributedNotifications;
class Preferences;
} // namespace platform

namespace sealwright {

/// Keeps the whole application light or dark as the desktop is, while it runs. What the desktop says goes
/// before the palette that it gives its programs: not every desktop changes both. The preference
/// `AppleInterfaceStyle` follows, and a change is posted to whoever observes it. Main thread.
class Appearance : public QObject {
    Q_OBJECT

public:
    Appearance(const platform::SystemAppearance &desktop, platform::Preferences &preferences,
               platform::DistributedNotifications &notifications);

    static bool isDark(const QPalette &palette);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void follow();
    void applyPalette();
    void remember(bool isDark);

    const platform::SystemAppearance &m_desktop;
    platform::Preferences &m_preferences;
    platform::DistributedNotifications &m_notifications;
    bool m_isApplying = false;
};

} // namespace sealwright
