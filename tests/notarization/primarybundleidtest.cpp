// The identifier of an app in a disk image that was submitted as one.

#include "notarization/archivesteps.h"

#include "platform/itempath.h"
#include "support/steptest.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

struct AttachRow {
    const char *situation;
    const char *output;
    const char *mountPoint;
};

class MountPoint : public testing::TestWithParam<AttachRow> { };

TEST_P(MountPoint, isTheLastFieldTrimmed)
{
    EXPECT_EQ(archive::mountPoint(QString::fromUtf8(GetParam().output)),
              QString::fromUtf8(GetParam().mountPoint));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, MountPoint,
    testing::Values(AttachRow{"ofTheLastLine",
                              "/dev/disk2          \tGUID_partition_scheme          \t\n"
                              "/dev/disk2s1        \tApple_HFS                      \t/Volumes/My App\n",
                              "/Volumes/My App"},
                    AttachRow{"ofTheOnlyField", "  /Volumes/Foo \n", "/Volumes/Foo"},
                    AttachRow{"withNothingMounted", "/dev/disk2\tApple_partition_scheme\t\n", ""},
                    AttachRow{"ofNothing", "", ""}),
    [](const auto &row) { return row.param.situation; });

class PrimaryBundleID : public StepTest {
protected:
    PrimaryBundleID()
    {
        host.files.sortsListings = true;
        items::makeFile(host.item(u"Foo.dmg"_s), "image");
        items::makeFolder(host.item(u"volume"_s));
        host.tools.answerRun(u"hdiutil"_s, 1,
                             {.output = "/dev/disk2\tApple_HFS\t" + host.item(u"volume"_s).toUtf8() + "\n"});
        host.tools.answer(u"hdiutil"_s, {.status = 1, .error = "hdiutil: invalid verb\n"});
    }

    QString identifier()
    {
        QString found;
        EXPECT_TRUE(run([&] {
            found = steps().archive.primaryBundleID();
            return true;
        }));
        return found;
    }

    QString uploadedIdentifier() const
    {
        const QStringList arguments = host.tools.callsOf(u"altool--notarize-app"_s).value(0);
        return arguments.value(arguments.indexOf(u"--primary-bundle-id"_s) + 1);
    }
};

TEST_F(PrimaryBundleID, isThatOfTheAppInTheImage)
{
    items::makeBundle(host.item(u"volume/Foo.app"_s), u"com.example.in.image"_s);
    makeWorkingCopy(u"Foo.dmg"_s);
    EXPECT_EQ(identifier(), u"com.example.in.image"_s);
    EXPECT_EQ(host.tools.callsOf(u"hdiutil"_s),
              (QList<QStringList>{{u"attach"_s, u"-noverify"_s, u"-noidmereveal"_s, u"-noautoopen"_s,
                                   host.item(u"Foo - Working/Foo.dmg"_s)},
                                  {u"dettach"_s, u"-force"_s, host.item(u"volume"_s)}}));
}

TEST_F(PrimaryBundleID, isThatOfTheFirstAppListed)
{
    items::makeBundle(host.item(u"volume/A.APP"_s), u"com.example.capitals"_s);
    items::makeBundle(host.item(u"volume/B.app"_s), u"com.example.b"_s);
    items::makeBundle(host.item(u"volume/C.app"_s), u"com.example.c"_s);
    makeWorkingCopy(u"Foo.dmg"_s);
    EXPECT_EQ(identifier(), u"com.example.b"_s);
}

TEST_F(PrimaryBundleID, isNotThatOfAHiddenApp)
{
    items::makeBundle(host.item(u"volume/.A.app"_s), u"com.example.hidden"_s);
    items::makeBundle(host.item(u"volume/B.app"_s), u"com.example.b"_s);
    makeWorkingCopy(u"Foo.dmg"_s);
    EXPECT_EQ(identifier(), u"com.example.b"_s);
}

TEST_F(PrimaryBundleID, isNoneForAnAppInASubfolderAndTheFallbackIsUploaded)
{
    items::makeBundle(host.item(u"volume/Folder/Foo.app"_s));
    host.launch();
    host.submit(host.item(u"Foo.dmg"_s));
    static const QRegularExpression fallback(u"^[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}dmg$"_s);
    EXPECT_TRUE(fallback.match(uploadedIdentifier()).hasMatch()) << uploadedIdentifier().toStdString();
    EXPECT_EQ(host.tools.callsOf(u"hdiutil"_s).size(), 2) << "detached all the same";
}

TEST_F(PrimaryBundleID, isUploadedForADiskImage)
{
    items::makeBundle(host.item(u"volume/Foo.app"_s), u"com.example.in.image"_s);
    host.launch();
    host.submit(host.item(u"Foo.dmg"_s));
    EXPECT_EQ(uploadedIdentifier(), u"com.example.in.image"_s);
}

TEST_F(PrimaryBundleID, isNoneForAnAppWithoutOneEvenIfAnotherHasOne)
{
    items::makeBundle(host.item(u"volume/A.app"_s), {});
    items::makeBundle(host.item(u"volume/B.app"_s), u"com.example.b"_s);
    makeWorkingCopy(u"Foo.dmg"_s);
    EXPECT_TRUE(identifier().isNull());
}

TEST_F(PrimaryBundleID, isNoneForAnImageThatDoesNotMountAndNothingIsReported)
{
    host.tools.answerRun(u"hdiutil"_s, 1, {.status = 1, .error = "hdiutil: attach failed"});
    makeWorkingCopy(u"Foo.dmg"_s);
    EXPECT_TRUE(identifier().isNull());
    EXPECT_EQ(host.tools.callsOf(u"hdiutil"_s).size(), 1);
    expectNoReport();
}

TEST_F(PrimaryBundleID, isNoneForAnEmptyVolumeOrOneThatIsNotThere)
{
    makeWorkingCopy(u"Foo.dmg"_s);
    EXPECT_TRUE(identifier().isNull());
    host.tools.answerRun(u"hdiutil"_s, 3, {.output = QByteArray("garbage \xff without tabs", 22)});
    EXPECT_TRUE(identifier().isNull());
    host.tools.answerRun(u"hdiutil"_s, 5, {});
    EXPECT_TRUE(identifier().isNull());
    EXPECT_EQ(host.tools.callsOf(u"hdiutil"_s).last(), (QStringList{u"dettach"_s, u"-force"_s, u""_s}));
}

TEST_F(PrimaryBundleID, isLookedForWithoutALineInTheLogs)
{
    items::makeBundle(host.item(u"volume/Foo.app"_s));
    makeWorkingCopy(u"Foo.dmg"_s);
    const QString before = host.text(u"Foo - Working/Submission Log.txt"_s);
    const QStringList shownBefore = host.log();
    EXPECT_FALSE(identifier().isNull());
    EXPECT_EQ(host.text(u"Foo - Working/Submission Log.txt"_s), before);
    EXPECT_EQ(host.log(), shownBefore);
}
