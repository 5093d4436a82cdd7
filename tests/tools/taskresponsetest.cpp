// The record of a tool run: its texts and its report.

#include "tools/slwtaskresponse.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct DecodingRow {
    const char *name;
    QByteArray bytes;
    QString text;
};

class Decoding : public testing::TestWithParam<DecodingRow> { };

std::shared_ptr<OutputBuffer> buffer(const QByteArray &bytes)
{
    return std::make_shared<OutputBuffer>(bytes);
}

} // namespace

TEST_P(Decoding, givesTheText)
{
    const QString text = decodedToolOutput(GetParam().bytes);
    EXPECT_EQ(text, GetParam().text);
    EXPECT_EQ(text.isNull(), GetParam().text.isNull());
}

INSTANTIATE_TEST_SUITE_P(
    Bytes, Decoding,
    testing::Values(DecodingRow{"none", {}, {}}, DecodingRow{"empty", "", {}},
                    DecodingRow{"plain", "ok\n", u"ok\n"_s},
                    DecodingRow{"utf8", "caf\xc3\xa9 \xf0\x9f\x8d\x8e", u"café 🍎"_s},
                    DecodingRow{"notUtf8", "caf\xe9 bar", u"caf\u00e9 bar"_s},
                    DecodingRow{"invalidByteAtTheEnd", "abc\xff", u"abc\u00ff"_s},
                    DecodingRow{"cutOffInTheMiddleOfACharacter", "abc\xc3", u"abc\u00c3"_s},
                    DecodingRow{"cutOffAfterThreeOfFourBytes", "\xf0\x9f\x8d", u"\u00f0\u009f\u008d"_s},
                    DecodingRow{"nullByte", QByteArray("a\0b", 3), QString::fromLatin1("a\0b", 3)},
                    DecodingRow{"byteOrderMark", "\xef\xbb\xbf", u"\ufeff"_s}),
    [](const auto &row) { return row.param.name; });

TEST(ToolResponse, aNewOneHasOnlyPathAndArguments)
{
    const auto response = SLWTaskResponse::responseWithPath(u"/usr/bin/ditto"_s, {u"-c"_s, u"-k"_s});
    EXPECT_EQ(response->path, u"/usr/bin/ditto"_s);
    EXPECT_EQ(response->args, (QStringList{u"-c"_s, u"-k"_s}));
    EXPECT_TRUE(response->outputData().isNull());
    EXPECT_TRUE(response->errorData().isNull());
    EXPECT_TRUE(response->outputString().isNull());
    EXPECT_EQ(
        response->fileLogString(),
        u"Result for /usr/bin/ditto -c -k\nTermination status: 0\nStandardOut: (null)\nStandardError: (null)"_s);
}

TEST(ToolResponse, theReportOfARunWithoutArgumentsLeavesTheirPlaceEmpty)
{
    EXPECT_EQ(SLWTaskResponse::responseWithPath(u"/bin/true"_s, {})->fileLogString(),
              u"Result for /bin/true \nTermination status: 0\nStandardOut: (null)\nStandardError: (null)"_s);
}

TEST(ToolResponse, textThatLooksLikeAFormatIsReportedAsItIs)
{
    const auto response = SLWTaskResponse::responseWithPath(u"/bin/%1"_s, {u"%2"_s, u"%@"_s});
    response->setData(buffer("%3 %n"), buffer("%4"));
    response->status.set(-1);
    EXPECT_EQ(response->fileLogString(),
              u"Result for /bin/%1 %2 %@\nTermination status: -1\nStandardOut: %3 %n\nStandardError: %4"_s);
}

TEST(ToolResponse, itsTextIsTheOutputAndOnlyWithoutOneTheError)
{
    const auto response = SLWTaskResponse::responseWithPath(u"/bin/tool"_s, {});
    response->setData(buffer("out"), buffer("wrong"));
    EXPECT_EQ(response->text(), u"out"_s);
    response->setData(buffer(""), buffer("wrong"));
    EXPECT_EQ(response->text(), u"wrong"_s);
    response->setData(buffer(""), buffer(""));
    EXPECT_TRUE(response->text().isNull());
}

TEST(ToolResponse, itsDataAreTheRunnersOwnBuffersUntilTheyAreKept)
{
    const auto output = buffer("out");
    const auto response = SLWTaskResponse::responseWithPath(u"/bin/tool"_s, {});
    response->setData(output, buffer("wrong"));
    output->set("next run");
    EXPECT_EQ(response->outputData(), "next run");
    response->keepData();
    output->set("run after that");
    EXPECT_EQ(response->outputData(), "next run");
}

TEST(ToolResponse, keepingTheDataOfASkippedRunLeavesItNull)
{
    const auto response = SLWTaskResponse::responseWithPath(u"/bin/tool"_s, {});
    response->keepData();
    EXPECT_TRUE(response->outputData().isNull());
    EXPECT_TRUE(response->errorData().isNull());
}
