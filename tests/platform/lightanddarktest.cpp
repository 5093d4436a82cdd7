// Whether the desktop is light or dark, by its portal on a bus of the test's own.

#include "desktopbus.h"
#include "eventwait.h"
#include "platform/qt/desktopappearance.h"

#include <QDBusVariant>

using namespace Qt::StringLiterals;
using namespace platform;

namespace {

/// The desktop's portal for settings, which knows the one setting.
class SettingsPortal : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    uint scheme = 0;

public Q_SLOTS:
    QDBusVariant Read(const QString &group, const QString &key)
    {
        if (group != "org.freedesktop.appearance"_L1 || key != "color-scheme"_L1)
            return QDBusVariant(u"another setting"_s);
        return QDBusVariant(QVariant::fromValue(QDBusVariant(QVariant(scheme))));
    }
};

class LightAndDark : public Desktop {
protected:
    using Scheme = DesktopAppearance::Scheme;

    void servePortal(uint scheme)
    {
        portal.scheme = scheme;
        serve(u"org.freedesktop.portal.Desktop"_s, portalPath, &portal);
    }
    void sendChange(const QString &key, uint scheme)
    {
        QDBusMessage signal =
            QDBusMessage::createSignal(portalPath, u"org.freedesktop.portal.Settings"_s, u"SettingChanged"_s);
        signal << u"org.freedesktop.appearance"_s << key
               << QVariant::fromValue(QDBusVariant(QVariant(scheme)));
        ASSERT_TRUE(desktop.send(signal));
    }

    const QString portalPath = u"/org/freedesktop/portal/desktop"_s;
    SettingsPortal portal;
};

} // namespace

TEST_F(LightAndDark, isReadAtTheStart)
{
    servePortal(1);
    const DesktopAppearance appearance(application);
    EXPECT_EQ(appearance.scheme(), Scheme::noPreference) << "nobody waits for the answer";
    EXPECT_TRUE(waitFor([&] { return appearance.scheme() == Scheme::dark; }));
}

TEST_F(LightAndDark, isFollowedAndEachChangeToldOnce)
{
    servePortal(2);
    const DesktopAppearance appearance(application);
    int changes = 0;
    QObject::connect(&appearance, &DesktopAppearance::changed, &appearance, [&] { ++changes; });
    ASSERT_TRUE(waitFor([&] { return appearance.scheme() == Scheme::light; }));
    sendChange(u"color-scheme"_s, 2);
    sendChange(u"contrast"_s, 1);
    sendChange(u"color-scheme"_s, 1);
    ASSERT_TRUE(waitFor([&] { return appearance.scheme() == Scheme::dark; }));
    EXPECT_EQ(changes, 2);
    sendChange(u"color-scheme"_s, 77);
    EXPECT_TRUE(waitFor([&] { return appearance.scheme() == Scheme::noPreference; }));
}

TEST_F(LightAndDark, ofADesktopWithoutAPortalIsNoPreference)
{
    const DesktopAppearance appearance(application);
    settle();
    QCoreApplication::processEvents();
    EXPECT_EQ(appearance.scheme(), Scheme::noPreference);
}

#include "lightanddarktest.moc"
