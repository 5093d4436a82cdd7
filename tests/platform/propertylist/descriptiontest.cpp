#include "platform/propertylist/listexpectations.h"
#include "platform/propertylist/propertylist.h"

#include <QDateTime>

using namespace Qt::StringLiterals;
using platform::propertyListDescription;

namespace {

std::string describe(const QVariant &value)
{
    return propertyListDescription(value).toStdString();
}

} // namespace

TEST(Description, entitlementsAreSortedWithTheirDottedKeysInQuotes)
{
    EXPECT_EQ(
        describe(QVariantMap{{u"com.apple.y"_s, false}, {u"com.apple.x"_s, true}, {u"plain"_s, u"word"_s}}),
        "{\n    \"com.apple.x\" = 1;\n    \"com.apple.y\" = 0;\n    plain = word;\n}");
}

TEST(Description, emptyContainersAreTwoLines)
{
    EXPECT_EQ(describe(QVariantMap()), "{\n}");
    EXPECT_EQ(describe(QVariantList()), "(\n)");
}

TEST(Description, anInnerContainerIsIndentedAfterItsKeyToo)
{
    EXPECT_EQ(describe(QVariantMap{{u"list"_s, QVariantList{1LL, QVariantList{2LL}}},
                                   {u"map"_s, QVariantMap{{u"a"_s, QVariantMap()}}}}),
              "{\n"
              "    list =     (\n"
              "        1,\n"
              "                (\n"
              "            2\n"
              "        )\n"
              "    );\n"
              "    map =     {\n"
              "        a =         {\n"
              "        };\n"
              "    };\n"
              "}");
}

TEST(Description, textThatIsNoPlainWordIsQuotedAndEscaped)
{
    EXPECT_EQ(describe(QVariantList{u""_s, u"a b"_s, u"a_b"_s, u"a\"\\\n\t\r"_s, u"\u00e9\u4e2d\u0001"_s}),
              "(\n    \"\",\n    \"a b\",\n    \"a_b\",\n    \"a\\\"\\\\\\n\\t\\r\",\n    "
              "\"\\U00e9\\U4e2d\\U0001\"\n)");
}

TEST(Description, numbersDatesAndDataHaveTheirOwnText)
{
    EXPECT_EQ(describe(QVariantList{-1LL, 42LL, 0.1, 2.0, QDateTime({2024, 2, 3}, {4, 5, 6}, Qt::UTC),
                                    QByteArray::fromHex("0fbd770011")}),
              "(\n    \"-1\",\n    42,\n    \"0.1\",\n    2,\n    \"2024-02-03 04:05:06 +0000\",\n    "
              "<0fbd7700 11>\n)");
}

TEST(Description, aScalarAtTheTopStandsAsItIs)
{
    EXPECT_EQ(describe(u"a \"b\" \u00e9"_s), "a \"b\" \u00e9");
    EXPECT_EQ(describe(true), "1");
    EXPECT_EQ(describe(QByteArray::fromHex("0a")), "<0a>");
}

TEST(Description, itsTextReadsBackAsAnOldStyleList)
{
    const QVariantMap list{
        {u"com.apple.a"_s, QVariantList{u"x \"y\"\n"_s, QVariantList(), QByteArray("abcdef")}},
        {u"\u00fc"_s, QVariantMap{{u"b c"_s, u"\\U\U0001f600"_s}}}};
    expectSame(valueOf(propertyListDescription(list).toUtf8()), list);
}
