#include "platform/propertylist/limits.h"
#include "platform/propertylist/listexpectations.h"
#include "platform/propertylist/propertylist.h"

#include <QDateTime>
#include <QStringEncoder>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

QByteArray plist(const QByteArray &contents)
{
    return "<plist version=\"1.0\">" + contents + "</plist>";
}

const QByteArray prolog = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                          "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                          "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n";

class XmlListWithError : public testing::TestWithParam<ErrorRow> { };
class XmlValue : public testing::TestWithParam<ValueRow> { };

} // namespace

TEST(XmlReader, aToolsReplyReadsWithAllItsTypes)
{
    const auto value = valueOf(prolog + R"(<plist version="1.0">
<dict>
	<!-- the reply -->
	<key>success-message</key> <string>No errors &amp; no <!-- loud --> warnings</string>
	<key>notarization-upload</key>
	<dict><key>RequestUUID</key><string>2efe2717-52ef</string></dict>
	<key>list</key> <array><integer>1</integer><true/><false></false></array>
	<key>data</key>
	<data>
	AQID
	/w==
	</data>
	<key>date</key> <date>2021-03-04T05:06:07Z</date>
	<key>real</key> <real>1.5</real>
	<key>raw</key> <string><![CDATA[<a>&amp;]]></string>
</dict>
</plist>
)");
    expectSame(value,
               QVariantMap{{u"success-message"_s, u"No errors & no  warnings"_s},
                           {u"notarization-upload"_s, QVariantMap{{u"RequestUUID"_s, u"2efe2717-52ef"_s}}},
                           {u"list"_s, QVariantList{1LL, true, false}},
                           {u"data"_s, QByteArray::fromHex("010203ff")},
                           {u"date"_s, QDateTime({2021, 3, 4}, {5, 6, 7}, Qt::UTC)},
                           {u"real"_s, 1.5},
                           {u"raw"_s, u"<a>&amp;"_s}});
}

TEST(XmlReader, utf16IsReadByItsMarkOrItsDeclaration)
{
    const QString text =
        u"<?xml version=\"1.0\" encoding=\"UTF-16\"?><plist><string>\u00e9\U0001f600</string></plist>"_s;
    for (const auto encoding : {QStringEncoder::Utf16LE, QStringEncoder::Utf16BE}) {
        for (const auto flag : {QStringEncoder::Flag::Default, QStringEncoder::Flag::WriteBom}) {
            QStringEncoder encoder(encoding, flag);
            const QByteArray data = encoder.encode(text);
            expectSame(valueOf(data), u"\u00e9\U0001f600"_s);
        }
    }
}

TEST(XmlReader, anUnknownEncodingIsNamed)
{
    EXPECT_EQ(errorOf("<?xml version=\"1.0\" encoding=\"EBCDIC-37\"?><true/>"),
              "The encoding 'ebcdic-37' of the property list is not known");
}

TEST(XmlReader, aDeclarationThatIsWrongAboutUtf16IsNotBelieved)
{
    expectSame(valueOf("<?xml version=\"1.0\" encoding=\"UTF-16\"?><string>\xc3\xa9</string>"), u"\u00e9"_s);
}

TEST(XmlReader, theDeclaredEncodingCounts)
{
    expectSame(valueOf("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><plist><string>\xe9</string></plist>"),
               u"\u00e9"_s);
    expectSame(valueOf("<?xml version='1.0' encoding='us-ascii'?><plist><string>e</string></plist>"), u"e"_s);
    expectSame(valueOf("\xef\xbb\xbf<?xml version=\"1.0\"?><plist><string>\xc3\xa9</string></plist>"),
               u"\u00e9"_s);
}

