// Launch: the order of its steps, the search for the notary tool and the end without one. And the small
// answers that the application gives.

#include "app/preferencekeys.h"
#include "document/mainwincontroller.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString xcrun = u"/usr/bin/xcrun"_s;
const QString altoolInTransporter =
    u"/Contents/Frameworks/ITunesServices.framework/Frameworks/ITunesSoftwareService.framework/Support/altool"_s;

class Launch : public testing::Test {
protected:
    /// Its path, with a tool inside that runs.
    QString installTransporter()
    {
        const QString place = u"/Applications/Transporter.app"_s;
        host.tools.add(place + altoolInTransporter);
        const QString path = host.tools.root() + place;
        host.workspace.installed.insert(u"com.apple.TransporterApp"_s, path);
        return path;
    }

    TestHost host;
};

} // namespace

TEST_F(Launch, opensOneEmptyDocumentAndIsReady)
{
    host.launch();
    ASSERT_EQ(host.application().allControllers().size(), 1);
    EXPECT_EQ(host.window().title(), u"Untitled"_s);
    EXPECT_EQ(host.document().statusString(), u"ready"_s);
    EXPECT_EQ(host.application().statusString(), u"ready"_s);
    EXPECT_EQ(host.updater.sendsSystemProfile, true);
    EXPECT_EQ(host.applicationHost.onScreen, QList<FakeWindow *>{&host.window()});
}

TEST_F(Launch, readsTheIdentitiesBeforeItProbesTheNotaryTool)
{
    host.application().applicationWillFinishLaunching();
    EXPECT_EQ(host.tools.calls(), (QList<ToolCall>{{u"security"_s, {u"find-identity"_s, u"-v"_s}}}));
    EXPECT_EQ(host.application().statusString(), u"loading"_s);
    EXPECT_TRUE(host.application().allControllers().isEmpty());
    EXPECT_NE(host.application().taskMaster(), nullptr);
    EXPECT_NE(host.application().uploadTaskMaster(), nullptr);
    EXPECT_NE(host.application().taskMaster(), host.application().uploadTaskMaster());
    EXPECT_TRUE(host.userNotifications.shouldPresent);
    host.application().applicationDidFinishLaunching();
    EXPECT_EQ(host.tools.calls().last(), (ToolCall{u"altool-h"_s, {u"altool"_s, u"-h"_s}}));
    EXPECT_EQ(host.tools.calls().size(), 2);
}

TEST_F(Launch, isStillLoadingWhenTheEmptyDocumentIsThere)
{
    bool wasCalled = false;
    host.updater.onCall = [&] {
        wasCalled = true;
        EXPECT_EQ(host.application().allControllers().size(), 1);
        EXPECT_EQ(host.application().statusString(), u"loading"_s);
        EXPECT_TRUE(host.distributedNotifications.handlers.isEmpty());
    };
    host.launch();
    EXPECT_TRUE(wasCalled);
    EXPECT_EQ(host.distributedNotifications.handlers.keys(),
              QStringList{u"com.c-command.DropDMG.ConfigurationsChanged"_s});
}

TEST_F(Launch, comesToTheFrontBeforeItsDocumentIsShown)
{
    host.launch();
    EXPECT_EQ(host.applicationHost.activationsWhenShown, 1);
    host.application().newDocument(0);
    EXPECT_EQ(host.applicationHost.activations, 1)
        << "a document of the menu's own brings nothing to the front";
    host.application().addedDocument();
    EXPECT_EQ(host.applicationHost.activationsWhenShown, 2);
}

TEST_F(Launch, loadsDroppedFilesAfterTheUpdaterHasBeenAsked)
{
    host.updater.onCall = [&] { EXPECT_TRUE(host.application().allControllers().isEmpty()); };
    host.application().applicationWillFinishLaunching();
    host.application().applicationOpenFiles({u"/items/Foo.app"_s});
    host.application().applicationDidFinishLaunching();
    EXPECT_EQ(host.application().allControllers().size(), 1);
}

TEST_F(Launch, isReadyBehindTheDroppedFiles)
{
    QList<qsizetype> documentsWhenReady;
    QObject::connect(&host.application().statusString, &Observable::changed, [&] {
        if (host.application().statusString() == status::ready)
            documentsWhenReady.append(host.application().allControllers().size());
    });
    host.application().applicationWillFinishLaunching();
    host.application().applicationOpenFiles({u"/items/First.app"_s, u"/items/Last.app"_s});
    host.application().applicationDidFinishLaunching();
    EXPECT_EQ(documentsWhenReady, QList<qsizetype>{2});
}

