#include "about/credits.h"

#include <gtest/gtest.h>

#include <ostream>

using namespace Qt::StringLiterals;

namespace {

struct RtfRow {
    const char *situation;
    QByteArray rtf;
    QList<StyledText> text;
};

void PrintTo(const RtfRow &row, std::ostream *stream)
{
    *stream << row.rtf.constData();
}

class Rtf : public testing::TestWithParam<RtfRow> { };

} // namespace

TEST_P(Rtf, isReadAsStyledText)
{
    EXPECT_EQ(styledTextFromRtf(GetParam().rtf), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, Rtf,
    testing::Values(
        RtfRow{"nothing", "", {}}, RtfRow{"anEmptyText", "{\\rtf1\\ansi}", {}},
        RtfRow{"paragraphs", "{\\rtf1 One\\par\nTwo\\line Three\\tab x}", {{u"One\nTwo\nThree\tx"_s}}},
        RtfRow{"styles",
               "{\\rtf1 a\\b b\\i c\\b0 d\\i0 e}",
               {{u"a"_s}, {u"b"_s, true}, {u"c"_s, true, true}, {u"d"_s, false, true}, {u"e"_s}}},
        RtfRow{"aStyleThatEndsWithItsGroup", "{\\rtf1{\\b bold} plain}", {{u"bold"_s, true}, {u" plain"_s}}},
        RtfRow{"tablesAndNotesOfPrograms",
               "{\\rtf1{\\fonttbl{\\f0 Helvetica;}}{\\colortbl;\\red0;}{\\*\\generator x;}{\\info{\\title "
               "t}}text}",
               {{u"text"_s}}},
        RtfRow{"signsThatHaveAMeaning", "{\\rtf1 \\\\ \\{\\}\\~x}", {{u"\\ {}\u00a0x"_s}}},
        RtfRow{"aCharacterByItsNumber", "{\\rtf1 caf\\'e9}", {{u"café"_s}}},
        RtfRow{"aUnicodeCharacterWithItsStandIn", "{\\rtf1 it\\u8217?s \\u8211\\'96 so}", {{u"it’s – so"_s}}},
        RtfRow{"aUnicodeCharacterAboveHalf", "{\\rtf1\\uc0\\u-4051 x}", {{u"\uf02dx"_s}}},
        RtfRow{"aTextThatBreaksOff", "{\\rtf1 text\\", {{u"text"_s}}},
        RtfRow{"moreEndsThanGroups", "{\\rtf1 a}}}b", {{u"ab"_s}}}),
    [](const auto &row) { return row.param.situation; });

TEST(Credits, ofTheApplicationCanBeReadWhole)
{
    const QList<StyledText> credits = readCredits(QStringLiteral(CREDITS));
    ASSERT_GT(credits.size(), 3);
    EXPECT_EQ(credits.first(), (StyledText{u"Made by"_s, true, false}));
    EXPECT_TRUE(credits.last().text.endsWith(u"what Apple decides.\n"_s) || credits.last().text == u"\n"_s);
    for (const StyledText &text : credits)
        EXPECT_FALSE(text.text.contains(u'\\') || text.text.contains(u'{')) << text.text.toStdString();
}

TEST(Credits, thatAreMissingAreEmpty)
{
    EXPECT_TRUE(readCredits(u"/no/such/Credits.rtf"_s).isEmpty());
}
