// Which notary tool is used and which version it has.

#include "app/discovery.h"
#include "app/preferencekeys.h"
#include "document/mainwincontroller.h"
#include "support/items.h"
#include "support/testhost.h"

#include <QDeadlineTimer>

#include <gtest/gtest.h>

#include <csignal>

#include <thread>

using namespace Qt::StringLiterals;

namespace {

const QString xcode = u"com.apple.dt.Xcode"_s;
const QString transporter = u"com.apple.TransporterApp"_s;
const QByteArray banner = "Copyright (c) 2009-2020, Apple Inc. Version 4.050.1203\n";

class NotaryTool : public testing::Test {
protected:
    quint64 versionAfterProbe(const ToolAnswer &answer)
    {
        host.tools.answer(u"altool-h"_s, answer);
        host.launch();
        return host.application().altoolVersionNumber();
    }

    TestHost host;
};

} // namespace

TEST_F(NotaryTool, isProbedInTheNameOfNoDocument)
{
    host.tools.answer(u"altool-h"_s, {.output = banner, .hangs = true});
    QString owner;
    std::thread observer([&] {
        const QDeadlineTimer deadline(std::chrono::seconds(60));
        while (host.tools.callsOf(u"altool-h"_s).isEmpty() && !deadline.hasExpired())
            std::this_thread::yield();
        owner = host.application().taskMaster()->ownerID();
        host.tools.release(u"altool-h"_s);
    });
    host.launch();
    observer.join();
    EXPECT_EQ(owner, u"0"_s);
}

// The version in a help text

namespace {

struct BannerRow {
    const char *name;
    QString help;
    quint64 version;
};

class VersionBanner : public testing::TestWithParam<BannerRow> { };

} // namespace

TEST_P(VersionBanner, givesTheMajorVersion)
{
    EXPECT_EQ(discovery::altoolMajorVersion(GetParam().help), GetParam().version);
}

INSTANTIATE_TEST_SUITE_P(
    Helps, VersionBanner,
    testing::Values(
        BannerRow{"ordinary", u"Copyright (c) 2009-2020, Apple Inc. Version 4.050.1203"_s, 4},
        BannerRow{"amongOtherLines", u"altool\nCopyright 2009, Apple Inc. Version 4.0.1\nUsage: altool\n"_s,
                  4},
        BannerRow{"twoBlanks", u"Copyright (c) 2009, Apple Inc. Version  4.050.1203"_s, 4},
        BannerRow{"twoDigits", u"Copyright (c) 2009, Apple Inc. Version 26.10.1"_s, 26},
        BannerRow{"anyCharacterBeforeTheThirdNumber", u"Copyright (c) 2009, Apple Inc. Version 5.10-1"_s, 5},
        BannerRow{"firstOfTwo",
                  u"Copyright (c) 1, Apple Inc. Version 3.0.1\nCopyright (c) 2, Apple Inc. Version 4.0.1"_s,
                  3},
        BannerRow{"old", u"Copyright (c) 2009, Apple Inc. Version 3.2.1"_s, 3},
        BannerRow{"twoNumbersOnly", u"Copyright (c) 2009, Apple Inc. Version 4.5"_s, 1},
        BannerRow{"anotherCharacterBehindTheFirstNumber", u"Copyright (c) 2009, Apple Inc. Version 4-5.1"_s,
                  1},
        BannerRow{"noBlankBeforeTheNumber", u"Copyright (c) 2009, Apple Inc. Version4.5.1"_s, 1},
        BannerRow{"lowerCase", u"copyright (c) 2009, apple inc. version 4.5.1"_s, 1},
        BannerRow{"overTwoLines", u"Copyright (c) 2009, Apple Inc.\nVersion 4.5.1"_s, 1},
        BannerRow{"another", u"Version 4.5.1"_s, 1}, BannerRow{"empty", u""_s, 1}, BannerRow{"none", {}, 1},
        BannerRow{"zero", u"Copyright (c) 2009, Apple Inc. Version 0.5.1"_s, 1},
        BannerRow{"moreThanANumberHolds",
                  u"Copyright (c) 2009, Apple Inc. Version 99999999999999999999999.5.1"_s, 1}),
    [](const auto &row) { return row.param.name; });

// The probe

TEST_F(NotaryTool, theBannerOnStandardOutputCounts)
{
    EXPECT_EQ(versionAfterProbe({.output = banner, .error = "warning\n"}), 4u);
}

TEST_F(NotaryTool, theBannerOnStandardErrorCountsWhereThereIsNoOutput)
{
    EXPECT_EQ(versionAfterProbe({.error = banner}), 4u);
}

TEST_F(NotaryTool, theBannerOnStandardErrorDoesNotCountBesideOutput)
{
    EXPECT_EQ(versionAfterProbe({.output = "Usage: altool\n", .error = banner}), 1u);
}

TEST_F(NotaryTool, theStatusOfTheProbeIsNotLookedAt)
{
    EXPECT_EQ(versionAfterProbe({.status = 1, .output = banner}), 4u);
}

TEST_F(NotaryTool, aProbeThatPrintsNothingCountsAsOld)
{
    EXPECT_EQ(versionAfterProbe({.status = 1}), 1u);
}

TEST_F(NotaryTool, aProbeThatPrintsGarbageCountsAsOld)
{
    EXPECT_EQ(versionAfterProbe({.output = "\xff\xfe\x80 Version 4.0.1"}), 1u);
}

TEST_F(NotaryTool, aBannerWithBytesThatAreNoUtf8StillCounts)
{
    EXPECT_EQ(versionAfterProbe({.output = "Copyright \xa9 2009, Apple Inc. Version 4.0.1"}), 4u);
}

