// Clearing attributes, locking scripts and signing what is inside the item.

#include "app/preferencekeys.h"
#include "platform/itempath.h"
#include "support/steptest.h"

#include <QFile>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

const QString identity = u"Example Corp (A1B2C3D4E5)"_s;

} // namespace

class SigningStepsTest : public StepTest {
protected:
    SigningStepsTest()
    {
        host.files.sortsListings = true;
        items::makeBundle(host.item(u"Foo.app"_s));
    }

    bool signMembers(bool skipMain = true)
    {
        return run([&] { return steps().signing.codesignMembersWithID(identity, skipMain); });
    }

    /// What has been signed, relative to the working copy.
    QStringList signedItems() const
    {
        QStringList items;
        for (const QStringList &line : host.tools.callsOf(u"codesign"_s))
            items.append(line.last().section(u"/Foo - Working/"_s, 1));
        return items;
    }

    QString script(const QString &app) const { return app + u"/Contents/Resources/Scripts/main.scpt"_s; }

    void addScript(const QString &app) { items::makeFile(host.item(script(app)), "script"); }

    static bool isLocked(const QString &path)
    {
        struct stat state = {};
        return stat(QFile::encodeName(path).constData(), &state) == 0 && (state.st_mode & 07777) == 0444;
    }

    QString logFile() const { return host.text(u"Foo - Working/Submission Log.txt"_s); }
};

// Attributes and scripts

TEST_F(SigningStepsTest, attributesAreClearedInTheCopy)
{
    makeWorkingCopy(u"Foo.app"_s);
    EXPECT_TRUE(run([&] { return steps().signing.clearXattrs(); }));
    EXPECT_EQ(host.log(LogStyle::bold).last(), u"Clearing extended attributes..."_s);
    EXPECT_EQ(
        host.tools.calls(),
        (QList<ToolCall>{{u"xattr"_s, {u"-r"_s, u"-c"_s, u"-s"_s, host.item(u"Foo - Working/Foo.app"_s)}}}));
    EXPECT_TRUE(logFile().contains(u"Result for /usr/bin/xattr -r -c -s "_s));
    expectNoReport();
}

TEST_F(SigningStepsTest, clearingAttributesLocksTheScriptOfWhateverHasOne)
{
    items::makeBundle(host.item(u"Foo.plugin"_s));
    addScript(u"Foo.plugin"_s);
    makeWorkingCopy(u"Foo.plugin"_s);
    EXPECT_TRUE(run([&] { return steps().signing.clearXattrs(); }));
    EXPECT_TRUE(isLocked(script(copy())));
    EXPECT_FALSE(isLocked(script(host.item(u"Foo.plugin"_s))));
}

struct XattrRow {
    const char *situation;
    QByteArray error;
    const char *line;
};

class AttributesFailure : public SigningStepsTest, public testing::WithParamInterface<XattrRow> { };

TEST_P(AttributesFailure, isReportedWithItsLikelyCause)
{
    addScript(u"Foo.app"_s);
    makeWorkingCopy(u"Foo.app"_s);
    host.tools.answer(u"xattr"_s, {.status = 1, .error = GetParam().error});
    EXPECT_FALSE(run([&] { return steps().signing.clearXattrs(); }));
    expectReport(u"Error Clearing Attributes"_s, QString::fromUtf8(GetParam().line));
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Failed"_s, u"Foo.app"_s}));
    EXPECT_FALSE(isLocked(script(copy())));
    EXPECT_TRUE(host.text(u"Foo - Failed/Submission Log.txt"_s).contains(u"\nTermination status: 1\n"_s));
    host.tools.answer(u"xattr"_s, {});
    expectUsableFor(u"Foo.app"_s);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, AttributesFailure,
    testing::Values(
        XattrRow{
            "aReadOnlyFile", "xattr: [Errno 13] Permission denied: 'a'",
            "Error # in xattr: xattr: [Errno 13] Permission denied: 'a'. A possible cause is that one or "
            "more files with extended attributes also have their permissions set to read-only."},
        XattrRow{"nothingSaid", "",
                 "Error # in xattr. . A possible cause is that one or more files with extended attributes "
                 "also have their permissions set to read-only."},
        XattrRow{"placeholdersInTheText", "%1 %2 %@",
                 "Error # in xattr: %1 %2 %@. A possible cause is that one or more files with extended "
                 "attributes also have their permissions set to read-only."}),
    [](const auto &row) { return row.param.situation; });

