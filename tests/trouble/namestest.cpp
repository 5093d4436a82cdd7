// What an item may be called, and where it may lie.

#include "trouble/road.h"

#include "document/mainwincontroller.h"
#include "platform/itempath.h"
#include "support/items.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr RoadKind kinds[] = {
    {.name = "quotes", .item = u"It's \"Foo\" `$HOME`.app"},
    {.name = "quotesInAPackage", .item = u"It's \"Foo\".pkg"},
    {.name = "quotesInADiskImage", .item = u"It's \"Foo\".app", .asDiskImage = true},
    {.name = "blanks", .item = u"My  Foo App.app"},
    {.name = "blanksAtBothEnds", .item = u" Foo .app"},
    {.name = "blanksInADiskImage", .item = u"My  Foo App.app", .asDiskImage = true},
    {.name = "emoji", .item = u"Foo \U0001F680\U0001F469\u200D\U0001F467.app"},
    {.name = "emojiOfADiskImage", .item = u"Foo \U0001F680.dmg"},
    {.name = "aLeadingDash", .item = u"-rf Foo.app"},
    {.name = "aLeadingDashInADiskImage", .item = u"--help.app", .asDiskImage = true},
    {.name = "composedAccents", .item = u"Caf\u00e9.app"},
    {.name = "decomposedAccents", .item = u"Cafe\u0301.app"},
    {.name = "decomposedAccentsInADiskImage", .item = u"Cafe\u0301.app", .asDiskImage = true},
    {.name = "percentSigns", .item = u"100%1 %20 Foo.app"},
    {.name = "aHashAndAQuestion", .item = u"Foo #1?.app"},
    {.name = "aBackslashAndAColon", .item = u"Foo\\Bar: Baz.app"},
    {.name = "twoDots", .item = u"My.Tool.pkg"},
    {.name = "anUpperCaseExtension", .item = u"FOO.APP"},
    {.name = "anUpperCaseExtensionOfAPackage", .item = u"FOO.PKG"},
    {.name = "anUpperCaseExtensionOfADiskImage", .item = u"FOO.DMG"},
    {.name = "aMixedCaseExtensionOfAPlugin", .item = u"Foo.FMPlugin"},
    {.name = "aLinkToAnApp", .item = u"Foo.app", .linkTo = u"elsewhere/Real Foo.app"},
    {.name = "aLinkToAPackage", .item = u"Foo.pkg", .linkTo = u"elsewhere/Real Foo.pkg"},
    {.name = "aLinkToADiskImage", .item = u"Foo.dmg", .linkTo = u"elsewhere/Real Foo.dmg"},
    {.name = "aLinkToAnAppAsDiskImage",
     .item = u"Foo.app",
     .asDiskImage = true,
     .linkTo = u"elsewhere/Real Foo.app"},
};

QString longName(int bytes)
{
    return QString(bytes - 4, u'x') + u".app"_s;
}

} // namespace

class ItemName : public testing::TestWithParam<RoadKind> { };

TEST_P(ItemName, goesThroughTheWholeSubmissionAsItIs)
{
    const RoadKind &kind = GetParam();
    Road road(kind);
    const QString real = kind.linkTo ? road.host.item(QString::fromUtf16(kind.linkTo)) : QString();
    const QByteArray fingerprint = kind.linkTo ? items::fingerprint(real) : QByteArray();
    road.walk();
    road.expectEnd({u"Notarized", 0, u""});
    const QString result = itempath::fromUrl(road.reply->result.toUrl());
    EXPECT_TRUE(QFileInfo::exists(result)) << result.toStdString();
    EXPECT_FALSE(QFileInfo(result).isSymLink());
    const QStringList stapled = road.host.tools.callsOf(u"stapler"_s).value(0);
    EXPECT_EQ(itempath::lastComponent(stapled.value(stapled.size() - 1)), itempath::lastComponent(result));
    if (kind.linkTo) {
        EXPECT_EQ(items::fingerprint(real), fingerprint) << "what it leads to stays as it is";
    }
}