TEST_F(Launch, asksForDropDMGBehindTheIdentities)
{
    host.workspace.running.insert(u"com.c-command.DropDMG"_s);
    QStringList identitiesWhenAsked;
    host.appleScript.whileRunning = [&] { identitiesWhenAsked = host.application().identities(); };
    host.application().applicationWillFinishLaunching();
    EXPECT_EQ(identitiesWhenAsked, QStringList{u"Example Corp (A1B2C3D4E5)"_s});
}

// The search order

namespace {

struct OrderRow {
    const char *name;
    bool optionKey;
    bool preferXcode;
    bool xcodeFirst;
};

class SearchOrder : public Launch, public testing::WithParamInterface<OrderRow> {
protected:
    SearchOrder()
    {
        host.applicationHost.optionKey = GetParam().optionKey;
        host.preferences.setValue(key::preferXcodeAltool, GetParam().preferXcode);
    }
};

} // namespace

TEST_P(SearchOrder, decidesWhichToolIsUsedWhereBothAreThere)
{
    const QString transporter = installTransporter();
    host.launch();
    EXPECT_EQ(host.application().altoolPath(),
              GetParam().xcodeFirst ? xcrun : transporter + altoolInTransporter);
}

TEST_P(SearchOrder, fallsBackToXcode)
{
    host.launch();
    EXPECT_EQ(host.application().altoolPath(), xcrun);
}

TEST_P(SearchOrder, fallsBackToTransporter)
{
    host.workspace.running.clear();
    const QString transporter = installTransporter();
    host.launch();
    EXPECT_EQ(host.application().altoolPath(), transporter + altoolInTransporter);
    const bool hasTriedXcode = host.workspace.launched.contains(u"com.apple.dt.Xcode"_s);
    EXPECT_EQ(hasTriedXcode, GetParam().xcodeFirst) << "Xcode is started only where it comes first";
}

INSTANTIATE_TEST_SUITE_P(Keys, SearchOrder,
                         testing::Values(OrderRow{"noKeyPreferringXcode", false, true, true},
                                         OrderRow{"noKeyPreferringTransporter", false, false, false},
                                         OrderRow{"optionKeyPreferringXcode", true, true, false},
                                         OrderRow{"optionKeyPreferringTransporter", true, false, false}),
                         [](const auto &row) { return row.param.name; });

// Without a notary tool

TEST_F(Launch, withoutANotaryToolSaysSoAndQuits)
{
    host.workspace.running.clear();
    host.launch();
    ASSERT_EQ(host.applicationHost.modalAlerts.size(), 1);
    const platform::Alert alert = host.applicationHost.modalAlerts.first();
    EXPECT_EQ(alert.messageText, u"Xcode or Transporter Not Found"_s);
    EXPECT_EQ(
        alert.informativeText,
        u"Notarization cannot be performed without either Xcode.app 10.2 or later installed and running, or Transporter.app 1.1 or later installed. Both are free downloads from the Apple Store. You should install one or the other and run it at least once before trying to run Sealwright again.\n\nSealwright will now quit."_s);
    EXPECT_TRUE(alert.buttons.isEmpty());
    EXPECT_EQ(host.applicationHost.beeps, 1);
    EXPECT_TRUE(host.applicationHost.isTerminated);
    EXPECT_EQ(host.application().statusString(), u"interacting"_s);
    EXPECT_TRUE(host.application().allControllers().isEmpty());
    EXPECT_TRUE(host.distributedNotifications.handlers.isEmpty());
    EXPECT_FALSE(host.updater.sendsSystemProfile);
}

TEST_F(Launch, withoutANotaryToolOffersTheSettingsAndStartsAnewWithAnotherFolderOfTools)
{
    host.workspace.running.clear();
    host.applicationHost.answerModal = [] { return platform::alertSecondButton; };
    host.applicationHost.whileInToolSettings = [](platform::Preferences &preferences) {
        preferences.setValue(key::toolRoot, u"/opt/tools"_s);
    };
    host.launch();
    EXPECT_EQ(host.applicationHost.modalAlerts.first().remedy, u"Settings…"_s);
    EXPECT_EQ(host.applicationHost.toolSettings, 1);
    EXPECT_TRUE(host.applicationHost.isRelaunched);
    EXPECT_TRUE(host.application().hasLaunchFailed()) << "and scripts are told so until then";
}

TEST_F(Launch, withoutANotaryToolQuitsFromSettingsThatWereLeftAsTheyAre)
{
    host.workspace.running.clear();
    host.applicationHost.answerModal = [] { return platform::alertSecondButton; };
    host.launch();
    EXPECT_EQ(host.applicationHost.toolSettings, 1);
    EXPECT_FALSE(host.applicationHost.isRelaunched);
    EXPECT_TRUE(host.applicationHost.isTerminated);
}

