// Disk images that DropDMG makes.

#include "document/documentcommands.h"
#include "notarization/archivesteps.h"

#include "app/appdelegate.h"
#include "platform/itempath.h"
#include "support/steptest.h"

#include <future>

using namespace Qt::StringLiterals;

class DropDMGTest : public StepTest {
protected:
    DropDMGTest()
    {
        items::makeBundle(host.item(u"My App.app"_s));
        makeWorkingCopy(u"My App.app"_s);
        document().useDiskImage.set(true);
        document().useDropDMG.set(true);
        host.application().hasDropDMG.set(true);
        host.appleScript.sources.clear();
    }

    bool pack(const QString &configuration = u"My Config"_s)
    {
        document().dropDMGConfigsPopup.setItemTitles({configuration});
        return run([&] { return steps().archive.makeArchiveForUploading(); });
    }

    /// DropDMG makes an image at that path.
    void answerWith(const QString &image)
    {
        items::makeFile(image, "image");
        host.appleScript.result = {.list = {}, .file = image, .error = {}};
    }

    /// The document is cancelled while the script runs.
    void cancelDuringScript()
    {
        host.appleScript.whileRunning = [this] {
            std::promise<void> cancelled;
            document().dispatchToMain([&] {
                document().doCancel();
                cancelled.set_value();
            });
            cancelled.get_future().wait();
        };
    }

    QString working(const QString &name) const { return host.item(u"My App - Working/"_s + name); }

    void expectFailure(const QString &logLine)
    {
        expectReport(u"Error Making Disk Image"_s, logLine);
        EXPECT_EQ(host.listing(), (QStringList{u"My App - Failed"_s, u"My App.app"_s}));
        EXPECT_EQ(host.listing(u"My App - Failed"_s), QStringList{u"Submission Log.txt"_s});
    }
};

TEST_F(DropDMGTest, isAskedByItsIdentifierForTheConfiguration)
{
    answerWith(working(u"My App.dmg"_s));
    EXPECT_TRUE(pack());
    EXPECT_EQ(host.log(LogStyle::bold).last(), u"Making disk image..."_s);
    EXPECT_EQ(
        host.appleScript.sources,
        QStringList{
            u"set theFile to \"%1\" as POSIX file\ntell application id \"com.c-command.DropDMG\"\nwith timeout of 600 seconds\nset theResult to create from theFile configuration name \"My Config\"\nend timeout\nend tell\nreturn theResult"_s
                .arg(working(u"My App.app"_s))});
    EXPECT_EQ(host.tools.order(), QStringList());
}

TEST_F(DropDMGTest, whoseImageLiesInTheFolderIsTakenAsItIs)
{
    answerWith(working(u"Nice Image.dmg"_s));
    EXPECT_TRUE(pack());
    EXPECT_EQ(document().submitFilePath(), working(u"Nice Image.dmg"_s));
    EXPECT_EQ(copy(), working(u"Nice Image.dmg"_s));
    EXPECT_EQ(host.listing(u"My App - Working"_s),
              (QStringList{u"Nice Image.dmg"_s, u"Submission Log.txt"_s}));
    expectNoReport();
}

TEST_F(DropDMGTest, whoseImageLiesElsewhereHasItMovedIn)
{
    answerWith(host.item(u"Desktop/Nice Image.dmg"_s));
    EXPECT_TRUE(pack());
    EXPECT_EQ(document().submitFilePath(), working(u"Nice Image.dmg"_s));
    EXPECT_EQ(copy(), working(u"Nice Image.dmg"_s));
    EXPECT_EQ(host.listing(u"Desktop"_s), QStringList());
    EXPECT_EQ(host.text(u"My App - Working/Nice Image.dmg"_s), u"image"_s);
}

TEST_F(DropDMGTest, whoseImageCannotBeMovedIsStillExpectedInTheFolder)
{
    answerWith(host.item(u"Desktop/Nice Image.dmg"_s));
    host.files.failure = [](const QString &operation, const QString &) {
        return operation == "moveItem"_L1 ? u"locked"_s : QString();
    };
    EXPECT_TRUE(pack());
    EXPECT_EQ(document().submitFilePath(), working(u"Nice Image.dmg"_s));
    expectNoReport();
}

TEST_F(DropDMGTest, thatGivesNoResultFails)
{
    const QByteArray original = items::fingerprint(host.item(u"My App.app"_s));
    host.appleScript.result = {.list = {}, .file = {}, .error = u"AppleEvent timed out. %1 (-1712)"_s};
    EXPECT_FALSE(pack());
    expectFailure(u"Error creating disk image with DropDMG: AppleEvent timed out. %1 (-1712)"_s);
    EXPECT_EQ(items::fingerprint(host.item(u"My App.app"_s)), original);
    document().useDiskImage.set(false);
    expectUsableFor(u"My App.app"_s);
}

