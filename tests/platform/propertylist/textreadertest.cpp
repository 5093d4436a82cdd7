#include "platform/propertylist/limits.h"
#include "platform/propertylist/listexpectations.h"
#include "platform/propertylist/propertylist.h"

#include <QStringEncoder>

using namespace Qt::StringLiterals;

namespace {

class TextListWithError : public testing::TestWithParam<ErrorRow> { };

} // namespace

TEST(TextReader, aDictionaryReadsWithAllThatTheFormHas)
{
    const auto value = valueOf(R"(// a comment
{
    /* another */ name = word;
    "com.apple.x" = 1;
    'single' = "it's";
    path = /usr/bin/x-y_$z:1.0;
    list = ( a, "b c", ( ), { }, );
    data = <0fbd 77
        A0>;
    url = http://example.com/;
})");
    expectSame(value,
               QVariantMap{{u"name"_s, u"word"_s},
                           {u"com.apple.x"_s, u"1"_s},
                           {u"single"_s, u"it's"_s},
                           {u"path"_s, u"/usr/bin/x-y_$z:1.0"_s},
                           {u"list"_s, QVariantList{u"a"_s, u"b c"_s, QVariantList(), QVariantMap()}},
                           {u"data"_s, QByteArray::fromHex("0fbd77a0")},
                           {u"url"_s, u"http://example.com/"_s}});
}

TEST(TextReader, escapesInQuotesStandForTheirCharacters)
{
    expectSame(valueOf(R"("a\n\t\"\\\'\r\a\b\f\v\q")"), u"a\n\t\"\\'\r\a\b\f\vq"_s);
    expectSame(valueOf(R"("\U00e9\u4E2D\Ue9 \U")"), u"\u00e9\u4e2d\u00e9 U"_s);
    expectSame(valueOf(R"("\U00e9f")"),
               u"\u00e9"
               u"f"_s);
    expectSame(valueOf(R"("\101\12x\1018")"), u"A\nxA8"_s);
    expectSame(valueOf("\"a\\\nb\nc\""), u"a\nb\nc"_s);
}

TEST(TextReader, octalEscapesBeyondAsciiAreNextstepCharacters)
{
    expectSame(valueOf(R"("\200\222\260\261\335\341\367\373\376")"),
               u"\u00a0\u00d2\u00ae\u2013\u00e9\u00c6\u00fd\u00df\ufffd"_s);
}

TEST(TextReader, aStringsFileIsADictionaryWithoutBraces)
{
    expectSame(valueOf("/* Title */\n\"Title\" = \"Hello\";\nkey = value;\n\"same\";\n"),
               QVariantMap{{u"Title"_s, u"Hello"_s}, {u"key"_s, u"value"_s}, {u"same"_s, u"same"_s}});
    expectSame(valueOf("// nothing yet\n"), QVariantMap());
}

TEST(TextReader, aStringsFileInUtf16ReadsByItsMark)
{
    QStringEncoder encoder(QStringEncoder::Utf16LE, QStringEncoder::Flag::WriteBom);
    const QByteArray data = encoder.encode(u"\"a\" = \"\u00e9\";"_s);
    expectSame(valueOf(data), QVariantMap{{u"a"_s, u"\u00e9"_s}});
}

TEST(TextReader, utf16OfAnOddNumberOfBytesIsAnError)
{
    EXPECT_EQ(errorOf(QByteArray("\xff\xfe"
                                 "a\0;\0x",
                                 7)),
              "Line 1, column 3: the bytes here are no text");
}

TEST(TextReader, utf16CutAnywhereGetsAVerdict)
{
    QStringEncoder encoder(QStringEncoder::Utf16BE, QStringEncoder::Flag::WriteBom);
    const QByteArray whole = encoder.encode(u"\"a\" = \"\U0001f600\";"_s);
    expectSame(valueOf(whole), QVariantMap{{u"a"_s, u"\U0001f600"_s}});
    for (qsizetype size = 0; size < whole.size(); ++size)
        expectVerdict(whole.first(size));
}

TEST(TextReader, aStringByItselfIsAList)
{
    expectSame(valueOf("word"), u"word"_s);
    expectSame(valueOf("  \"two words\" // and a comment"), u"two words"_s);
    expectSame(valueOf("\"\""), u""_s);
}

TEST(TextReader, ofTwoEqualKeysTheLastOneWins)
{
    expectSame(valueOf("{ a = 1; b = 2; a = 3; }"), QVariantMap{{u"a"_s, u"3"_s}, {u"b"_s, u"2"_s}});
}

TEST(TextReader, aListCutAnywhereIsAnError)
{
    const QByteArray whole = "{ a = ( b, \"c\\n\" ); /* d */ e = <0f>; }";
    valueOf(whole);
    for (qsizetype size = 0; size < whole.size(); ++size)
        EXPECT_FALSE(platform::propertyListFromData(whole.first(size))) << size;
}