TEST_F(Launch, withoutANotaryToolAnOKOpensNoSettings)
{
    host.workspace.running.clear();
    host.launch();
    EXPECT_EQ(host.applicationHost.toolSettings, 0);
    EXPECT_FALSE(host.applicationHost.isRelaunched);
}

namespace {

class AlertAnswer : public Launch, public testing::WithParamInterface<int> { };

} // namespace

TEST_P(AlertAnswer, toTheAlertBehindTheBeepIsFollowedByTheEnd)
{
    host.workspace.running.clear();
    host.applicationHost.answerModal = [this] {
        EXPECT_EQ(host.applicationHost.beeps, 1);
        EXPECT_FALSE(host.applicationHost.isTerminated);
        return GetParam();
    };
    host.launch();
    EXPECT_EQ(host.applicationHost.modalAlerts.size(), 1);
    EXPECT_TRUE(host.applicationHost.isTerminated);
}

INSTANTIATE_TEST_SUITE_P(Answers, AlertAnswer,
                         testing::Values(platform::alertFirstButton, platform::alertSecondButton, 0, -1),
                         [](const auto &row) { return "number" + std::to_string(row.index); });

// The end

TEST_F(Launch, closingAllWindowsLeavesTheApplicationRunning)
{
    host.launch();
    host.window().performClose();
    host.settle();
    EXPECT_TRUE(host.application().allControllers().isEmpty());
    EXPECT_FALSE(host.application().applicationShouldTerminateAfterLastWindowClosed());
    EXPECT_FALSE(host.applicationHost.isTerminated);
}

TEST_F(Launch, aSignalThatEndsItIsTheLastLineOfALogThatIsOpen)
{
    host.launch();
    host.application().newDocument(0);
    MainWinController &busy = host.document();
    busy.isBusy.set(true);
    busy.loggingToFile.set(true);
    host.openLog(busy, host.item(u"log.txt"_s), u"head"_s);
    host.application().endBySignal(u"SIGTERM"_s);
    busy.logString(u"a worker's late line"_s);
    EXPECT_TRUE(host.text(u"log.txt"_s)
                    .endsWith(u": Sealwright has been ended by SIGTERM while this was going on.\n"_s));
    EXPECT_TRUE(host.application().allControllers().first()->statusTextView.string().isEmpty())
        << "of an idle document there is nothing to say";
    EXPECT_TRUE(host.applicationHost.isTerminated);
}

TEST_F(Launch, terminationStopsWatchingDropDMG)
{
    host.launch();
    host.application().applicationWillTerminate();
    EXPECT_TRUE(host.distributedNotifications.handlers.isEmpty());
    EXPECT_EQ(host.application().allControllers().size(), 1);
}

// Status

TEST_F(Launch, theApplicationsStatusIgnoresNoWordAndTheSameWord)
{
    host.launch();
    int changes = 0;
    QObject::connect(&host.application().statusString, &Observable::changed, &host.application(),
                     [&changes] { ++changes; });
    host.application().changeStatus({});
    host.application().changeStatus(u"ready");
    EXPECT_EQ(changes, 0);
    host.application().changeStatus(u"interacting");
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(host.application().statusString(), u"interacting"_s);
}

TEST_F(Launch, aBusyDocumentLeavesTheApplicationReady)
{
    host.launch();
    host.document().changeStatus(status::submitting);
    EXPECT_EQ(host.application().statusString(), u"ready"_s);
}

// Notifications and support

namespace {

struct NotificationRow {
    const char *name;
    QVariantMap userInfo;
    bool isPresented;
};

class PresentedNotification : public testing::TestWithParam<NotificationRow> { };

} // namespace

TEST_P(PresentedNotification, followsItsUserInfo)
{
    platform::UserNotification notification;
    notification.userInfo = GetParam().userInfo;
    EXPECT_EQ(AppDelegate::shouldPresentNotification(notification), GetParam().isPresented);
}

INSTANTIATE_TEST_SUITE_P(
    UserInfo, PresentedNotification,
    testing::Values(NotificationRow{"wanted", {{u"userInfoShowWhenActiveKey"_s, true}}, true},
                    NotificationRow{"notWanted", {{u"userInfoShowWhenActiveKey"_s, false}}, false},
                    NotificationRow{"withoutTheKey", {}, false}),
    [](const auto &row) { return row.param.name; });

TEST_F(Launch, theSupportActionsOpenTheirPages)
{
    host.launch();
    host.application().doSendUsEmail();
    host.application().doVisitOurWebsite();
    host.application().doShowUsersForum();
    EXPECT_EQ(host.workspace.opened,
              (QList<QUrl>{QUrl(u"mailto:help@example.com"_s), QUrl(u"https://example.com/"_s),
                           QUrl(u"https://example.com/forum"_s)}));
}