TEST_F(DropDMGTest, thatGivesNoFileFails)
{
    host.appleScript.result = {.list = QStringList{u"a"_s}, .file = {}, .error = {}};
    EXPECT_FALSE(pack());
    expectFailure(u"Unknown error creating disk image with DropDMG"_s);
}

TEST_F(DropDMGTest, aQuoteInTheConfigurationsNameStandsAsItIsAndBreaksTheScript)
{
    host.appleScript.result = {.list = {}, .file = {}, .error = u"Expected end of line (-2741)"_s};
    EXPECT_FALSE(pack(u"24\" screen %1"_s));
    EXPECT_TRUE(host.appleScript.sources.value(0).contains(u"configuration name \"24\" screen %1\"\n"_s));
    expectFailure(u"Error creating disk image with DropDMG: Expected end of line (-2741)"_s);
}

TEST_F(DropDMGTest, isAskedForTheConfigurationThatIsOnShowWhenTheArchiveIsMade)
{
    document().dropDMGConfigsPopup.setItemTitles({u"Fancy"_s, u"Plain"_s});
    answerWith(host.item(u"Desktop/Nice Image.dmg"_s));
    host.tools.answerRun(u"codesign"_s, 1, {.hangs = true});
    commands().submit.submitURL(itempath::toUrl(host.item(u"My App.app"_s)));
    host.runUntil([this] { return !host.tools.callsOf(u"codesign"_s).isEmpty(); });
    document().dropDMGConfigsPopup.selectItemWithTitle(u"Plain"_s);
    host.tools.release(u"codesign"_s, 1);
    host.settle();
    ASSERT_EQ(host.appleScript.sources.size(), 1);
    EXPECT_TRUE(host.appleScript.sources.first().contains(u"configuration name \"Plain\"\n"_s));
    EXPECT_EQ(host.listing(u"My App - Submitted"_s).filter(u".dmg"_s), QStringList{u"Nice Image.dmg"_s});
}

TEST_F(DropDMGTest, isNotEndedByACancelWhichStopsTheChainBehindIt)
{
    answerWith(host.item(u"Desktop/Nice Image.dmg"_s));
    cancelDuringScript();
    commands().submit.submitURL(itempath::toUrl(host.item(u"My App.app"_s)));
    host.settle();
    EXPECT_EQ(host.appleScript.sources.size(), 1);
    EXPECT_EQ(document().submitFilePath(), working(u"Nice Image.dmg"_s));
    EXPECT_EQ(copy(), working(u"Nice Image.dmg"_s));
    EXPECT_EQ(host.listing(u"My App - Working"_s),
              (QStringList{u"Entitlements.plist"_s, u"Nice Image.dmg"_s, u"Submission Log.txt"_s}));
    EXPECT_TRUE(host.tools.callsOf(u"altool--notarize-app"_s).isEmpty());
    ASSERT_EQ(host.window().sheets.size(), 1);
    EXPECT_EQ(host.window().sheets.first().messageText, u"Process Cancelled"_s);
    EXPECT_TRUE(document().cancelPressed()) << "no report came to swallow";
}

TEST(DropDMGSource, aQuoteInThePathStandsAsItIs)
{
    EXPECT_TRUE(archive::dropDMGSource(u"/w/24\" %2.app"_s, u"c"_s)
                    .startsWith(u"set theFile to \"/w/24\" %2.app\" as POSIX file\n"_s));
}

TEST_F(DropDMGTest, thatHasGoneAwayGivesWayToHdiutilWithoutAWord)
{
    host.application().hasDropDMG.set(false);
    host.tools.answer(u"hdiutil"_s, {.content = "image", .target = working(u"My_App.dmg"_s)});
    EXPECT_TRUE(pack());
    EXPECT_EQ(host.tools.order(), QStringList{u"hdiutil"_s});
    EXPECT_EQ(host.appleScript.sources, QStringList());
    expectNoReport();
}

TEST_F(DropDMGTest, thatIsNotWantedGivesWayToHdiutil)
{
    document().useDropDMG.set(false);
    EXPECT_TRUE(pack());
    EXPECT_EQ(host.tools.order(), QStringList{u"hdiutil"_s});
}

TEST_F(DropDMGTest, isNotAskedForAZipArchive)
{
    document().useDiskImage.set(false);
    EXPECT_TRUE(pack());
    EXPECT_EQ(host.tools.order(), QStringList{u"ditto"_s});
    EXPECT_EQ(host.appleScript.sources, QStringList());
}
