// Packing the signed bundle into the one file that is uploaded: zip archives and hdiutil's disk images.

#include "notarization/archivesteps.h"

#include "platform/itempath.h"
#include "support/steptest.h"

using namespace Qt::StringLiterals;

// Names and arguments

TEST(ArchiveNames, aZipArchiveKeepsItsBlanks)
{
    EXPECT_EQ(archive::zipPath(u"/my w/My App.app"_s), u"/my w/My App.zip"_s);
    EXPECT_EQ(archive::zipPath(u"/w/My.Tool.plugin"_s), u"/w/My.Tool.zip"_s);
}

TEST(ArchiveNames, aDiskImageHasUnderscoresForBlanksInItsNameOnly)
{
    EXPECT_EQ(archive::diskImagePath(u"/my w/My  App 2.app"_s), u"/my w/My__App_2.dmg"_s);
    EXPECT_EQ(archive::diskImagePath(u"/w/My.Tool.plugin"_s), u"/w/My.Tool.dmg"_s);
}

TEST(ArchiveArguments, dittoPacksTheBundleFolderItself)
{
    EXPECT_EQ(archive::dittoArguments(u"/w/My App.app"_s, u"/w/My App.zip"_s),
              (QStringList{u"-c"_s, u"-k"_s, u"--keepParent"_s, u"/w/My App.app"_s, u"/w/My App.zip"_s}));
}

TEST(ArchiveArguments, theVolumeNameKeepsItsBlanks)
{
    EXPECT_EQ(archive::hdiutilCreateArguments(u"/w/My App.app"_s, u"/w/My_App.dmg"_s),
              (QStringList{u"create"_s, u"/w/My_App.dmg"_s, u"-format"_s, u"UDZO"_s, u"-ov"_s, u"-volName"_s,
                           u"My App"_s, u"-fs"_s, u"HFS+"_s, u"-srcfolder"_s, u"/w/My App.app"_s, u"-plist"_s,
                           u"-verbose"_s}));
}

class ArchiveTest : public StepTest {
protected:
    ArchiveTest() { items::makeBundle(host.item(u"My App.app"_s)); }

    void makeCopy(bool useDiskImage)
    {
        makeWorkingCopy(u"My App.app"_s);
        document().useDiskImage.set(useDiskImage);
    }

    bool pack()
    {
        return run([&] { return steps().archive.makeArchiveForUploading(); });
    }

    /// The disk image tool makes an image where it is told to.
    void makeImages(const QString &path)
    {
        host.tools.answer(u"hdiutil"_s, {.content = "image", .target = path});
    }

    QString working(const QString &name) const { return host.item(u"My App - Working/"_s + name); }
};

// Zip archives

TEST_F(ArchiveTest, aZipArchiveStandsBesideTheBundle)
{
    makeCopy(false);
    EXPECT_TRUE(pack());
    EXPECT_EQ(host.log(LogStyle::bold).last(), u"Making zip archive..."_s);
    EXPECT_EQ(host.tools.calls(),
              (QList<ToolCall>{{u"ditto"_s,
                                {u"-c"_s, u"-k"_s, u"--keepParent"_s, working(u"My App.app"_s),
                                 working(u"My App.zip"_s)}}}));
    EXPECT_EQ(document().submitFilePath(), working(u"My App.zip"_s));
    EXPECT_EQ(copy(), working(u"My App.app"_s));
    EXPECT_EQ(host.listing(u"My App - Working"_s),
              (QStringList{u"My App.app"_s, u"My App.zip"_s, u"Submission Log.txt"_s}));
    EXPECT_TRUE(host.text(u"My App - Working/Submission Log.txt"_s)
                    .contains(u"Result for /usr/bin/ditto -c -k --keepParent "_s));
    expectNoReport();
}

struct ToolRow {
    const char *situation;
    ToolAnswer answer;
    const char *tail; ///< behind the tool's name
};

class ZipFailure : public ArchiveTest, public testing::WithParamInterface<ToolRow> { };

TEST_P(ZipFailure, costsTheSignedBundle)
{
    const QByteArray original = items::fingerprint(host.item(u"My App.app"_s));
    makeCopy(false);
    host.tools.answer(u"ditto"_s, GetParam().answer);
    EXPECT_FALSE(pack());
    expectReport(u"Error Making Archive"_s, u"Error # in ditto"_s + QString::fromUtf8(GetParam().tail));
    EXPECT_EQ(host.listing(), (QStringList{u"My App - Failed"_s, u"My App.app"_s}));
    EXPECT_FALSE(host.listing(u"My App - Failed"_s).contains(u"My App.app"_s));
    EXPECT_EQ(items::fingerprint(host.item(u"My App.app"_s)), original);
    host.tools.answer(u"ditto"_s, {.content = "zip"});
    expectUsableFor(u"My App.app"_s);
}

const auto toolRows = testing::Values(
    ToolRow{"withAText", {.status = 1, .error = "No space left on device\n"}, ": No space left on device\n"},
    ToolRow{"withoutAText", {.status = 1}, "."},
    ToolRow{"withATextOnStandardOutputOnly", {.status = 1, .output = "elsewhere"}, "."},
    ToolRow{"bySignal", {.signal = 9}, "."});

INSTANTIATE_TEST_SUITE_P(Rows, ZipFailure, toolRows, [](const auto &row) { return row.param.situation; });

// Disk images by hdiutil

