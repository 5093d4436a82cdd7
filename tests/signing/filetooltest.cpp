// What the walk makes of the file tool's answers.

#include "signing/scandecisions.h"
#include "signing/scantest.h"

#include <csignal>

using namespace Qt::StringLiterals;

struct ReportRow {
    const char *situation;
    const char *report;
    bool isCode;
};

class FileToolReport : public testing::TestWithParam<ReportRow> { };

TEST_P(FileToolReport, namesCodeOrDoesNot)
{
    EXPECT_EQ(namesSignableCode(QString::fromUtf8(GetParam().report)), GetParam().isCode);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, FileToolReport,
    testing::Values(ReportRow{"intel", "Mach-O 64-bit x86_64 executable, flags:<NOUNDEFS>\n", true},
                    ReportRow{"apple", "Mach-O 64-bit arm64 bundle\n", true},
                    ReportRow{"universal",
                              "Mach-O universal binary with 2 architectures: [x86_64:\\012- Mach-O 64-bit "
                              "x86_64 executable] [\\012- arm64]\n",
                              true},
                    ReportRow{"anotherProcessor", "Mach-O i386 executable\n", false},
                    ReportRow{"noBlankBeforeIntel", "x86_64\n", false},
                    ReportRow{"noBlankBeforeApple", "(arm64)\n", false},
                    ReportRow{"otherCase", "Mach-O 64-bit ARM64 X86_64\n", false},
                    ReportRow{"data", "data\n", false}, ReportRow{"nothing", "", false}),
    [](const auto &row) { return row.param.situation; });

class FileTool : public ScanTest {
protected:
    FileTool() { host.tools.add(u"/usr/bin/file"_s); }
};

TEST_F(FileTool, isAskedOnlyAboutRegularFilesWithAnExecuteBit)
{
    makeCode(u"Foo.app/Contents/MacOS/a tool"_s);
    makeCode(u"Foo.app/Contents/PkgInfo"_s);
    makeCode(u"Foo.app/Contents/code.txt"_s);
    makeCode(u"Foo.app/Contents/libx.dylib"_s);
    items::makeFile(host.item(u"Foo.app/Contents/Info.plist"_s), "<plist/>");
    items::makeLink(host.item(u"Foo.app/Contents/link"_s), u"MacOS/a tool"_s);
    walk(u"Foo.app"_s);
    EXPECT_EQ(host.tools.callsOf(u"file"_s),
              (QList<QStringList>{{u"-b"_s, host.item(u"Foo.app/Contents/MacOS/a tool"_s)}}));
}

TEST_F(FileTool, whoseRunFailsMakesNoCode)
{
    makeCode(u"Foo.app/Contents/MacOS/tool"_s);
    host.tools.answer(u"file"_s, {.status = 1, .output = "Mach-O 64-bit x86_64 executable\n"});
    walk(u"Foo.app"_s);
    EXPECT_EQ(discovered(), QStringList());
}

TEST_F(FileTool, thatDiesOfASignalMakesNoCode)
{
    makeCode(u"Foo.app/Contents/MacOS/tool"_s);
    host.tools.answer(u"file"_s, {.output = "Mach-O 64-bit x86_64 executable\n", .signal = SIGKILL});
    walk(u"Foo.app"_s);
    EXPECT_EQ(discovered(), QStringList());
}

TEST_F(FileTool, thatPrintsGarbageMakesNoCode)
{
    makeCode(u"Foo.app/Contents/MacOS/tool"_s);
    host.tools.answer(u"file"_s, {.output = QByteArray("\xff\xfe\x00\x80 x86-64", 11)});
    walk(u"Foo.app"_s);
    EXPECT_EQ(discovered(), QStringList());
}

TEST_F(FileTool, thatCannotBeLaunchedMakesNoCode)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    makeCode(u"Foo.app/Contents/MacOS/tool"_s);
    host.tools.remove(u"/usr/bin/file"_s);
    items::makeFile(host.tools.root() + u"/usr/bin/file"_s, "no program");
    walk(u"Foo.app"_s);
    EXPECT_EQ(members(), QStringList{u"Foo.app"_s});
}

TEST_F(FileTool, isNotWrittenToTheLog)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    host.tools.answer(u"file"_s, {.output = "Mach-O 64-bit x86_64 executable\n", .error = "warning"});
    makeWorkingCopy(u"Foo.app"_s);
    const QString before = host.text(u"Foo - Working/Submission Log.txt"_s);
    ASSERT_FALSE(before.isEmpty());
    walk(u"Foo - Working/Foo.app"_s);
    ASSERT_EQ(host.tools.callsOf(u"file"_s).size(), 1);
    EXPECT_EQ(host.text(u"Foo - Working/Submission Log.txt"_s), before);
}

TEST_F(FileTool, thatACancelEndsCostsOneFileAndTheWalkGoesOn)
{
    host.files.sortsListings = true;
    makeCode(u"Foo.app/Contents/MacOS/first"_s);
    makeCode(u"Foo.app/Contents/MacOS/second"_s);
    host.tools.answer(u"file"_s, {.output = "Mach-O 64-bit x86_64 executable\n"});
    host.tools.answerRun(u"file"_s, 1, {.output = "Mach-O 64-bit x86_64 executable\n", .hangs = true});
    OrderedPathSet signableSet;
    onWorker(document(), [&] {
        QSet<QString> setToSubtract;
        steps().scanner.parseDirectory(host.item(u"Foo.app"_s), signableSet, setToSubtract, {});
    });
    host.runUntil([this] { return host.tools.callsOf(u"file"_s).size() == 1; });
    document().doCancel();
    host.settle();
    EXPECT_EQ(host.tools.callsOf(u"file"_s).size(), 2);
    EXPECT_EQ(signableSet.paths(), QStringList{host.item(u"Foo.app/Contents/MacOS/second"_s)});
}
