#include "platform/propertylist/limits.h"
#include "platform/propertylist/propertylist.h"

#include <QDateTime>
#include <QStringList>
#include <QUrl>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using platform::xmlPropertyListData;

namespace {

const QByteArray head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                        "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                        "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                        "<plist version=\"1.0\">\n";

/// What stands between the head and the tail of a list.
std::string contentsOf(const QVariant &value)
{
    const auto written = xmlPropertyListData(value);
    EXPECT_TRUE(written) << written.error().toStdString();
    EXPECT_TRUE(written->startsWith(head));
    EXPECT_TRUE(written->endsWith("</plist>\n"));
    return written->sliced(head.size()).chopped(9).toStdString();
}

std::string errorOf(const QVariant &value)
{
    const auto written = xmlPropertyListData(value);
    EXPECT_FALSE(written);
    EXPECT_TRUE(written.valueOr({}).isEmpty());
    return written.error().toStdString();
}

} // namespace

TEST(XmlWriter, entitlementsComeOutByteForByteAsApplesToolsWriteThem)
{
    const QVariantMap entitlements{
        {u"com.apple.security.cs.allow-jit"_s, true},
        {u"com.apple.security.application-groups"_s, QVariantList{u"group.a"_s, QVariantMap()}},
        {u"com.apple.security.automation.apple-events"_s, false},
    };
    EXPECT_EQ(contentsOf(entitlements),
              "<dict>\n"
              "\t<key>com.apple.security.application-groups</key>\n"
              "\t<array>\n"
              "\t\t<string>group.a</string>\n"
              "\t\t<dict/>\n"
              "\t</array>\n"
              "\t<key>com.apple.security.automation.apple-events</key>\n"
              "\t<false/>\n"
              "\t<key>com.apple.security.cs.allow-jit</key>\n"
              "\t<true/>\n"
              "</dict>\n");
}

TEST(XmlWriter, emptyContainersAreOneElement)
{
    EXPECT_EQ(contentsOf(QVariantMap()), "<dict/>\n");
    EXPECT_EQ(contentsOf(QVariantList()), "<array/>\n");
    EXPECT_EQ(contentsOf(QString()), "<string></string>\n");
    EXPECT_EQ(contentsOf(QByteArray()), "<data>\n</data>\n");
}

TEST(XmlWriter, numbersOfEveryWidthAreWritten)
{
    EXPECT_EQ(contentsOf(-3), "<integer>-3</integer>\n");
    EXPECT_EQ(contentsOf(QVariant::fromValue<short>(-3)), "<integer>-3</integer>\n");
    EXPECT_EQ(contentsOf(QVariant::fromValue<uchar>(200)), "<integer>200</integer>\n");
    EXPECT_EQ(contentsOf(4000000000U), "<integer>4000000000</integer>\n");
    EXPECT_EQ(contentsOf(std::numeric_limits<qulonglong>::max()),
              "<integer>18446744073709551615</integer>\n");
    EXPECT_EQ(contentsOf(1.0), "<real>1</real>\n");
    EXPECT_EQ(contentsOf(0.1), "<real>0.1</real>\n");
    EXPECT_EQ(contentsOf(0.5F), "<real>0.5</real>\n");
    EXPECT_EQ(contentsOf(std::nan("")), "<real>nan</real>\n");
    EXPECT_EQ(contentsOf(std::numeric_limits<double>::infinity()), "<real>+infinity</real>\n");
}

TEST(XmlWriter, aListOfStringsIsAnArray)
{
    EXPECT_EQ(contentsOf(QStringList{u"a"_s}), "<array>\n\t<string>a</string>\n</array>\n");
}

TEST(XmlWriter, signsOfMarkupAreEscapedAndACarriageReturnSurvives)
{
    EXPECT_EQ(contentsOf(QVariantMap{{u"<&>"_s, u"a & b < c > \"d\"\r\n"_s}}),
              "<dict>\n\t<key>&lt;&amp;&gt;</key>\n"
              "\t<string>a &amp; b &lt; c &gt; \"d\"&#13;\n</string>\n</dict>\n");
}

