// What is read from the service's reports.

#include "notarization/pollinginfo.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

struct LineEndRow {
    const char *name;
    QString lineEnd;
};

class ReportLine : public testing::TestWithParam<LineEndRow> { };

TEST_P(ReportLine, endsWhereTheSystemThatWroteItEndsLines)
{
    const QString end = GetParam().lineEnd;
    const QString report = u"LogFileURL: https://example.com/a.json"_s + end + u"Status: In Progress"_s + end
        + u"Status Code: 0"_s;
    EXPECT_EQ(verdict(report), u"in progress"_s);
    EXPECT_EQ(logFileURL(report), u"https://example.com/a.json"_s);
}

INSTANTIATE_TEST_SUITE_P(
    LineEnds, ReportLine,
    testing::Values(LineEndRow{"lineFeed", u"\n"_s}, LineEndRow{"verticalTab", u"\v"_s},
                    LineEndRow{"formFeed", u"\f"_s}, LineEndRow{"carriageReturn", u"\r"_s},
                    LineEndRow{"both", u"\r\n"_s}, LineEndRow{"nextLine", QString(QChar(0x85))},
                    LineEndRow{"lineSeparator", QString(QChar(QChar::LineSeparator))},
                    LineEndRow{"paragraphSeparator", QString(QChar(QChar::ParagraphSeparator))}),
    [](const auto &row) { return row.param.name; });

TEST(IssuesSummary, ofAnythingButAnArrayIsNone)
{
    EXPECT_FALSE(issuesSummary(R"({"issues": "one: unsigned"})"));
    EXPECT_FALSE(issuesSummary(R"({"issues": {"message": "unsigned"}})"));
    EXPECT_FALSE(issuesSummary(R"({"status": "Accepted"})"));
    EXPECT_FALSE(issuesSummary(R"([{"message": "unsigned"}])"));
    EXPECT_TRUE(issuesSummary(R"({"issues": [{"message": "unsigned"}]})"));
}

TEST(Verdict, ofTwoStatusLinesIsTheFirst)
{
    EXPECT_EQ(verdict(u"Status: success\nStatus: invalid\n"_s), u"success"_s);
    EXPECT_EQ(verdict(u"Status: invalid\nStatus: success\n"_s), u"invalid"_s);
}
