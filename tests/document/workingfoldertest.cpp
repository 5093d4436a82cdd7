// The working folder: its names, its making and what is left where that fails.

#include "platform/itempath.h"
#include "run/workingfoldernames.h"
#include "support/steptest.h"

using namespace Qt::StringLiterals;

namespace {

// Names

struct NameRow {
    const char *name;
    QString fileName;
    QString base;
};

class BaseName : public testing::TestWithParam<NameRow> { };

class WorkingFolder : public StepTest {
protected:
    /// Makes the working folder for the item of that name, as a workflow would.
    bool create(const QString &name)
    {
        document().loggingToFile.set(isLogWanted);
        document().originalFileName.set(name);
        document().originalAppletURL.set(itempath::toUrl(host.item(name)));
        return run([this] { return steps().folder.create(); });
    }

    void launchWithApp()
    {
        items::makeBundle(host.item(u"Foo.app"_s));
        original = items::fingerprint(host.item(u"Foo.app"_s));
        host.launch();
        isLaunched = true;
    }

    void failAt(const QString &failingOperation, const QString &pathPart, const QString &error)
    {
        host.files.failure = [=](const QString &operation, const QString &path) {
            return operation == failingOperation && path.contains(pathPart) ? error : QString();
        };
    }

    /// Asserts that the item is as it was and can still be submitted.
    void expectUnharmed()
    {
        EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
        host.files.failure = nullptr;
        expectUsableFor(u"Foo.app"_s);
    }

    QByteArray original;
    bool isLogWanted = true;
};

} // namespace

TEST_P(BaseName, namesTheFolders)
{
    const QString base = itempath::withoutExtension(GetParam().fileName);
    EXPECT_EQ(base, GetParam().base);
    EXPECT_EQ(workingfolder::name(base, workingfolder::working), GetParam().base + u" - Working"_s);
    EXPECT_EQ(workingfolder::unmodifiedOriginalName(base), GetParam().base + u" - Unmodified Original"_s);
    EXPECT_EQ(workingfolder::unmodifiedOriginalPath(u"/P/"_s + GetParam().fileName, workingfolder::notarized),
              u"/P/"_s + GetParam().base + u" - Notarized/"_s + GetParam().base + u" - Unmodified Original/"_s
                  + GetParam().fileName);
}

INSTANTIATE_TEST_SUITE_P(Files, BaseName,
                         testing::Values(NameRow{"app", u"Foo.app"_s, u"Foo"_s},
                                         NameRow{"packageOfTheSameBase", u"Foo.pkg"_s, u"Foo"_s},
                                         NameRow{"twoDots", u"My.Tool.pkg"_s, u"My.Tool"_s},
                                         NameRow{"noExtension", u"Foo"_s, u"Foo"_s},
                                         NameRow{"hidden", u".app"_s, u".app"_s},
                                         NameRow{"endsInADot", u"Foo."_s, u"Foo."_s},
                                         NameRow{"blanks", u"My  App .app"_s, u"My  App "_s}),
                         [](const auto &row) { return row.param.name; });

TEST(WorkingFolderNames, theSuffixesAreTheseFive)
{
    EXPECT_EQ(workingfolder::working, u"Working");
    EXPECT_EQ(workingfolder::failed, u"Failed");
    EXPECT_EQ(workingfolder::submitted, u"Submitted");
    EXPECT_EQ(workingfolder::notarized, u"Notarized");
    EXPECT_EQ(workingfolder::codeSigned, u"Signed");
    EXPECT_EQ(workingfolder::logName, u"Submission Log.txt");
}

// Making

TEST_F(WorkingFolder, holdsACopyAndALogThatBeginsWithABanner)
{
    launchWithApp();
    EXPECT_TRUE(create(u"Foo.app"_s));
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Working"_s, u"Foo.app"_s}));
    EXPECT_EQ(host.listing(u"Foo - Working"_s), (QStringList{u"Foo.app"_s, u"Submission Log.txt"_s}));
    EXPECT_EQ(items::fingerprint(host.item(u"Foo - Working/Foo.app"_s)), original);
    const QString copyPath = host.item(u"Foo - Working/Foo.app"_s);
    EXPECT_EQ(copy(), copyPath);
    EXPECT_EQ(
        host.text(u"Foo - Working/Submission Log.txt"_s),
        u"14:03:22.123: ****************************************************************************************\nBeginning processing of app at '%1'\n****************************************************************************************\n\n"_s
            .arg(copyPath));
    EXPECT_EQ(host.log(LogStyle::bold), QStringList{u"Creating working copy..."_s});
    expectNoReport();
}