TEST(XmlReader, blankLinesAboveTheDeclarationDoNotHurtNorShiftTheLineOfAnError)
{
    expectSame(valueOf("\n \n" + prolog + plist("<true/>")), true);
    EXPECT_EQ(errorOf("\n\n  <plist></plist>"), "Line 3, column 18: the <plist> holds no value");
    EXPECT_EQ(errorOf("\n\n  <plist>\n</plist>"), "Line 4, column 9: the <plist> holds no value");
}

TEST(XmlReader, ofTwoEqualKeysTheLastOneWins)
{
    const auto value =
        valueOf("<dict><key>a</key><true/><key>b</key><true/><key>a</key><integer>2</integer></dict>");
    expectSame(value, QVariantMap{{u"a"_s, 2LL}, {u"b"_s, true}});
}

TEST(XmlReader, aDateIsInUniversalTimeEvenWhereTheLocalClockSkipsIt)
{
    const QByteArray zone = qgetenv("TZ");
    qputenv("TZ", "Europe/Berlin");
    const QVariant value = valueOf("<date>2021-03-28T02:30:00Z</date>");
    zone.isNull() ? qunsetenv("TZ") : qputenv("TZ", zone);
    expectSame(value, QDateTime({2021, 3, 28}, {2, 30}, Qt::UTC));
    EXPECT_EQ(value.toDateTime().timeSpec(), Qt::UTC);
}

TEST(XmlReader, aListCutAnywhereIsAnError)
{
    const QByteArray whole =
        prolog + plist("<dict><key>a</key><array><integer>1</integer><data>AA==</data></array></dict>");
    valueOf(whole);
    for (qsizetype size = 0; size < whole.size(); ++size)
        EXPECT_FALSE(platform::propertyListFromData(whole.first(size))) << size;
}

TEST(XmlReader, aDamagedByteGetsAVerdict)
{
    const QByteArray whole =
        prolog + plist("<dict><key>a</key><array><integer>1</integer><real>2</real></array></dict>");
    for (qsizetype i = 0; i < whole.size(); ++i) {
        for (const char byte : {'\0', '<', '&', '>', '/', '\x80', '\xff'}) {
            QByteArray damaged = whole;
            damaged[i] = byte;
            expectVerdict(damaged);
        }
    }
}