TEST_F(NotaryTool, aProbeThatDiesOfASignalCountsAsOld)
{
    EXPECT_EQ(versionAfterProbe({.signal = SIGKILL}), 1u);
    EXPECT_EQ(host.application().statusString(), u"ready"_s);
}

TEST_F(NotaryTool, aMissingToolShowsOnlyAsAnOldVersion)
{
    host.tools.remove(u"/usr/bin/xcrun"_s);
    host.launch();
    EXPECT_EQ(host.application().altoolVersionNumber(), 1u);
    EXPECT_EQ(host.application().altoolPath(), u"/usr/bin/xcrun"_s);
    EXPECT_EQ(host.application().allControllers().size(), 1);
    EXPECT_TRUE(host.applicationHost.modalAlerts.isEmpty());
    EXPECT_EQ(host.document().ownTaskRunner(), nullptr);
}

TEST_F(NotaryTool, theProbeLeavesTheSharedRunnerIdle)
{
    host.launch();
    EXPECT_TRUE(host.application().taskMaster()->ownerID().isNull());
    EXPECT_FALSE(host.application().taskMaster()->terminateTaskFor(u"0"_s));
}

// What the version decides

TEST_F(NotaryTool, aDocumentOfVersionThreeHasNoOwnRunner)
{
    EXPECT_EQ(versionAfterProbe({.output = "Copyright (c) 2009, Apple Inc. Version 3.2.1\n"}), 3u);
    EXPECT_EQ(host.document().ownTaskRunner(), nullptr);
    EXPECT_FALSE(host.document().chooseProviderButton.isEnabled());
    EXPECT_EQ(host.document().taskRunner(), host.application().taskMaster());
    EXPECT_EQ(host.document().uploadTaskRunner(), host.application().uploadTaskMaster());
}

TEST_F(NotaryTool, aDocumentOfVersionFourHasItsOwnRunnerForBoth)
{
    host.launch();
    const auto own = host.document().ownTaskRunner();
    ASSERT_NE(own, nullptr);
    EXPECT_TRUE(host.document().chooseProviderButton.isEnabled());
    EXPECT_EQ(host.document().taskRunner(), own);
    EXPECT_EQ(host.document().uploadTaskRunner(), own);
    EXPECT_NE(host.application().addedDocument()->ownTaskRunner(), own);
}

TEST_F(NotaryTool, aDocumentKeepsThePathThatItFound)
{
    host.launch();
    host.application().altoolPath.set(u"/elsewhere/altool"_s);
    EXPECT_EQ(host.document().altoolPath(), u"/usr/bin/xcrun"_s);
    EXPECT_EQ(host.application().addedDocument()->altoolPath(), u"/elsewhere/altool"_s);
}

// Xcode and Transporter

TEST_F(NotaryTool, aRunningXcodeIsNotStarted)
{
    EXPECT_TRUE(host.application().checkForXcode());
    EXPECT_TRUE(host.workspace.launched.isEmpty());
    EXPECT_EQ(host.application().altoolPath(), u"/usr/bin/xcrun"_s);
}

TEST_F(NotaryTool, anInstalledXcodeIsStartedInTheBackground)
{
    host.workspace.running.clear();
    host.workspace.installed.insert(xcode, u"/Applications/Xcode.app"_s);
    EXPECT_TRUE(host.application().checkForXcode());
    EXPECT_EQ(host.workspace.launched, QStringList{xcode});
    EXPECT_EQ(host.application().altoolPath(), u"/usr/bin/xcrun"_s);
}

TEST_F(NotaryTool, anXcodeThatCannotBeStartedIsNone)
{
    host.workspace.running.clear();
    EXPECT_FALSE(host.application().checkForXcode());
    EXPECT_EQ(host.workspace.launched, QStringList{xcode});
    EXPECT_TRUE(host.application().altoolPath().isNull());
}

TEST_F(NotaryTool, aMissingTransporterIsNone)
{
    EXPECT_FALSE(host.application().checkForTransporter());
    EXPECT_TRUE(host.application().altoolPath().isNull());
}

TEST_F(NotaryTool, aTransporterWithoutTheToolIsNone)
{
    items::makeFolder(host.item(u"Transporter.app/Contents"_s));
    host.workspace.installed.insert(transporter, host.item(u"Transporter.app"_s));
    host.application().altoolPath.set(u"as it was"_s);
    EXPECT_FALSE(host.application().checkForTransporter());
    EXPECT_EQ(host.application().altoolPath(), u"as it was"_s);
}

TEST_F(NotaryTool, aTransporterWhoseToolIsALinkToNothingIsNone)
{
    const QString place = host.item(u"Transporter.app"_s);
    host.workspace.installed.insert(transporter, place);
    host.preferences.setValue(key::preferXcodeAltool, false);
    items::makeLink(place + discovery::altoolInTransporter.toString(), u"/no/such/tool"_s);
    EXPECT_FALSE(host.application().checkForTransporter());
}

TEST_F(NotaryTool, theToolInTransporterIsRunByItsOwnPath)
{
    const QString inside =
        u"/Contents/Frameworks/ITunesServices.framework/Frameworks/ITunesSoftwareService.framework/Support/altool"_s;
    host.workspace.running.clear();
    host.tools.add(u"/Applications/Transporter.app"_s + inside);
    const QString path = host.tools.root() + u"/Applications/Transporter.app"_s;
    host.workspace.installed.insert(transporter, path);
    host.application().applicationWillFinishLaunching();
    host.application().applicationDidFinishLaunching();
    EXPECT_EQ(host.application().altoolPath(), path + inside);
    EXPECT_EQ(host.tools.callsOf(u"altool-h"_s), QList<QStringList>{{u"-h"_s}});
    EXPECT_EQ(host.application().altoolVersionNumber(), 4u);
}