TEST_F(WorkingFolder, theBannersRulesHaveEightyEightAsterisks)
{
    EXPECT_EQ(workingfolder::banner(u"/P/Foo - Working/Foo.APP"_s),
              QString(88, u'*') + u"\nBeginning processing of APP at '/P/Foo - Working/Foo.APP'\n"_s
                  + QString(88, u'*') + u'\n');
}

TEST_F(WorkingFolder, theBannerOfStaplingByItselfBeginsWithABackslash)
{
    EXPECT_EQ(workingfolder::stapleOnlyBanner(u"/P/Foo.app"_s),
              u'\\' + QString(88, u'*') + u"\nBeginning staple only of file at '/P/Foo.app'\n"_s
                  + QString(88, u'*') + u'\n');
}

TEST_F(WorkingFolder, leftFromACrashIsReplacedWithoutAsking)
{
    launchWithApp();
    items::makeFile(host.item(u"Foo - Working/Foo.app/Contents/stale"_s), "stale");
    items::makeFile(host.item(u"Foo - Working/.hidden"_s), "stale");
    EXPECT_TRUE(create(u"Foo.app"_s));
    EXPECT_EQ(host.listing(u"Foo - Working"_s), (QStringList{u"Foo.app"_s, u"Submission Log.txt"_s}));
    EXPECT_EQ(items::fingerprint(host.item(u"Foo - Working/Foo.app"_s)), original);
    EXPECT_TRUE(host.window().sheets.isEmpty());
    EXPECT_TRUE(host.files.trashed.isEmpty());
}

TEST_F(WorkingFolder, isSharedByItemsOfTheSameBase)
{
    launchWithApp();
    items::makeFile(host.item(u"Foo.pkg"_s), "package");
    EXPECT_TRUE(create(u"Foo.app"_s));
    EXPECT_TRUE(create(u"Foo.pkg"_s));
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Working"_s, u"Foo.app"_s, u"Foo.pkg"_s}));
    EXPECT_EQ(host.listing(u"Foo - Working"_s), (QStringList{u"Foo.pkg"_s, u"Submission Log.txt"_s}));
}

TEST_F(WorkingFolder, ofAnItemWithoutAnExtensionHasItsWholeName)
{
    launchWithApp();
    items::makeFile(host.item(u"Tool"_s), "tool");
    EXPECT_TRUE(create(u"Tool"_s));
    EXPECT_EQ(host.listing(u"Tool - Working"_s), (QStringList{u"Submission Log.txt"_s, u"Tool"_s}));
    EXPECT_TRUE(host.text(u"Tool - Working/Submission Log.txt"_s).contains(u"processing of  at '"_s));
}

TEST_F(WorkingFolder, withoutALogFileHoldsOnlyTheCopy)
{
    launchWithApp();
    isLogWanted = false;
    EXPECT_TRUE(create(u"Foo.app"_s));
    EXPECT_EQ(host.listing(u"Foo - Working"_s), QStringList{u"Foo.app"_s});
    EXPECT_EQ(document().logHandle(), nullptr);
}

TEST_F(WorkingFolder, closesTheLogOfAnEarlierRun)
{
    launchWithApp();
    EXPECT_TRUE(create(u"Foo.app"_s));
    const auto earlier = document().logHandle();
    items::makeFile(host.item(u"Bar.pkg"_s), "package");
    EXPECT_TRUE(create(u"Bar.pkg"_s));
    earlier->write("late");
    EXPECT_FALSE(host.text(u"Foo - Working/Submission Log.txt"_s).contains(u"late"_s));
    EXPECT_TRUE(host.text(u"Bar - Working/Submission Log.txt"_s).contains(u"processing of pkg"_s));
}

TEST_F(WorkingFolder, thatIsALinkGoesWithoutWhatItLeadsTo)
{
    launchWithApp();
    items::makeFile(host.item(u"Precious/file"_s), "precious");
    items::makeLink(host.item(u"Foo - Working"_s), host.item(u"Precious"_s));
    const QByteArray precious = items::fingerprint(host.item(u"Precious"_s));
    EXPECT_TRUE(create(u"Foo.app"_s));
    EXPECT_EQ(items::fingerprint(host.item(u"Precious"_s)), precious);
}

TEST_F(WorkingFolder, thatIsAFileIsReplaced)
{
    launchWithApp();
    items::makeFile(host.item(u"Foo - Working"_s), "a file");
    EXPECT_TRUE(create(u"Foo.app"_s));
    EXPECT_EQ(host.listing(u"Foo - Working"_s), (QStringList{u"Foo.app"_s, u"Submission Log.txt"_s}));
}

