// What differs between two items.

#include "examine/examinerun.h"

using namespace Qt::StringLiterals;
using testing::Contains;
using testing::IsEmpty;

namespace {

QStringList whats(const QList<examine::Difference> &differences)
{
    QStringList lines;
    for (const examine::Difference &difference : differences)
        lines.append(difference.what + u' ' + difference.path);
    return lines;
}

} // namespace

TEST(AComparison, findsNoDifferenceBetweenAnItemAndItself)
{
    const ItemMaker item;
    const auto differences = examine::compareItems(item.item(), item.item());
    ASSERT_TRUE(differences);
    EXPECT_THAT(*differences, IsEmpty());
    EXPECT_EQ(run({u"--compare"_s, item.item(), item.item()}).status, 0);
}

TEST(AComparison, tellsWhatHasComeGoneAndChanged)
{
    ItemMaker before(u"universal"_s);
    before.code(u"Contents/MacOS/old"_s, codefiles::executable(u"arm64"_s));
    ItemMaker after(u"arm64"_s);
    after.code(u"Contents/MacOS/new"_s, codefiles::executable(u"arm64"_s));
    after.info(u"Contents"_s, u"Foo"_s, u"com.example.other"_s);
    const auto differences = examine::compareItems(before.item(), after.item());
    ASSERT_TRUE(differences);
    const QStringList found = whats(*differences);
    EXPECT_THAT(found, Contains(u"removed Contents/MacOS/old"_s));
    EXPECT_THAT(found, Contains(u"added Contents/MacOS/new"_s));
    EXPECT_THAT(found, Contains(u"architectures ."_s));
    EXPECT_THAT(found, Contains(u"identifier ."_s));
    EXPECT_THAT(found, Contains(u"size ."_s));
    EXPECT_EQ(run({u"--compare"_s, before.item(), after.item()}).status, 1);
    EXPECT_EQ(run({u"--compare"_s, before.item(), before.path(u"missing.app"_s)}).status, 4);
}

TEST(AComparison, tellsOneBuildOfAVersionFromTheNext)
{
    const auto describe = [](const ItemMaker &item, const QByteArray &version, const QByteArray &build) {
        item.file(u"Contents/Info.plist"_s,
                  "<plist version=\"1.0\"><dict><key>CFBundleExecutable</key><string>Foo</string>"
                  "<key>CFBundleShortVersionString</key><string>"
                      + version + "</string><key>CFBundleVersion</key><string>" + build
                      + "</string></dict></plist>");
    };
    const ItemMaker before;
    const ItemMaker after;
    describe(before, "1.0", "7");
    describe(after, "1.0", "8");
    auto differences = examine::compareItems(before.item(), after.item());
    ASSERT_TRUE(differences);
    ASSERT_EQ(whats(*differences), QStringList{u"version ."_s});
    EXPECT_EQ(differences->first().old, u"7"_s);
    EXPECT_EQ(differences->first().recent, u"8"_s);
    describe(after, "2.0", "8");
    differences = examine::compareItems(before.item(), after.item());
    ASSERT_TRUE(differences);
    ASSERT_EQ(whats(*differences), QStringList{u"version ."_s});
    EXPECT_EQ(differences->first().recent, u"2.0"_s);
}

TEST(AComparison, ofWhatCannotBeReadIsNone)
{
    const ItemMaker item;
    ItemMaker image;
    image.become(u"Foo.dmg"_s, "text");
    for (const auto &[old, recent] :
         {std::pair(image.item(), image.item()), std::pair(item.item(), image.item()),
          std::pair(image.item(), item.item())}) {
        const Ended ended = run({u"--compare"_s, old, recent});
        EXPECT_EQ(ended.status, 4);
        EXPECT_TRUE(ended.error.contains("cannot be read")) << ended.error.constData();
    }
}
