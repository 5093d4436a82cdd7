#include "ui/appearance.h"

#include "app/preferencekeys.h"
#include "support/desktopsignal.h"
#include "support/fakehost.h"

#include <QApplication>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr uint noPreference = 0;
constexpr uint dark = 1;
constexpr uint light = 2;

/// An application on a desktop whose word the test gives.
class AppearanceTest : public testing::Test {
protected:
    ~AppearanceTest() override { QApplication::setPalette(QPalette()); }

    void say(uint scheme) { sayColourScheme(desktop, scheme); }
    static bool isDark() { return Appearance::isDark(QApplication::palette()); }
    QString style() { return preferences.string(key::AppleInterfaceStyle); }

    platform::DesktopAppearance desktop{QDBusConnection(u"none"_s)};
    MemoryPreferences preferences;
    FakeDistributedNotifications notifications;
};

} // namespace

TEST_F(AppearanceTest, followsTheDesktopWhileItRuns)
{
    const Appearance appearance(desktop, preferences, notifications);
    EXPECT_FALSE(isDark());
    say(dark);
    EXPECT_TRUE(isDark());
    say(light);
    EXPECT_FALSE(isDark());
}

TEST_F(AppearanceTest, remembersADarkDesktopAndPostsEachChangeOnce)
{
    const Appearance appearance(desktop, preferences, notifications);
    EXPECT_TRUE(notifications.posted.isEmpty());
    say(dark);
    EXPECT_EQ(style(), u"Dark"_s);
    say(light);
    EXPECT_TRUE(style().isNull());
    say(noPreference);
    EXPECT_EQ(notifications.posted, QStringList(2, u"AppleInterfaceThemeChangedNotification"_s));
}

TEST_F(AppearanceTest, forgetsTheDarknessOfAnEarlierSession)
{
    preferences.setValue(key::AppleInterfaceStyle, u"Dark"_s);
    const Appearance appearance(desktop, preferences, notifications);
    EXPECT_TRUE(style().isNull());
}

TEST_F(AppearanceTest, withoutAWordOfTheDesktopTheNewPaletteIsTheSign)
{
    const Appearance appearance(desktop, preferences, notifications);
    say(dark);
    say(noPreference);
    EXPECT_FALSE(isDark()) << "the palette that the desktop gives is a light one";
    EXPECT_TRUE(style().isNull());
}

TEST_F(AppearanceTest, textStandsOutInBothPalettes)
{
    const Appearance appearance(desktop, preferences, notifications);
    for (const uint scheme : {dark, light}) {
        say(scheme);
        const QPalette palette = QApplication::palette();
        for (const auto &[text, ground] :
             {std::pair(QPalette::WindowText, QPalette::Window), std::pair(QPalette::Text, QPalette::Base),
              std::pair(QPalette::ButtonText, QPalette::Button),
              std::pair(QPalette::HighlightedText, QPalette::Highlight)})
            EXPECT_GT(qAbs(palette.color(text).lightness() - palette.color(ground).lightness()), 90);
    }
}