TEST_F(WorkingFolder, keepsNamesOfAnyLetters)
{
    host.launch();
    const QString name = u"Äpfel 🍎 %1 'x'.app"_s;
    items::makeBundle(host.item(name));
    EXPECT_TRUE(create(name));
    EXPECT_EQ(host.listing(u"Äpfel 🍎 %1 'x' - Working"_s), (QStringList{u"Submission Log.txt"_s, name}));
}

// Failures

TEST_F(WorkingFolder, thatCannotBeCreatedIsReported)
{
    launchWithApp();
    failAt(u"createDirectory"_s, u"Foo - Working"_s, u"Permission denied"_s);
    EXPECT_FALSE(create(u"Foo.app"_s));
    expectReport(
        u"Cannot Create Working Folder"_s,
        u"Failed to create working folder '%1': Permission denied"_s.arg(host.item(u"Foo - Working"_s)));
    expectUnharmed();
}

TEST_F(WorkingFolder, thatCannotBeEmptiedIsReported)
{
    launchWithApp();
    items::makeFile(host.item(u"Foo - Working/stuck"_s), "stuck");
    failAt(u"removeItem"_s, u"Foo - Working"_s, u"Operation not permitted"_s);
    EXPECT_FALSE(create(u"Foo.app"_s));
    expectReport(
        u"Cannot Empty Working Folder"_s,
        u"Failed to empty working folder '%1': Operation not permitted"_s.arg(host.item(u"Foo - Working"_s)));
    EXPECT_EQ(host.listing(u"Foo - Working"_s), QStringList{u"stuck"_s}) << "no other name, no other content";
    expectUnharmed();
}

TEST_F(WorkingFolder, thatItselfCannotBeRemovedIsEmptied)
{
    launchWithApp();
    items::makeFile(host.item(u"Foo - Working/stale"_s), "stale");
    host.files.failure = [](const QString &operation, const QString &path) {
        return operation == "removeItem"_L1 && path.endsWith(u"Foo - Working"_s) ? u"busy"_s : QString();
    };
    EXPECT_TRUE(create(u"Foo.app"_s));
    EXPECT_EQ(host.listing(u"Foo - Working"_s), (QStringList{u"Foo.app"_s, u"Submission Log.txt"_s}));
    expectNoReport();
}

TEST_F(WorkingFolder, aLogThatCannotBeMadeIsNoFailure)
{
    launchWithApp();
    failAt(u"createFile"_s, u"Submission Log.txt"_s, u"No space left on device"_s);
    EXPECT_TRUE(create(u"Foo.app"_s));
    EXPECT_EQ(host.listing(u"Foo - Working"_s), QStringList{u"Foo.app"_s});
    EXPECT_EQ(document().logHandle(), nullptr);
    expectNoReport();
}

TEST_F(WorkingFolder, anItemThatCannotBeCopiedIsReportedInTheFileTwice)
{
    launchWithApp();
    failAt(u"copyItem"_s, u"Foo.app"_s, u"No space left on device"_s);
    EXPECT_FALSE(create(u"Foo.app"_s));
    const QString line = u"Failed to copy file to working folder '%1': No space left on device"_s.arg(
        host.item(u"Foo - Working"_s));
    expectReport(u"Cannot Copy File"_s, line);
    EXPECT_EQ(host.text(u"Foo - Working/Submission Log.txt"_s).count(line), 2);
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Working"_s, u"Foo.app"_s})) << "the folder keeps its name";
    expectUnharmed();
}

TEST_F(WorkingFolder, anItemThatHasGoneIsReported)
{
    launchWithApp();
    EXPECT_FALSE(create(u"Gone.app"_s));
    EXPECT_TRUE(errorLine().startsWith(
        u"Failed to copy file to working folder '%1': "_s.arg(host.item(u"Gone - Working"_s))));
    expectUnharmed();
}

// In a whole submission

TEST_F(WorkingFolder, ofASecondSubmissionSendsTheEarlierSubmittedFolderToTheTrash)
{
    launchWithApp();
    host.submit(host.item(u"Foo.app"_s));
    EXPECT_TRUE(host.files.trashed.isEmpty());
    document().staplingTimer()->invalidate();
    document().endWorkflow();
    items::makeFile(host.item(u"Foo - Submitted/mine.txt"_s), "mine");
    host.submit(host.item(u"Foo.app"_s));
    EXPECT_EQ(host.files.trashed, QStringList{host.item(u"Foo - Submitted"_s)});
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Submitted"_s, u"Foo.app"_s}));
    EXPECT_FALSE(host.listing(u"Foo - Submitted"_s).contains(u"mine.txt"_s));
}