TEST(TextReader, aStringsFileCutAnywhereGetsAVerdict)
{
    const QByteArray whole = "a = ( b, \"c\\U00\" ); /* d */ e = <0f>; f;";
    for (qsizetype size = 0; size <= whole.size(); ++size)
        expectVerdict(whole.first(size));
}

TEST(TextReader, theDeepestListReadsAndOneLevelMoreDoesNot)
{
    constexpr int depth = platform::propertylist::maximumDepth;
    valueOf(QByteArray("(").repeated(depth) + QByteArray(")").repeated(depth));
    EXPECT_EQ(errorOf(QByteArray("(").repeated(depth + 1)),
              "Line 1, column 513: the list is nested deeper than 512 levels");
    EXPECT_EQ(errorOf(QByteArray("{a=").repeated(100'000)),
              "Line 1, column 1537: the list is nested deeper than 512 levels");
    EXPECT_EQ(errorOf(QByteArray("a=(").repeated(1) + QByteArray("(").repeated(100'000)),
              "Line 1, column 514: the list is nested deeper than 512 levels");
}

TEST(TextReader, moreThanAMillionObjectsAreRefused)
{
    constexpr qint64 mostItems = platform::propertylist::maximumObjects - 1; // and the array itself
    const auto list = [](qint64 items) { return '(' + QByteArray("a,").repeated(items) + ')'; };
    EXPECT_EQ(valueOf(list(mostItems)).toList().size(), mostItems);
    EXPECT_EQ(errorOf(list(mostItems + 1)),
              "Line 1, column 2000000: the list holds more than 1000000 objects");
}

TEST_P(TextListWithError, saysWhatIsWrongAndWhere)
{
    EXPECT_EQ(errorOf(GetParam().data), GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    Situations, TextListWithError,
    testing::Values(
        ErrorRow{"twoBareWords", "hello world", "Line 1, column 7: unexpected character 'w'"},
        ErrorRow{"toolMessage", "Error: no such file", "Line 1, column 8: unexpected character 'n'"},
        ErrorRow{"strayBrace", "a = b;\n  }", "Line 2, column 3: unexpected character '}'"},
        ErrorRow{"wrongFirstCharacter", "%PDF-1.4", "Line 1, column 1: unexpected character '%'"},
        ErrorRow{"firstCharacterOutsideUnicodesFirstPlane", "\xf0\x9f\x98\x80",
                 "Line 1, column 1: unexpected character '\xf0\x9f\x98\x80'"},
        ErrorRow{"controlCharacter", "{ \x01 }", "Line 1, column 3: unexpected character U+0001"},
        ErrorRow{"trailingText", "{ a = b; }\nc", "Line 2, column 1: unexpected character 'c'"},
        ErrorRow{"missingSemicolon", "{\r\n a = b\r\n}",
                 "Line 3, column 1: a ';' is missing after the entry 'a'"},
        ErrorRow{"keyWithoutValue", "{ a = ; }", "Line 1, column 7: unexpected character ';'"},
        ErrorRow{"arrayAsKey", "{ (a) = b; }", "Line 1, column 3: unexpected character '('"},
        ErrorRow{"wrongBracket", "( a }", "Line 1, column 5: unexpected character '}'"},
        ErrorRow{"twoCommas", "( a,, b )", "Line 1, column 5: unexpected character ','"},
        ErrorRow{"dictionaryNotClosed", "{ a = b;\n",
                 "Line 2, column 1: the text ends before the list is complete"},
        ErrorRow{"entryNotClosed", "{ a = b", "Line 1, column 8: the text ends before the list is complete"},
        ErrorRow{"arrayNotClosed", "(a,\r(b,", "Line 2, column 4: the text ends before the list is complete"},
        ErrorRow{"quotedStringNotClosed", "{\n a = \"b; }",
                 "Line 2, column 6: the quoted string is not closed"},
        ErrorRow{"backslashAtTheEnd", "\"a\\", "Line 1, column 1: the quoted string is not closed"},
        ErrorRow{"commentNotClosed", "{ a = b; /* c }", "Line 1, column 10: the comment is not closed"},
        ErrorRow{"slashThatOpensNoComment", "/* a */ /* b", "Line 1, column 9: the comment is not closed"},
        ErrorRow{"oddHexadecimalDigits", "{ a = <123>; }",
                 "Line 1, column 7: the data has an odd number of digits"},
        ErrorRow{"wrongHexadecimalDigit", "{ a = <12g4>; }", "Line 1, column 10: unexpected character 'g'"},
        ErrorRow{"dataNotClosed", "( <1234", "Line 1, column 8: the text ends before the list is complete"},
        ErrorRow{"characterCutOffAtTheEnd", "a = b;\xc3", "Line 1, column 7: the bytes here are no text"},
        ErrorRow{"bytesThatAreNoText", "a =\n \"\xff\";", "Line 2, column 3: the bytes here are no text"}),
    nameOfRow<ErrorRow>);