TEST(XmlReader, theDeepestListReadsAndOneLevelMoreDoesNot)
{
    constexpr int depth = platform::propertylist::maximumDepth;
    const auto nested = [](int levels) {
        return plist(QByteArray("<array>").repeated(levels) + QByteArray("</array>").repeated(levels));
    };
    valueOf(nested(depth));
    EXPECT_EQ(errorOf(nested(depth + 1)), "Line 1, column 3613: the list is nested deeper than 512 levels");
    EXPECT_EQ(errorOf(nested(100'000)), "Line 1, column 3613: the list is nested deeper than 512 levels");
    EXPECT_EQ(errorOf(QByteArray("<dict><key>a</key>").repeated(513)),
              "Line 1, column 9223: the list is nested deeper than 512 levels");
}

TEST(XmlReader, moreThanAMillionObjectsAreRefused)
{
    constexpr qint64 mostItems = platform::propertylist::maximumObjects - 1; // and the array itself
    const auto list = [](qint64 items) {
        return "<array>" + QByteArray("<true/>").repeated(items) + "</array>";
    };
    EXPECT_EQ(valueOf(list(mostItems)).toList().size(), mostItems);
    EXPECT_EQ(errorOf(list(mostItems + 1)),
              "Line 1, column 7000008: the list holds more than 1000000 objects");
}

TEST(XmlReader, entitiesThatMultiplyAreRefused)
{
    QByteArray bomb = "<?xml version=\"1.0\"?>\n<!DOCTYPE plist [\n<!ENTITY a0 \"ha\">\n";
    for (int i = 1; i < 30; ++i) {
        const QByteArray inner = "&a" + QByteArray::number(i - 1) + ';';
        bomb += "<!ENTITY a" + QByteArray::number(i) + " \"" + inner + inner + "\">\n";
    }
    bomb += "]>\n<plist><string>&a29;</string></plist>";
    EXPECT_EQ(errorOf(bomb), "Line 33, column 3: the list declares the entity 'a0', which is not accepted");
}

TEST(XmlReader, parameterEntitiesThatMultiplyAreRefused)
{
    QByteArray bomb = "<?xml version=\"1.0\"?>\n<!DOCTYPE plist [\n<!ENTITY % p0 \"<!-- ha -->\">\n";
    for (int i = 1; i < 30; ++i) {
        const QByteArray inner = "&#37;p" + QByteArray::number(i - 1) + ';';
        bomb += "<!ENTITY % p" + QByteArray::number(i) + " \"" + inner + inner + "\">\n";
    }
    bomb += "%p29;\n]>\n<plist><true/></plist>";
    EXPECT_EQ(errorOf(bomb),
              "Line 33, column 6: entity expands to more characters than the entity expansion limit");
}

TEST(XmlReader, aParameterEntityMayHardlyExpandAtAll)
{
    const auto list = [](int size) {
        return "<!DOCTYPE plist [<!ENTITY % p \"<!-- " + QByteArray(size, 'x') + " -->\">\n%p;]>\n<true/>";
    };
    EXPECT_EQ(errorOf(list(300)),
              "Line 2, column 4: entity expands to more characters than the entity expansion limit");
    EXPECT_EQ(errorOf(list(10)), "Line 2, column 6: the list declares the entity 'p', which is not accepted");
}

TEST(XmlReader, anExternalEntityIsNotFetched)
{
    const QByteArray list = "<!DOCTYPE plist [<!ENTITY file SYSTEM \"file:///etc/hostname\">]>\n"
                            "<plist><string>&file;</string></plist>";
    EXPECT_EQ(errorOf(list), "Line 1, column 64: the list declares the entity 'file', which is not accepted");
}

TEST(XmlReader, anUnknownEntityIsAnErrorEvenIfAnOutsideDtdCouldDeclareIt)
{
    EXPECT_EQ(errorOf(prolog + plist("<string>&nbsp;</string>")),
              "Line 3, column 36: the entity '&nbsp;' is not known");
    EXPECT_EQ(errorOf(prolog + plist("&nbsp;<true/>")),
              "Line 3, column 28: the entity '&nbsp;' is not known");
}

TEST_P(XmlValue, reads)
{
    expectSame(valueOf(plist(GetParam().data)), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    Scalars, XmlValue,
    testing::Values(
        ValueRow{"emptyString", "<string/>", u""_s}, //
        ValueRow{"stringKeepsItsBlanks", "<string> a\n</string>", u" a\n"_s},
        ValueRow{"characterReferences", "<string>&#65;&#x1F600;&quot;&apos;</string>", u"A\U0001f600\"'"_s},
        ValueRow{"integer", "<integer>42</integer>", 42LL},
        ValueRow{"integerAmongBlanks", "<integer>\n 42 </integer>", 42LL},
        ValueRow{"positiveSign", "<integer>+7</integer>", 7LL}, //
        ValueRow{"negativeInteger", "<integer>-7</integer>", -7LL},
        ValueRow{"leadingZeroIsDecimal", "<integer>010</integer>", 10LL},
        ValueRow{"hexadecimalInteger", "<integer>0xFf</integer>", 255LL},
        ValueRow{"negativeHexadecimal", "<integer>-0x10</integer>", -16LL},
        ValueRow{"largestSigned", "<integer>9223372036854775807</integer>",
                 std::numeric_limits<qlonglong>::max()},
        ValueRow{"smallestSigned", "<integer>-9223372036854775808</integer>",
                 std::numeric_limits<qlonglong>::min()},
        ValueRow{"firstUnsigned", "<integer>9223372036854775808</integer>", 9223372036854775808ULL},
        ValueRow{"largestUnsigned", "<integer>18446744073709551615</integer>",
                 std::numeric_limits<qulonglong>::max()},
        ValueRow{"wholeReal", "<real>3</real>", 3.0}, //
        ValueRow{"realWithExponent", "<real>-1.5e-3</real>", -0.0015},
        ValueRow{"infinity", "<real>+infinity</real>", std::numeric_limits<double>::infinity()},
        ValueRow{"negativeInfinity", "<real>-Infinity</real>", -std::numeric_limits<double>::infinity()},
        ValueRow{"emptyData", "<data></data>", QByteArray("")}, //
        ValueRow{"emptyDictionary", "<dict/>", QVariantMap()}, //
        ValueRow{"emptyArray", "<array> </array>", QVariantList()},
        ValueRow{"emptyKey", "<dict><key/><string>a</string></dict>", QVariantMap{{u""_s, u"a"_s}}},
        ValueRow{"processingInstructions", "<?a b?><string>a<?c d?>b</string>", u"ab"_s},
        ValueRow{"firstYear", "<date>0001-01-01T00:00:00Z</date>", QDateTime({1, 1, 1}, {0, 0}, Qt::UTC)}),
    nameOfRow<ValueRow>);

TEST_P(XmlListWithError, saysWhatIsWrongAndWhere)
{
    EXPECT_EQ(errorOf(GetParam().data), GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    Structure, XmlListWithError,
    testing::Values(
        ErrorRow{"noValueInThePlist", "<plist/>", "Line 1, column 9: the <plist> holds no value"},
        ErrorRow{"twoValuesInThePlist", "<plist>\n<true/>\n<true/></plist>",
                 "Line 3, column 8: the <plist> holds more than one value"},
        ErrorRow{"plistInsideAPlist", "<plist><plist><true/></plist></plist>",
                 "Line 1, column 15: unexpected element <plist>"},
        ErrorRow{"unknownElement", "<dict><key>a</key>\n<number>1</number></dict>",
                 "Line 2, column 9: unexpected element <number>"},
        ErrorRow{"elementNamesAreInLowerCase", "<Dict/>", "Line 1, column 8: unexpected element <Dict>"},
        ErrorRow{"aPrefixMakesAnotherElement", "<x:dict/>", "Line 1, column 10: unexpected element <x:dict>"},
        ErrorRow{"webPage", "<html><body>Bad Gateway</body></html>",
                 "Line 1, column 7: unexpected element <html>"},
        ErrorRow{"keyWithoutValueAtTheEnd", "<dict>\n<key>a</key>\n</dict>",
                 "Line 3, column 8: the <key> 'a' has no value"},
        ErrorRow{"keyAfterKey", "<dict><key>a</key><key>b</key><true/></dict>",
                 "Line 1, column 24: the <key> 'a' has no value"},
        ErrorRow{"valueWithoutKey", "<dict>\n  <string>a</string></dict>",
                 "Line 2, column 11: a <string> stands where a <key> is expected"},
        ErrorRow{"keyInAnArray", "<array><key>a</key></array>",
                 "Line 1, column 13: a <key> stands where a value is expected"},
        ErrorRow{"keyAtTheTop", "<key>a</key>", "Line 1, column 6: a <key> stands where a value is expected"},
        ErrorRow{"textInADictionary", "<dict>oops<key>a</key><true/></dict>",
                 "Line 1, column 12: unexpected text 'oops'"},
        ErrorRow{"textInAnArray", "<array><true/>oops</array>", "Line 1, column 20: unexpected text 'oops'"},
        ErrorRow{"textInThePlist", "<plist>oops<true/></plist>", "Line 1, column 13: unexpected text 'oops'"},
        ErrorRow{"textBetweenKeyAndValue", "<dict><key>a</key>oops<true/></dict>",
                 "Line 1, column 24: unexpected text 'oops'"},
        ErrorRow{"longTextIsShortened", "<array>0123456789012345678901234567890123456789012</array>",
                 "Line 1, column 52: unexpected text '0123456789012345678901234567890123456789...'"},
        ErrorRow{"elementInAString", "<string>a<b/></string>",
                 "Line 1, column 14: a <b> stands inside a <string>, which holds only text"},
        ErrorRow{"elementInAKey", "<dict><key><string/></key></dict>",
                 "Line 1, column 21: a <string> stands inside a <key>, which holds only text"},
        ErrorRow{"trailingText", "<plist><true/></plist>\noops",
                 "Line 2, column 2: extra content at end of document"},
        ErrorRow{"trailingElement", "<true/><true/>", "Line 1, column 15: extra content at end of document"},
        ErrorRow{"cutInHalf", "<plist><dict><key>a</key>",
                 "Line 1, column 26: the document ends before the list is complete"},
        ErrorRow{"plistNotClosed", "<plist>\n<dict/>\n",
                 "Line 3, column 1: the document ends before the list is complete"},
        ErrorRow{"wrongEndTag", "<array><true/></dict>",
                 "Line 1, column 22: opening and ending tag mismatch"},
        ErrorRow{"wrongBytes", "<string>\xff</string>", "Line 1, column 9: the bytes here are no text"},
        ErrorRow{"onlyAProlog", "<?xml version=\"1.0\"?>\n",
                 "Line 2, column 1: the document ends before the list is complete"}),
    nameOfRow<ErrorRow>);

INSTANTIATE_TEST_SUITE_P(
    Scalars, XmlListWithError,
    testing::Values(
        ErrorRow{"emptyInteger", "<integer/>", "Line 1, column 11: '' is no integer of at most 64 bits"},
        ErrorRow{"wordAsInteger", "<integer>one</integer>",
                 "Line 1, column 23: 'one' is no integer of at most 64 bits"},
        ErrorRow{"fractionAsInteger", "<integer>1.5</integer>",
                 "Line 1, column 23: '1.5' is no integer of at most 64 bits"},
        ErrorRow{"twoSigns", "<integer>--1</integer>",
                 "Line 1, column 23: '--1' is no integer of at most 64 bits"},
        ErrorRow{"bareHexadecimalPrefix", "<integer>0x</integer>",
                 "Line 1, column 22: '0x' is no integer of at most 64 bits"},
        ErrorRow{"integerTooLarge", "<integer>18446744073709551616</integer>",
                 "Line 1, column 40: '18446744073709551616' is no integer of at most 64 bits"},
        ErrorRow{"integerTooSmall", "<integer>-9223372036854775809</integer>",
                 "Line 1, column 40: '-9223372036854775809' is no integer of at most 64 bits"},
        ErrorRow{"wordAsReal", "<real>many</real>", "Line 1, column 18: 'many' is no number"},
        ErrorRow{"emptyReal", "<real></real>", "Line 1, column 14: '' is no number"},
        ErrorRow{"dateWithoutTime", "<date>2021-03-04</date>",
                 "Line 1, column 24: '2021-03-04' is no date of the form YYYY-MM-DDThh:mm:ssZ"},
        ErrorRow{"dateThatDoesNotExist", "<date>2021-02-30T00:00:00Z</date>",
                 "Line 1, column 34: '2021-02-30T00:00:00Z' is no date of the form YYYY-MM-DDThh:mm:ssZ"},
        ErrorRow{"wrongBase64", "<data>A*==</data>", "Line 1, column 18: 'A*==' is no base64 data"},
        ErrorRow{"cutBase64", "<data>AAAAA</data>", "Line 1, column 19: 'AAAAA' is no base64 data"},
        ErrorRow{"trueWithText", "<true>yes</true>",
                 "Line 1, column 17: 'yes' stands in a <true>, which must be empty"},
        ErrorRow{"falseWithText", "<false> </false>",
                 "Line 1, column 17: '' stands in a <false>, which must be empty"}),
    nameOfRow<ErrorRow>);