TEST_F(SigningStepsTest, lockingTheScriptIsToldInTheLogFile)
{
    addScript(u"Foo.app"_s);
    makeWorkingCopy(u"Foo.app"_s);
    EXPECT_TRUE(run([&] { return steps().signing.lockMainScpt(); }));
    EXPECT_TRUE(isLocked(script(copy())));
    EXPECT_TRUE(logFile().endsWith(u": Locking main.scpt: %1, result: 1\n"_s.arg(script(copy()))));
}

TEST_F(SigningStepsTest, aScriptThatCannotBeLockedIsOnlyTold)
{
    addScript(u"Foo.app"_s);
    makeWorkingCopy(u"Foo.app"_s);
    host.files.failure = [](const QString &operation, const QString &) {
        return operation == "setPermissions"_L1 ? u"not allowed"_s : QString();
    };
    EXPECT_TRUE(run([&] { return steps().signing.lockMainScpt(); }));
    EXPECT_TRUE(logFile().endsWith(u": Locking main.scpt: %1, result: 0\n"_s.arg(script(copy()))));
    expectNoReport();
}

TEST_F(SigningStepsTest, lockingIsNotToldWhereNoLogFileIsWanted)
{
    addScript(u"Foo.app"_s);
    makeWorkingCopy(u"Foo.app"_s);
    document().loggingToFile.set(false);
    EXPECT_TRUE(run([&] { return steps().signing.lockMainScpt(); }));
    EXPECT_TRUE(isLocked(script(copy())));
    EXPECT_FALSE(logFile().contains(u"Locking"_s));
}

TEST_F(SigningStepsTest, anAppWithoutAScriptHasNothingToLock)
{
    makeWorkingCopy(u"Foo.app"_s);
    EXPECT_TRUE(run([&] { return steps().signing.lockMainScpt(); }));
    EXPECT_FALSE(logFile().contains(u"Locking"_s));
}

TEST_F(SigningStepsTest, theScriptOfAnAppIsLockedTwiceAndThatOfAPluginOnce)
{
    addScript(u"Foo.app"_s);
    host.launch();
    host.submit(host.item(u"Foo.app"_s));
    EXPECT_EQ(host.text(u"Foo - Submitted/Submission Log.txt"_s).count(u"Locking main.scpt: "_s), 2);
    host.firePolls();
    items::makeBundle(host.item(u"Bar.plugin"_s));
    addScript(u"Bar.plugin"_s);
    host.submit(host.item(u"Bar.plugin"_s));
    EXPECT_EQ(host.text(u"Bar - Submitted/Submission Log.txt"_s).count(u"Locking main.scpt: "_s), 1);
}

// Members

TEST_F(SigningStepsTest, anAppWithNothingNestedIsLeftToItsOwnStep)
{
    makeWorkingCopy(u"Foo.app"_s);
    EXPECT_TRUE(signMembers());
    EXPECT_EQ(host.log(LogStyle::bold).last(), u"Examining contents..."_s);
    EXPECT_EQ(host.tools.order(), QStringList());
    EXPECT_TRUE(run([&] { return steps().signing.signAndCheckAppWithID(identity, true); }));
    EXPECT_EQ(signedItems(), QStringList{u"Foo.app"_s});
}

TEST_F(SigningStepsTest, withoutSkippingTheItemItselfIsSignedLast)
{
    makeWorkingCopy(u"Foo.app"_s);
    EXPECT_TRUE(signMembers(false));
    EXPECT_EQ(signedItems(), QStringList{u"Foo.app"_s});
    EXPECT_EQ(host.log(LogStyle::bold).last(), u"Signing '...'..."_s);
}

