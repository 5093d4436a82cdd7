// What a person or a script has named.

#include "run/item.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(Item, isNamedByItsPath)
{
    const Item item(u"/items/My.Tool.pkg"_s);
    EXPECT_EQ(item.fileName(), u"My.Tool.pkg"_s);
    EXPECT_EQ(item.base(), u"My.Tool"_s) << "the last extension goes alone";
    EXPECT_EQ(item.folder(), u"/items"_s);
    EXPECT_EQ(item.url(), QUrl(u"file:///items/My.Tool.pkg"_s));
    EXPECT_EQ(Item(u"/items/tool"_s).base(), u"tool"_s);
}

TEST(Item, ofAFoldersUrlLosesTheSlashAtItsEnd)
{
    EXPECT_EQ(Item::fromUrl(QUrl(u"file:///items/Foo.app/"_s)).path(), u"/items/Foo.app"_s);
    EXPECT_EQ(Item::fromUrl(QUrl(u"file:///items/B%C3%A4r.app"_s)).path(), u"/items/B\u00e4r.app"_s);
}

TEST(Item, ofNoUrlIsNone)
{
    EXPECT_TRUE(Item().isNone());
    EXPECT_TRUE(Item::fromUrl({}).isNone());
    EXPECT_FALSE(Item(u"/items/Foo.app"_s).isNone());
}

struct KindRow {
    const char *name;
    ItemKind kind;
    bool isBundle;
};

class KindOfAnItem : public testing::TestWithParam<KindRow> { };

TEST_P(KindOfAnItem, isTheExtensionInAnyLetterCase)
{
    const QString extension = QString::fromLatin1(GetParam().name);
    for (const QString &written : {extension, extension.toUpper()}) {
        const Item item(u"/items/Foo."_s + written);
        EXPECT_EQ(item.kind(), GetParam().kind) << written.toStdString();
        EXPECT_EQ(item.isBundle(), GetParam().isBundle);
        EXPECT_EQ(item.isApp(), GetParam().kind == ItemKind::app);
    }
    EXPECT_EQ(submittableExtensions().contains(extension), GetParam().kind != ItemKind::other);
}

INSTANTIATE_TEST_SUITE_P(
    Extensions, KindOfAnItem,
    testing::Values(KindRow{"app", ItemKind::app, true}, KindRow{"plugin", ItemKind::plugin, true},
                    KindRow{"fmplugin", ItemKind::fmplugin, true}, KindRow{"pkg", ItemKind::pkg, false},
                    KindRow{"dmg", ItemKind::dmg, false}, KindRow{"framework", ItemKind::other, false}),
    [](const auto &row) { return row.param.name; });