TEST(XmlWriter, aDateIsWrittenInUniversalTime)
{
    const QDateTime date({2024, 1, 1}, {1, 30, 5, 999}, Qt::OffsetFromUTC, 2 * 3600);
    EXPECT_EQ(contentsOf(date), "<date>2023-12-31T23:30:05Z</date>\n");
}

TEST(XmlWriter, dataIsWrappedByTheDepthItStandsAt)
{
    const QByteArray bytes(60, 'a');
    const std::string base64 = bytes.toBase64().toStdString();
    ASSERT_EQ(base64.size(), 80U);
    EXPECT_EQ(contentsOf(bytes),
              "<data>\n" + base64.substr(0, 76) + "\n" + base64.substr(76) + "\n</data>\n");
    EXPECT_EQ(contentsOf(QVariantList{bytes}),
              "<array>\n\t<data>\n\t" + base64.substr(0, 68) + "\n\t" + base64.substr(68)
                  + "\n\t</data>\n</array>\n");
}

TEST(XmlWriter, dataVeryDeepInAListStillHasTwelveCharactersALine)
{
    QVariant deep = QByteArray(10, 'a');
    for (int level = 0; level < 20; ++level)
        deep = QVariantList{deep};
    const std::string tabs(20, '\t');
    EXPECT_NE(contentsOf(deep).find(tabs + "YWFhYWFhYWFh\n" + tabs + "YQ==\n"), std::string::npos);
}

TEST(XmlWriter, aValueThatAListCannotHoldIsNamedByItsKeyPath)
{
    const QUrl url(u"https://example.com/"_s);
    EXPECT_EQ(errorOf(url), "The top level is of type QUrl, which a property list cannot hold");
    EXPECT_EQ(errorOf(QVariantMap{{u"a"_s, QVariantMap{{u"b"_s, QVariantList{1, 2, url}}}}}),
              "The value at 'a.b[2]' is of type QUrl, which a property list cannot hold");
    EXPECT_EQ(errorOf(QVariantList{QVariantMap{{u"a"_s, url}}}),
              "The value at '[0].a' is of type QUrl, which a property list cannot hold");
    EXPECT_EQ(errorOf(QVariantMap{{u"a"_s, QVariant()}}), "The value at 'a' is missing");
    EXPECT_EQ(errorOf(QVariant()), "The top level is missing");
}

TEST(XmlWriter, aCharacterThatXmlCannotHoldIsAnErrorAndNoBrokenFile)
{
    EXPECT_EQ(errorOf(QVariantMap{{u"a"_s, u"x\u0001"_s}}),
              "The value at 'a' holds the character U+0001, which XML cannot hold");
    EXPECT_EQ(errorOf(QString(QChar(0x1b))),
              "The top level holds the character U+001B, which XML cannot hold");
    EXPECT_EQ(errorOf(QString(QChar(0xffff))),
              "The top level holds the character U+FFFF, which XML cannot hold");
    EXPECT_EQ(errorOf(QString(QChar(0xd83d))),
              "The top level holds the character U+D83D, which XML cannot hold");
    EXPECT_EQ(errorOf(QString(QChar(0xde00))),
              "The top level holds the character U+DE00, which XML cannot hold");
    EXPECT_EQ(errorOf(QVariantMap{{u"a\u0007"_s, true}}),
              "The value at 'a\\u0007' has a key that holds the character U+0007, which XML cannot hold");
}

TEST(XmlWriter, aDateThatTheFormCannotShowIsAnError)
{
    EXPECT_EQ(errorOf(QVariantMap{{u"a"_s, QDateTime()}}),
              "The value at 'a' is a date outside the years 1 to 9999");
    EXPECT_EQ(errorOf(QDateTime({10000, 1, 1}, {0, 0}, Qt::UTC)),
              "The top level is a date outside the years 1 to 9999");
}

TEST(XmlWriter, nestingBeyondTheDeepestLevelIsAnError)
{
    QVariant deep = QVariantList();
    for (int level = 0; level < platform::propertylist::maximumDepth; ++level)
        deep = QVariantList{deep};
    EXPECT_NE(errorOf(deep).find("the list is nested deeper than 512 levels"), std::string::npos);
}