TEST_F(SigningStepsTest, membersAreSignedFromTheInsideOut)
{
    const QString framework = u"Foo.app/Contents/Frameworks/F.framework"_s;
    items::makeFramework(host.item(framework));
    items::makeBundle(host.item(framework + u"/Versions/A/Helpers/H.app"_s));
    items::makeFile(host.item(u"Foo.app/Contents/Frameworks/libx.dylib"_s), items::machO());
    items::makeBundle(host.item(u"Foo.app/Contents/PlugIns/P.plugin"_s));
    makeWorkingCopy(u"Foo.app"_s);
    EXPECT_TRUE(signMembers());
    EXPECT_EQ(
        signedItems(),
        (QStringList{u"Foo.app/Contents/PlugIns/P.plugin"_s, u"Foo.app/Contents/Frameworks/libx.dylib"_s,
                     framework + u"/Versions/A/Helpers/H.app"_s, framework + u"/Versions/A"_s}));
    EXPECT_EQ(host.log(LogStyle::bold).mid(1),
              (QStringList{u"Examining contents..."_s, u"Signing '.../Contents/PlugIns/P.plugin'..."_s,
                           u"Signing '.../Contents/Frameworks/libx.dylib'..."_s,
                           u"Signing '.../Contents/Frameworks/F.framework/Versions/A/Helpers/H.app'..."_s,
                           u"Signing '.../Contents/Frameworks/F.framework/Versions/A'..."_s}));
    EXPECT_EQ(
        logFile().count(u"Result for /usr/bin/codesign --force -o runtime --timestamp --entitlements "_s), 4);
}

TEST_F(SigningStepsTest, aMemberIsSignedWithTheSameEntitlementsAsTheItem)
{
    items::makeBundle(host.item(u"Foo.app/Contents/PlugIns/My P.plugin"_s));
    makeWorkingCopy(u"Foo.app"_s);
    EXPECT_TRUE(signMembers());
    EXPECT_EQ(host.tools.callsOf(u"codesign"_s),
              (QList<QStringList>{{u"--force"_s, u"-o"_s, u"runtime"_s, u"--timestamp"_s, u"--entitlements"_s,
                                   host.item(u"Foo - Working/Entitlements.plist"_s), u"--verbose=4"_s,
                                   u"-s"_s, u"Developer ID Application: Example Corp (A1B2C3D4E5)"_s,
                                   u"--digest-algorithm=sha1,sha256"_s,
                                   host.item(u"Foo - Working/Foo.app/Contents/PlugIns/My P.plugin"_s)}}));
}

TEST_F(SigningStepsTest, thePreferencesAreReadAtEachUse)
{
    items::makeBundle(host.item(u"Foo.app/Contents/PlugIns/P.plugin"_s));
    makeWorkingCopy(u"Foo.app"_s);
    host.preferences.setValue(key::prefCodesignDeep, true);
    EXPECT_TRUE(signMembers());
    host.preferences.setValue(key::prefCodesignForce, false);
    EXPECT_TRUE(run([&] { return steps().signing.signAndCheckAppWithID(identity, true); }));
    host.preferences.setValue(key::prefCodesignDeep, false);
    EXPECT_TRUE(run([&] { return steps().signing.signAndCheckAppWithID(identity, true); }));
    const auto lines = host.tools.callsOf(u"codesign"_s);
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines[0].mid(0, 3), (QStringList{u"--force"_s, u"--deep"_s, u"-o"_s}));
    EXPECT_EQ(lines[1].mid(0, 2), (QStringList{u"--deep"_s, u"-o"_s}));
    EXPECT_EQ(lines[2].mid(0, 2), (QStringList{u"-o"_s, u"runtime"_s}));
}

TEST_F(SigningStepsTest, pathsToSkipAreRelativeToTheItem)
{
    items::makeBundle(host.item(u"Foo.app/Contents/PlugIns/P.plugin"_s));
    items::makeBundle(host.item(u"Foo.app/Contents/PlugIns/Q.plugin"_s));
    makeWorkingCopy(u"Foo.app"_s);
    document().skipPaths.set({u"Contents/PlugIns/P.plugin"_s, u""_s, u"Contents/PlugIns/q.plugin"_s});
    EXPECT_TRUE(signMembers());
    EXPECT_EQ(signedItems(), QStringList{u"Foo.app/Contents/PlugIns/Q.plugin"_s});
}

TEST_F(SigningStepsTest, anItemWhoseExecutableIsMissingCostsItsFirstMember)
{
    items::makeBundle(host.item(u"Foo.app/Contents/Helpers/A.app"_s));
    items::makeBundle(host.item(u"Foo.app/Contents/Helpers/B.app"_s));
    ASSERT_TRUE(QFile::remove(host.item(u"Foo.app/Contents/MacOS/Foo"_s)));
    makeWorkingCopy(u"Foo.app"_s);
    EXPECT_TRUE(signMembers());
    EXPECT_EQ(signedItems(), QStringList{u"Foo.app/Contents/Helpers/B.app"_s}); // A was the first found
}