INSTANTIATE_TEST_SUITE_P(With, ItemName, testing::ValuesIn(kinds),
                         [](const auto &row) { return std::string(row.param.name); });

TEST(LongItemName, thatLeavesNoRoomForTheWorkingFolderIsRefusedByName)
{
    const std::u16string name = longName(250).toStdU16String();
    Road road({.name = "long", .item = name.c_str()});
    road.walk();
    road.expectEnd({u"", 1104, u"Cannot Create Working Folder"});
    const QString folder = road.host.item(longName(250).chopped(4) + u" - Working"_s);
    EXPECT_EQ(
        road.host.log(LogStyle::error),
        QStringList{
            u"Failed to create working folder '%1': Cannot create '%1': File name too long"_s.arg(folder)});
}

TEST(LongItemName, ofManyBytesInFewLettersIsRefusedByName)
{
    const QString base = u"\U0001F680"_s.repeated(62);
    const std::u16string name = (base + u".app"_s).toStdU16String();
    Road road({.name = "long", .item = name.c_str()});
    road.walk();
    road.expectEnd({u"", 1104, u"Cannot Create Working Folder"});
    EXPECT_TRUE(road.host.log(LogStyle::error).value(0).endsWith(u"File name too long"_s));
}

TEST(LongItemName, thatLeavesNoRoomForTheKeptOriginalLeavesThatInItsPlace)
{
    const std::u16string name = longName(244).toStdU16String();
    Road road({.name = "long", .item = name.c_str()});
    road.walk();
    road.expectEnd({u"Notarized", 0, u""});
    EXPECT_TRUE(QFileInfo::exists(road.host.item(longName(244))));
}

TEST(LinkedItem, thatLeadsNowhereIsReportedByName)
{
    Road road({.name = "link", .item = u"Foo.app", .linkTo = u"elsewhere/Foo.app"});
    ASSERT_TRUE(QDir(road.host.item(u"elsewhere"_s)).removeRecursively());
    road.walk();
    road.expectEnd({u"Working", 7, u"Cannot Copy File"});
    EXPECT_EQ(
        road.host.log(LogStyle::error),
        QStringList{
            u"Failed to copy file to working folder '%1': Cannot copy '%2': No such file or directory"_s.arg(
                road.host.item(u"Foo - Working"_s), road.host.item(u"Foo.app"_s))});
    EXPECT_TRUE(QFileInfo(road.host.item(u"Foo.app"_s)).isSymLink());
}

TEST(ReadOnlyVolume, isReportedWithTheFolderAndTheReason)
{
    Road road({.name = "readOnly", .item = u"Foo.app"});
    road.host.files.failure = [](const QString &operation, const QString &) {
        return operation.startsWith(u"read"_s) || operation == "isReadable"_L1 ? QString()
                                                                               : u"Read-only file system"_s;
    };
    road.walk();
    road.host.files.failure = nullptr;
    road.expectEnd({u"", 1104, u"Cannot Create Working Folder"});
    EXPECT_EQ(road.host.log(LogStyle::error),
              QStringList{u"Failed to create working folder '%1': Read-only file system"_s.arg(
                  road.host.item(u"Foo - Working"_s))});
    EXPECT_EQ(road.host.listing(), QStringList{u"Foo.app"_s});
    road.expectSecondWalkSucceeds();
}

TEST(ItemWithoutAnExtension, isRefusedByNameBeforeAnythingIsCopied)
{
    TestHost host;
    items::makeBundle(host.item(u"Foo"_s));
    const QByteArray fingerprint = items::fingerprint(host.item(u"Foo"_s));
    host.launch();
    host.submit(host.item(u"Foo"_s));
    EXPECT_EQ(host.log(LogStyle::error),
              QStringList{u"'%1' is not an app, plugin, fmplugin, flat package or disk image."_s.arg(
                  host.item(u"Foo"_s))});
    EXPECT_EQ(host.listing(), QStringList{u"Foo"_s});
    EXPECT_EQ(items::fingerprint(host.item(u"Foo"_s)), fingerprint);
    ++Road::casesHeld;
}
