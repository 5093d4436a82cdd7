#include "about/aboutcontroller.h"

#include "about/credits.h"
#include "about/versionline.h"
#include "app/appdelegate.h"
#include "app/preferencekeys.h"
#include "document/windowfactory.h"
#include "platform/preferences.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr GreyColour darkTitle{0.8, 1.0};
constexpr GreyColour darkVersion{0.65, 1.0};
constexpr GreyColour lightTitle{0.298, 1.0};
constexpr GreyColour lightVersion{0.4, 1.0};

} // namespace

AboutController *AboutController::theController = nullptr;

AboutController &AboutController::instance(AppDelegate &appDelegate)
{
    if (!theController)
        theController = new AboutController(appDelegate);
    return *theController;
}

AboutController::AboutController(AppDelegate &appDelegate)
    : QObject(&appDelegate)
    , m_appDelegate(appDelegate)
    , m_host(appDelegate.host())
{
    mTitleView.setStringValue(u"Sealwright"_s);
}

AboutController::~AboutController()
{
    m_host.distributedNotifications.removeObserver(*this);
    theController = nullptr;
}

void AboutController::showWindow()
{
    if (!m_window) {
        m_window = m_appDelegate.windowFactory().makeAboutPanel(*this);
        windowDidLoad();
    }
    m_window->show();
}

void AboutController::windowDidLoad()
{
    m_window->center();
    _showUserInfo();
    m_host.distributedNotifications.addObserver(*this, platform::themeChangedNotification.toString(),
                                                [this] { appearanceDidChange(); });
    mCreditsView.setText(readCredits(m_appDelegate.configuration().credits));
    appearanceDidChange();
}

void AboutController::_showUserInfo()
{
    const AppDelegate::Configuration &configuration = m_appDelegate.configuration();
    const QVariantMap &information = configuration.information;
    mVersionView.setStringValue(
        versionLine({.shortVersion = information.value(u"CFBundleShortVersionString"_s).toString(),
                     .bundleVersion = information.value(u"CFBundleVersion"_s).toString(),
                     .buildDate = localizedBuildDate(configuration.buildDate),
                     .processor = processorText(),
                     .daysToGo = AppDelegate::daysToGo()}));
    mCopyrightView.setStringValue(information.value(u"NSHumanReadableCopyright"_s).toString());
}

void AboutController::appearanceDidChange()
{
    const bool isDark = m_host.preferences.string(key::AppleInterfaceStyle) == darkInterfaceStyle;
    mTitleView.setTextColor(isDark ? darkTitle : lightTitle);
    mCopyrightView.setTextColor(isDark ? darkTitle : lightTitle);
    mVersionView.setTextColor(isDark ? darkVersion : lightVersion);
}

} // namespace sealwright
