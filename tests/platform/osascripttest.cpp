#include "platform/qt/osascript.h"
#include "platform/posix/posixfileservice.h"
#include "platform/posix/posixprocesslauncher.h"
#include "temporaryfolder.h"

using namespace Qt::StringLiterals;
using namespace platform;

namespace {

struct ListRow {
    const char *name;
    QByteArray reply;
    QStringList list;
};

class Lists : public testing::TestWithParam<ListRow> { };

struct NothingRow {
    const char *name;
    int status;
    QByteArray reply;
};

class Nothing : public testing::TestWithParam<NothingRow> { };

} // namespace

TEST_P(Lists, areRead)
{
    const AppleScriptResult result = readOsascriptReply(0, GetParam().reply, "a warning");
    ASSERT_TRUE(result.list);
    EXPECT_EQ(*result.list, GetParam().list);
    EXPECT_FALSE(result.file);
    EXPECT_TRUE(result.error.isNull());
}

INSTANTIATE_TEST_SUITE_P(
    OsascriptReply, Lists,
    testing::Values(ListRow{"two", "{\"Item 2\", \"Item 10\"}\n", {u"Item 2"_s, u"Item 10"_s}},
                    ListRow{"one", "{\"Only\"}\n", {u"Only"_s}}, ListRow{"none", "{}\n", {}},
                    ListRow{"emptyString", "{\"\", \"b\"}", {u""_s, u"b"_s}},
                    ListRow{"escapes",
                            "{\"say \\\"a\\\"\", \"back\\\\slash\", \"two\\nlines\"}",
                            {u"say \"a\""_s, u"back\\slash"_s, u"two\nlines"_s}},
                    ListRow{"bracesAndCommasInside", "{\"{a, b}\", \"c\"}", {u"{a, b}"_s, u"c"_s}},
                    ListRow{"unicode", "{\"Größe\"}", {u"Größe"_s}},
                    ListRow{"noBlanks", "{\"a\",\"b\"}", {u"a"_s, u"b"_s}},
                    ListRow{"newlineInside", "{\"a\nb\"}", {u"a\nb"_s}}),
    [](const auto &row) { return row.param.name; });

TEST_P(Nothing, isReadAndTheErrorStreamIsTheError)
{
    const AppleScriptResult result =
        readOsascriptReply(GetParam().status, GetParam().reply, "execution error: no (-1712)\n");
    EXPECT_FALSE(result.list);
    EXPECT_FALSE(result.file);
    EXPECT_EQ(result.error, u"execution error: no (-1712)"_s);
}

INSTANTIATE_TEST_SUITE_P(
    OsascriptReply, Nothing,
    testing::Values(NothingRow{"failure", 1, "{\"a\"}"}, NothingRow{"fileFailure", 1, "POSIX file \"/a\""},
                    NothingRow{"silence", 0, ""}, NothingRow{"oneString", 0, "\"a\""},
                    NothingRow{"openList", 0, "{\"a\", \"b\""}, NothingRow{"openString", 0, "{\"a"},
                    NothingRow{"danglingEscape", 0, "{\"a\\"}, NothingRow{"number", 0, "{1}"},
                    NothingRow{"moreBehind", 0, "{\"a\"} b"}, NothingRow{"danglingComma", 0, "{\"a\",}"},
                    NothingRow{"fileWithoutPath", 0, "POSIX file"},
                    NothingRow{"moreBehindTheFile", 0, "POSIX file \"/a\" b"}),
    [](const auto &row) { return row.param.name; });

TEST(OsascriptReply, aFileIsRead)
{
    const AppleScriptResult result = readOsascriptReply(0, "POSIX file \"/tmp/a \\\"b\\\".dmg\"\n", "");
    EXPECT_EQ(result.file, u"/tmp/a \"b\".dmg"_s);
    EXPECT_FALSE(result.list);
    EXPECT_TRUE(result.error.isNull());
}

TEST(OsascriptReply, aFailureWithoutAWordHasAnEmptyErrorThatIsNotNull)
{
    const AppleScriptResult result = readOsascriptReply(1, "", "");
    EXPECT_TRUE(result.error.isEmpty());
    EXPECT_FALSE(result.error.isNull());
}

TEST(OsaScript, theToolIsRunWithTheSource)
{
    const TemporaryFolder folder;
    const QString tool =
        folder.file(u"osascript"_s, "#!/bin/sh\nprintf '{\"%s\", \"%s\", \"%s\", \"%s\"}' \"$@\"\n");
    ASSERT_TRUE(PosixFileService().setPermissions(tool, 0755));
    PosixProcessLauncher launcher(
        [&](const QString &path) { return path == u"/usr/bin/osascript"_s ? tool : path; });
    const AppleScriptResult result = OsaScript(launcher).execute(u"with timeout\nend timeout"_s);
    EXPECT_EQ(result.list, (QStringList{u"-s"_s, u"s"_s, u"-e"_s, u"with timeout\nend timeout"_s}));
}

TEST(OsaScript, aScriptThatLastsLongerThanItMayIsEndedAndHasNoResult)
{
    const TemporaryFolder folder;
    const QString tool = folder.file(u"osascript"_s, "#!/bin/sh\nsleep 600\nprintf '{\"late\"}'\n");
    ASSERT_TRUE(PosixFileService().setPermissions(tool, 0755));
    PosixProcessLauncher launcher([&](const QString &) { return tool; });
    const AppleScriptResult result =
        OsaScript(launcher).execute(u"delay 600"_s, std::chrono::milliseconds(1));
    EXPECT_FALSE(result.list);
    EXPECT_FALSE(result.file);
}

TEST(OsaScript, aToolThatIsMissingIsAnError)
{
    PosixProcessLauncher launcher([](const QString &) { return u"/no/such/tool"_s; });
    const AppleScriptResult result = OsaScript(launcher).execute(u"beep"_s);
    EXPECT_FALSE(result.list);
    EXPECT_TRUE(result.error.contains(u"No such file or directory"_s));
}