TEST_F(ArchiveTest, aDiskImageTakesTheBundlesPlace)
{
    makeCopy(true);
    makeImages(working(u"My_App.dmg"_s));
    EXPECT_TRUE(pack());
    EXPECT_EQ(host.log(LogStyle::bold).last(), u"Making disk image..."_s);
    EXPECT_EQ(host.tools.calls(),
              (QList<ToolCall>{
                  {u"hdiutil"_s,
                   archive::hdiutilCreateArguments(working(u"My App.app"_s), working(u"My_App.dmg"_s))}}));
    EXPECT_EQ(document().submitFilePath(), working(u"My_App.dmg"_s));
    EXPECT_EQ(copy(), working(u"My_App.dmg"_s));
    EXPECT_EQ(host.listing(u"My App - Working"_s), (QStringList{u"My_App.dmg"_s, u"Submission Log.txt"_s}));
    EXPECT_TRUE(host.text(u"My App - Working/Submission Log.txt"_s)
                    .contains(u"Result for /usr/bin/hdiutil create "_s));
}

TEST_F(ArchiveTest, aDiskImageOfAnEarlierRunIsOverwritten)
{
    makeCopy(true);
    items::makeFile(working(u"My_App.dmg"_s), "old image");
    makeImages(working(u"My_App.dmg"_s));
    EXPECT_TRUE(pack());
    EXPECT_TRUE(host.tools.callsOf(u"hdiutil"_s).first().contains(u"-ov"_s));
    EXPECT_EQ(host.text(u"My App - Working/My_App.dmg"_s), u"image"_s);
}

class DiskImageFailure : public ArchiveTest, public testing::WithParamInterface<ToolRow> { };

TEST_P(DiskImageFailure, costsTheSignedBundle)
{
    const QByteArray original = items::fingerprint(host.item(u"My App.app"_s));
    makeCopy(true);
    host.tools.answer(u"hdiutil"_s, GetParam().answer);
    EXPECT_FALSE(pack());
    expectReport(u"Error Making Disk Image"_s, u"Error # in hdiutil"_s + QString::fromUtf8(GetParam().tail));
    EXPECT_EQ(host.listing(), (QStringList{u"My App - Failed"_s, u"My App.app"_s}));
    EXPECT_EQ(host.listing(u"My App - Failed"_s), QStringList{u"Submission Log.txt"_s});
    EXPECT_EQ(items::fingerprint(host.item(u"My App.app"_s)), original);
    document().useDiskImage.set(false);
    expectUsableFor(u"My App.app"_s);
}

TEST_P(DiskImageFailure, leavesTheDocumentNamingTheBundleThatIsGone)
{
    makeCopy(true);
    host.tools.answer(u"hdiutil"_s, GetParam().answer);
    EXPECT_FALSE(pack());
    EXPECT_EQ(copy(), host.item(u"My App - Failed/My App.app"_s));
}

INSTANTIATE_TEST_SUITE_P(Rows, DiskImageFailure, toolRows,
                         [](const auto &row) { return row.param.situation; });

TEST_F(ArchiveTest, aBundleThatCannotBeDeletedStopsNothing)
{
    makeCopy(true);
    makeImages(working(u"My_App.dmg"_s));
    host.files.failure = [](const QString &operation, const QString &) {
        return operation == "removeItem"_L1 ? u"locked"_s : QString();
    };
    EXPECT_TRUE(pack());
    EXPECT_EQ(copy(), working(u"My_App.dmg"_s));
    expectNoReport();
}

TEST_F(ArchiveTest, withoutTheDiskImageToolTheReasonIsReported)
{
    makeCopy(true);
    host.tools.remove(u"/usr/bin/hdiutil"_s);
    EXPECT_FALSE(pack());
    EXPECT_TRUE(errorLine().startsWith(u"Error # in hdiutil: "_s)) << errorLine().toStdString();
}

TEST_F(ArchiveTest, aCancelEndsTheToolWithoutASecondReport)
{
    makeCopy(false);
    host.tools.answerRun(u"ditto"_s, 1, {.hangs = true});
    onWorker(document(), [this] { EXPECT_FALSE(steps().archive.makeArchiveForUploading()); });
    host.runUntil([this] { return !host.tools.callsOf(u"ditto"_s).isEmpty(); });
    document().doCancel();
    host.settle();
    ASSERT_EQ(host.window().sheets.size(), 1);
    EXPECT_EQ(host.window().sheets.first().messageText, u"Process Cancelled"_s);
    EXPECT_FALSE(document().cancelPressed());
    EXPECT_EQ(host.listing(), (QStringList{u"My App - Failed"_s, u"My App.app"_s}));
}

TEST_F(ArchiveTest, aSubmissionAsADiskImageStaplesTheImage)
{
    host.launch();
    document().useDiskImage.set(true);
    makeImages(working(u"My_App.dmg"_s));
    host.submitToTheEnd(host.item(u"My App.app"_s));
    EXPECT_EQ(host.listing(u"My App - Notarized"_s),
              (QStringList{u"Entitlements.plist"_s, u"My App - Unmodified Original"_s, u"My_App.dmg"_s,
                           u"RequestUUID.txt"_s, u"Submission Log.txt"_s}));
    EXPECT_EQ(host.tools.callsOf(u"stapler"_s).first().last(), host.item(u"My App - Submitted/My_App.dmg"_s));
}
