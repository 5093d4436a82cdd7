#include "about/aboutcontroller.h"

#include "about/versionline.h"
#include "app/preferencekeys.h"
#include "support/items.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString themeChanged = u"AppleInterfaceThemeChangedNotification"_s;

class AboutPanel : public testing::Test {
protected:
    AboutPanel() { host.launch(); }

    void show() { host.application().doShowAboutPanel(); }
    AboutController &about() { return AboutController::instance(host.application()); }
    void expectColours(double title, double version)
    {
        EXPECT_EQ(about().mTitleView.textColor(), (GreyColour{title, 1.0}));
        EXPECT_EQ(about().mCopyrightView.textColor(), (GreyColour{title, 1.0}));
        EXPECT_EQ(about().mVersionView.textColor(), (GreyColour{version, 1.0}));
    }

    TestHost host;
};

} // namespace

TEST_F(AboutPanel, isMadeOnTheFirstRequestAndUsedAgain)
{
    EXPECT_EQ(host.aboutPanel().made, 0);
    show();
    AboutController *const first = &about();
    show();
    EXPECT_EQ(&about(), first);
    EXPECT_EQ(host.aboutPanel().made, 1);
    EXPECT_EQ(host.aboutPanel().centered, 1);
    EXPECT_EQ(host.aboutPanel().shown, 2);
}

TEST_F(AboutPanel, tellsTheTitleTheVersionAndTheCopyright)
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    show();
    QLocale::setDefault(before);
    EXPECT_EQ(about().mTitleView.stringValue(), u"Sealwright"_s);
    EXPECT_EQ(about().mVersionView.stringValue(),
              u"v1.2.3 (45) October 9, 2026, %1 (%2)"_s.arg(processorText(), AppDelegate::daysToGo()));
    EXPECT_EQ(about().mCopyrightView.stringValue(), u"Copyright © 2026 Example"_s);
}

TEST_F(AboutPanel, buildsTheVersionLineOnceAndNotEachTimeThatItIsShown)
{
    show();
    about().mVersionView.setStringValue(u"as it was"_s);
    show();
    EXPECT_EQ(about().mVersionView.stringValue(), u"as it was"_s);
}

TEST_F(AboutPanel, recoloursTheThreeFieldsAtOnceWhenTheAppearanceChangesWhileItIsOpen)
{
    show();
    expectColours(0.298, 0.4);
    host.preferences.setValue(key::AppleInterfaceStyle, u"Dark"_s);
    host.distributedNotifications.handlers.value(themeChanged)();
    expectColours(0.8, 0.65);
    host.preferences.remove(key::AppleInterfaceStyle);
    host.distributedNotifications.handlers.value(themeChanged)();
    expectColours(0.298, 0.4);
}

TEST_F(AboutPanel, opensInTheDarkColoursOnADarkDesktop)
{
    host.preferences.setValue(key::AppleInterfaceStyle, u"Dark"_s);
    show();
    expectColours(0.8, 0.65);
}

TEST_F(AboutPanel, takesNoOtherWordForDark)
{
    host.preferences.setValue(key::AppleInterfaceStyle, u"dark"_s);
    show();
    expectColours(0.298, 0.4);
}

TEST_F(AboutPanel, showsTheCredits)
{
    items::makeFile(host.creditsFile(), "{\\rtf1{\\b Made by}\\par somebody}");
    show();
    EXPECT_EQ(about().mCreditsView.text(),
              (QList<StyledText>{{u"Made by"_s, true}, {u"\nsomebody"_s, false}}));
}

TEST_F(AboutPanel, withMissingCreditsOpensWithoutThemAndWithoutAnError)
{
    show();
    EXPECT_TRUE(about().mCreditsView.text().isEmpty());
    EXPECT_EQ(host.aboutPanel().shown, 1);
    EXPECT_EQ(host.applicationHost.beeps, 0);
    EXPECT_TRUE(host.applicationHost.modalAlerts.isEmpty());
}

TEST_F(AboutPanel, watchesTheAppearanceFromItsFirstShowingToItsEnd)
{
    about();
    EXPECT_FALSE(host.distributedNotifications.handlers.contains(themeChanged));
    show();
    EXPECT_TRUE(host.distributedNotifications.handlers.contains(themeChanged));
    delete &about();
    EXPECT_FALSE(host.distributedNotifications.handlers.contains(themeChanged));
    show();
    EXPECT_EQ(host.aboutPanel().made, 2) << "after its end the next request makes a new one";
}
