#include "ctl/commandline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

Request parse(const QString &line)
{
    return parseCommandLine(line.split(u' ', Qt::SkipEmptyParts));
}

} // namespace

TEST(CommandLine, aSubmissionTakesItsOptionsOnEitherSideOfThePath)
{
    for (const QString &line :
         {u"submit --follow --timeout 1.5 Foo.app --document a-b --skip-stapling --show-dialogs"_s,
          u"submit Foo.app --document=a-b --show-dialogs --skip-stapling --timeout=1.5 --follow"_s}) {
        const Request request = parse(line);
        ASSERT_EQ(request.kind, Request::Kind::run) << request.problem.toStdString();
        EXPECT_EQ(request.operands, QStringList{u"Foo.app"_s});
        EXPECT_EQ(request.document, u"a-b"_s);
        EXPECT_TRUE(request.follow && request.skipStapling && request.showDialogs);
        EXPECT_EQ(request.timeout, 1500);
    }
}

TEST(CommandLine, withoutOptionsThereIsNoLimitOfTime)
{
    const Request request = parse(u"submit Foo.app"_s);
    EXPECT_FALSE(request.follow || request.skipStapling || request.showDialogs);
    EXPECT_EQ(request.timeout, std::numeric_limits<int>::max());
}

TEST(CommandLine, aPauseIsANumberOfSecondsFromNoneUp)
{
    EXPECT_EQ(parse(u"sign Foo.app --tool-pause 0"_s).toolPause, 0);
    EXPECT_EQ(parse(u"submit Foo.app --tool-pause 0.5"_s).toolPause, 0.5);
    EXPECT_LT(parse(u"submit Foo.app"_s).toolPause, 0);
    for (const QString &line : {u"sign Foo.app --tool-pause -1"_s, u"sign Foo.app --tool-pause soon"_s,
                                u"sign Foo.app --tool-pause nan"_s, u"prepare Foo.app --tool-pause 1"_s})
        EXPECT_EQ(parse(line).kind, Request::Kind::wrongUse) << line.toStdString();
}

TEST(CommandLine, theHistoryTakesAPageAndItsForm)
{
    const Request request = parse(u"history --page 12 --xml"_s);
    EXPECT_EQ(request.kind, Request::Kind::run);
    EXPECT_EQ(request.page, 12);
    EXPECT_TRUE(request.xml);
    EXPECT_EQ(parse(u"history"_s).page, 0);
    EXPECT_FALSE(parse(u"history"_s).xml);
}

TEST(CommandLine, aTimeThatIsTooLongIsTheLongest)
{
    EXPECT_EQ(parse(u"submit a --timeout 1e12"_s).timeout, std::numeric_limits<int>::max());
}

TEST(CommandLine, anOperandMayLookLikeAnOptionBehindTwoDashes)
{
    EXPECT_EQ(parse(u"submit -- --follow.app"_s).operands, QStringList{u"--follow.app"_s});
}

TEST(CommandLine, aPropertyIsSetToAValueOrToNone)
{
    const Request value = parse(u"set --document a-b AppleID dev@example.com"_s);
    EXPECT_EQ(value.operands, (QStringList{u"AppleID"_s, u"dev@example.com"_s}));
    EXPECT_EQ(value.document, u"a-b"_s);
    EXPECT_FALSE(value.unset);
    const Request none = parse(u"set AppleID --unset --document a-b"_s);
    EXPECT_EQ(none.operands, QStringList{u"AppleID"_s});
    EXPECT_EQ(none.document, u"a-b"_s);
    EXPECT_TRUE(none.unset);
    EXPECT_EQ(parseCommandLine({u"set"_s, u"AppleID"_s, QString()}).operands,
              (QStringList{u"AppleID"_s, QString()}));
}