TEST_F(SigningStepsTest, theScriptsOfNestedAppsAreLocked)
{
    for (const QString &app : {u"Foo.app/Contents/Helpers/A.APP"_s, u"Foo.app/Contents/Helpers/B.plugin"_s}) {
        items::makeBundle(host.item(app));
        addScript(app);
    }
    makeWorkingCopy(u"Foo.app"_s);
    EXPECT_TRUE(signMembers());
    EXPECT_TRUE(isLocked(script(copy() + u"/Contents/Helpers/A.APP"_s)));
    EXPECT_FALSE(isLocked(script(copy() + u"/Contents/Helpers/B.plugin"_s)));
    EXPECT_EQ(logFile().count(
                  u"Locking main.scpt: %1, result: 1\n"_s.arg(script(copy() + u"/Contents/Helpers/A.APP"_s))),
              1);
}

TEST_F(SigningStepsTest, aFolderWithNothingSignableFails)
{
    items::makeFile(host.item(u"Foo/readme.txt"_s), "text");
    makeWorkingCopy(u"Foo"_s);
    EXPECT_FALSE(signMembers(false));
    expectReport(u"Error Signing Code"_s, u"No signable items found."_s);
    EXPECT_TRUE(host.listing().contains(u"Foo - Failed"_s));
    EXPECT_FALSE(host.listing().contains(u"Foo - Working"_s));
    EXPECT_EQ(host.tools.order(), QStringList());
}

TEST_F(SigningStepsTest, nothingSignableIsAFailureAlsoWhenTheItemWouldBeSkipped)
{
    items::makeFile(host.item(u"Empty.app/Contents/readme.txt"_s), "text");
    makeWorkingCopy(u"Empty.app"_s);
    EXPECT_FALSE(signMembers(true));
    expectReport(u"Error Signing Code"_s, u"No signable items found."_s);
}

struct MemberRow {
    const char *situation;
    ToolAnswer answer;
    const char *tail; ///< behind the item's path
};

class MemberFailure : public SigningStepsTest, public testing::WithParamInterface<MemberRow> { };

TEST_P(MemberFailure, stopsTheSigning)
{
    items::makeBundle(host.item(u"Foo.app/Contents/PlugIns/P.plugin"_s));
    items::makeBundle(host.item(u"Foo.app/Contents/PlugIns/Q.plugin"_s));
    items::makeBundle(host.item(u"Foo.app/Contents/PlugIns/R.plugin"_s));
    const QByteArray original = items::fingerprint(host.item(u"Foo.app"_s));
    makeWorkingCopy(u"Foo.app"_s);
    host.tools.answerRun(u"codesign"_s, 2, GetParam().answer);
    EXPECT_FALSE(signMembers());
    const QString item = host.item(u"Foo - Working/Foo.app/Contents/PlugIns/Q.plugin"_s);
    expectReport(u"Error Signing Code"_s,
                 u"Error # signing '"_s + item + u'\'' + QString::fromUtf8(GetParam().tail));
    EXPECT_EQ(signedItems(),
              (QStringList{u"Foo.app/Contents/PlugIns/R.plugin"_s, u"Foo.app/Contents/PlugIns/Q.plugin"_s}));
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Failed"_s, u"Foo.app"_s}));
    EXPECT_EQ(copy(), host.item(u"Foo - Failed/Foo.app"_s));
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
    expectUsableFor(u"Foo.app"_s);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, MemberFailure,
    testing::Values(
        MemberRow{"withAText", {.status = 1, .error = "no identity found"}, ": no identity found"},
        MemberRow{"withoutAText", {.status = 1}, "."},
        MemberRow{"withATextOnStandardOutputOnly", {.status = 3, .output = "elsewhere"}, "."},
        MemberRow{"bySignal", {.signal = 9}, "."},
        MemberRow{"notUTF8", {.status = 1, .error = "caf\xe9 %1 %2"}, ": caf\xc3\xa9 %1 %2"}),
    [](const auto &row) { return row.param.situation; });