TEST(CommandLine, aValueMayBeginLikeAnOption)
{
    EXPECT_EQ(parse(u"set ErrorRetryLimit -1"_s).operands, (QStringList{u"ErrorRetryLimit"_s, u"-1"_s}));
    EXPECT_EQ(parse(u"set --document a AppPassword --secret"_s).operands,
              (QStringList{u"AppPassword"_s, u"--secret"_s}));
    EXPECT_EQ(parse(u"set --document a AppPassword --secret"_s).document, u"a"_s);
    EXPECT_EQ(parse(u"set --window 3 BoundsAsQDRect -20 -10 400 500"_s).operands,
              (QStringList{u"BoundsAsQDRect"_s, u"-20"_s, u"-10"_s, u"400"_s, u"500"_s}));
    for (const QString &slip : {u"--unste"_s, u"--unse"_s, u"--documnt"_s}) {
        EXPECT_EQ(parse(u"set AppleID "_s + slip).kind, Request::Kind::wrongUse) << slip.toStdString();
        EXPECT_EQ(parse(u"set AppleID -- "_s + slip).operands, (QStringList{u"AppleID"_s, slip}));
    }
    EXPECT_EQ(parse(u"set AppPassword -- --unset"_s).operands, (QStringList{u"AppPassword"_s, u"--unset"_s}));
}

TEST(CommandLine, aNewDocumentTakesAnyNumberOfProperties)
{
    EXPECT_EQ(parse(u"new"_s).kind, Request::Kind::run);
    EXPECT_EQ(parse(u"new AppleID=a=b DropDMGConfig="_s).operands,
              (QStringList{u"AppleID=a=b"_s, u"DropDMGConfig="_s}));
}

TEST(CommandLine, helpAndVersionGoBeforeAll)
{
    EXPECT_EQ(parse(u"--help"_s).kind, Request::Kind::help);
    EXPECT_EQ(parse(u"submit --help"_s).kind, Request::Kind::help);
    EXPECT_EQ(parse(u"--version"_s).kind, Request::Kind::version);
}

TEST(CommandLine, aCommandWithASlipOfTheFingerIsRecognised)
{
    EXPECT_EQ(parse(u"submti a"_s).problem, u"there is no command submti; did you mean submit?"_s);
    EXPECT_EQ(parse(u"documnets"_s).problem, u"there is no command documnets; did you mean documents?"_s);
    EXPECT_EQ(parse(u"fly"_s).problem, u"there is no command fly"_s);
    EXPECT_EQ(parse(QString(300, u'x')).problem, u"there is no command "_s + QString(300, u'x'));
}

class WrongUse : public testing::TestWithParam<const char *> { };

TEST_P(WrongUse, isToldApart)
{
    const Request request = parse(QString::fromLatin1(GetParam()));
    EXPECT_EQ(request.kind, Request::Kind::wrongUse);
    EXPECT_FALSE(request.problem.isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Lines, WrongUse,
    testing::Values("", "fly", "--follow submit a", "submit", "submit a b", "submit a --frob",
                    "submit a --timeout", "submit a --timeout 0", "submit a --timeout -1",
                    "submit a --timeout soon", "submit a --timeout nan", "submit a --document=", "log",
                    "log a b", "log a --follow", "staple", "staple a --skip-stapling", "sign a b", "prepare",
                    "prepare a --follow", "prepare a --identity=", "history 3", "history --page x",
                    "history --page -1", "history --page 18446744073709551615", "clear-log",
                    "submit a --page 1", "documents x", "windows --timeout 5", "cancel", "close", "open",
                    "quit now", "get", "get --document a --window 1 K", "new AppleID", "new =a",
                    "new --document a", "set", "set AppleID", "set --unset",
                    "set --document a --window 1 K V", "set K 1 2 3 4 5"));

TEST(CommandLine, theHelpNamesEveryCommand)
{
    for (const QString &command : commandNames())
        EXPECT_TRUE(helpText().contains(u"\n  "_s + command)) << command.toStdString();
}

TEST(CommandLine, theHelpNamesEveryOption)
{
    for (const QString &option :
         {u"--document"_s, u"--show-dialogs"_s, u"--skip-stapling"_s, u"--follow"_s, u"--timeout"_s,
          u"--window"_s, u"--identity"_s, u"--page"_s, u"--xml"_s, u"--unset"_s, u"--help"_s, u"--version"_s})
        EXPECT_TRUE(helpText().contains(option)) << option.toStdString();
}
