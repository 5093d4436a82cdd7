// Stapling by itself, in the background: the log file, the assessment and what becomes of its verdict.

#include "app/preferencekeys.h"
#include "notarization/stapleonlytest.h"
#include "notarization/stapleonlyworkflow.h"

using namespace Qt::StringLiterals;

namespace {

const QString seeLog = u"See the log for details."_s;
const QString rule(88, u'*');

struct TypeRow {
    const char *name;
    QString item;
    QString type;
};

class AssessmentType : public testing::TestWithParam<TypeRow> { };

struct VerdictRow {
    const char *name;
    QString text;
    bool isAccepted;
};

class AssessmentVerdict : public testing::TestWithParam<VerdictRow> { };

} // namespace

// The assessment, as values

TEST_P(AssessmentType, followsTheExtension)
{
    EXPECT_EQ(assessmentType(GetParam().item), GetParam().type);
}

INSTANTIATE_TEST_SUITE_P(Items, AssessmentType,
                         testing::Values(TypeRow{"app", u"/w/Foo.app"_s, u"execute"_s},
                                         TypeRow{"diskImage", u"/w/Foo.dmg"_s, u"open"_s},
                                         TypeRow{"upperCase", u"/w/Foo.DMG"_s, u"open"_s},
                                         TypeRow{"fmplugin", u"/w/Foo.fmplugin"_s, u"open"_s},
                                         TypeRow{"plugin", u"/w/Foo.plugin"_s, u"open"_s},
                                         TypeRow{"package", u"/w/Foo.pkg"_s, u"install"_s},
                                         TypeRow{"otherKind", u"/w/Foo.kext"_s, u"execute"_s},
                                         TypeRow{"noExtension", u"/w/Foo"_s, u"execute"_s}),
                         [](const auto &row) { return row.param.name; });

TEST_P(AssessmentVerdict, isReadAtALinesEnd)
{
    EXPECT_EQ(isAccepted(GetParam().text), GetParam().isAccepted);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, AssessmentVerdict,
    testing::Values(VerdictRow{"firstLine", u"/w/Foo.app: accepted\nsource=Any\n"_s, true},
                    VerdictRow{"laterLine", u"note\n/w/Foo.app: accepted\nmore"_s, true},
                    VerdictRow{"noLineEnd", u"/w/Foo.app: accepted"_s, true},
                    VerdictRow{"otherLineEnds", u"/w/Foo.app: accepted\r\nmore"_s, true},
                    VerdictRow{"unicodeLineEnd", u"/w/Foo.app: accepted\u2028more"_s, true},
                    VerdictRow{"midLine", u"/w/Foo.app: accepted by nobody\n"_s, false},
                    VerdictRow{"blankBehind", u"/w/Foo.app: accepted \n"_s, false},
                    VerdictRow{"noColon", u"accepted\n"_s, false},
                    VerdictRow{"noBlank", u"/w/Foo.app:accepted\n"_s, false},
                    VerdictRow{"otherLetters", u"/w/Foo.app: Accepted\n"_s, false},
                    VerdictRow{"rejected", u"/w/Foo.app: rejected\n"_s, false}),
    [](const auto &row) { return row.param.name; });

TEST(AssessmentFailure, hasTheReferenceForANumberAndNullForNoText)
{
    const SLWTaskResponse response(u"/usr/sbin/spctl"_s, {});
    EXPECT_EQ(assessmentFailureLine(response),
              u"Error %1 in spctl codesign verification: (null)"_s.arg(response.reference()));
}

// The run

TEST_F(StapleOnly, assessesTheItemAndThenStaplesIt)
{
    host.preferences.setValue(key::detailedLogToFile, false);
    staple(u"Elsewhere/Foo.app"_s);
    const QString item = host.item(u"Elsewhere/Foo.app"_s);
    EXPECT_EQ(host.tools.calls(),
              (QList<ToolCall>{{u"spctl"_s, {u"--assess"_s, u"--type"_s, u"execute"_s, u"-vv"_s, item}},
                               {u"stapler"_s, {u"stapler"_s, u"staple"_s, u"-v"_s, item}}}));
    EXPECT_EQ(host.log(LogStyle::bold),
              (QStringList{u"Checking code signature..."_s, u"Stapling succeeded."_s}));
    EXPECT_EQ(host.listing(), (QStringList{u"Elsewhere"_s, u"Foo - Submitted"_s}));
    EXPECT_EQ(host.listing(u"Elsewhere"_s), QStringList{u"Foo.app"_s});
    EXPECT_EQ(host.window().sheets.value(0).informativeText,
              u"The file 'Foo.app' is now ready for distribution."_s);
}

TEST_F(StapleOnly, namesTheKindOfUseByTheItem)
{
    const QHash<QString, QString> kinds{{u"Foo.pkg"_s, u"install"_s},
                                        {u"Foo.DMG"_s, u"open"_s},
                                        {u"Foo.plugin"_s, u"open"_s},
                                        {u"Foo.bundle"_s, u"execute"_s}};
    for (auto kind = kinds.begin(); kind != kinds.end(); ++kind) {
        host.tools.forgetCalls();
        items::makeFile(host.item(u"Elsewhere/"_s + kind.key()), "xar!");
        staple(u"Elsewhere/"_s + kind.key());
        host.window().answerSheet();
        EXPECT_EQ(host.tools.callsOf(u"spctl"_s).value(0).value(2), kind.value()) << kind.key().toStdString();
    }
}

TEST_F(StapleOnly, ofASubmissionFinishesItsFolder)
{
    items::makeBundle(host.item(u"Foo.app"_s), u"com.example.original"_s);
    choose(u"Foo - Submitted/Foo.app"_s);
    host.settle();
    EXPECT_EQ(host.listing(), (QStringList{u"Elsewhere"_s, u"Foo - Notarized"_s}));
    EXPECT_EQ(host.listing(u"Foo - Notarized"_s),
              (QStringList{u"Foo - Unmodified Original"_s, u"Foo.app"_s, u"Submission Log.txt"_s}));
    EXPECT_EQ(document().lastAction(), quint64(stapleAction));
}

TEST_F(StapleOnly, byAScriptAnswersWithTheItem)
{
    stapleByScript(u"Foo - Submitted/Foo.app"_s);
    ASSERT_TRUE(scriptReply);
    EXPECT_FALSE(scriptReply->isError());
    EXPECT_EQ(scriptReply->result.toUrl(), url(u"Foo - Notarized/Foo.app"_s));
    EXPECT_EQ(document().statusString(), u"ready"_s);
    EXPECT_FALSE(document().isBusy());
}

TEST_F(StapleOnly, byAScriptWithDialogsAnswersBeforeTheSheetIsDismissed)
{
    stapleByScript(u"Elsewhere/Foo.app"_s, true);
    ASSERT_TRUE(scriptReply);
    EXPECT_EQ(scriptReply->result.toUrl(), url(u"Elsewhere/Foo.app"_s));
    EXPECT_TRUE(host.window().sheet);
}

TEST_F(StapleOnly, byAScriptWithDiskImagesOnAndNothingEverUploadedAnswersWithTheItem)
{
    launched().useDiskImage.set(true);
    stapleByScript(u"Elsewhere/Foo.app"_s);
    ASSERT_TRUE(scriptReply);
    EXPECT_EQ(scriptReply->result.toUrl(), url(u"Elsewhere/Foo.app"_s));
}

TEST_F(StapleOnly, byAScriptWithDiskImagesOnAnswersWithWhatWasUploadedBefore)
{
    launched().useDiskImage.set(true);
    document().submitFilePath.set(u"/items/Bar - Submitted/Bar.dmg"_s);
    stapleByScript(u"Elsewhere/Foo.app"_s);
    ASSERT_TRUE(scriptReply);
    EXPECT_EQ(scriptReply->result.toUrl(), itempath::toUrl(u"/items/Bar - Submitted/Bar.dmg"_s));
}

// The log file

TEST_F(StapleOnly, beginsALogFileBesideTheItem)
{
    staple(u"Elsewhere/Foo.app"_s);
    const QString log = host.text(u"Elsewhere/Submission Log.txt"_s);
    EXPECT_TRUE(log.startsWith(u"14:03:22.123: \\"_s + rule + u"\nBeginning staple only of file at '"_s
                               + host.item(u"Elsewhere/Foo.app"_s) + u"'\n"_s + rule
                               + u"\n\n14:03:22.123: Checking code signature...\n"_s))
        << log.toStdString();
    EXPECT_TRUE(log.contains(u"Result for /usr/sbin/spctl --assess --type execute -vv "_s));
    EXPECT_TRUE(log.contains(u"Result for /usr/bin/xcrun stapler staple -v "_s));
    EXPECT_TRUE(log.endsWith(u"Stapling succeeded.\n"_s));
    EXPECT_EQ(document().logHandle(), nullptr);
}

TEST_F(StapleOnly, addsToTheLogFileThatIsThere)
{
    items::makeFile(host.item(u"Foo - Submitted/Submission Log.txt"_s), "from the submission\n");
    choose(u"Foo - Submitted/Foo.app"_s);
    host.settle();
    const QString log = host.text(u"Foo - Notarized/Submission Log.txt"_s);
    EXPECT_TRUE(log.startsWith(u"from the submission\n14:03:22.123: \\***"_s)) << log.toStdString();
    EXPECT_TRUE(log.endsWith(u"Stapling succeeded.\n"_s));
}

TEST_F(StapleOnly, withoutALogFileMakesNoneAndClosesTheOneThatIsOpen)
{
    launched().loggingToFile.set(true);
    host.openLog(document(), host.item(u"open.txt"_s), u"head"_s);
    host.preferences.setValue(key::detailedLogToFile, false);
    items::makeFile(host.item(u"Elsewhere/Submission Log.txt"_s), "earlier\n");
    staple(u"Elsewhere/Foo.app"_s);
    EXPECT_EQ(document().logHandle(), nullptr);
    EXPECT_EQ(host.text(u"open.txt"_s), u"14:03:22.123: head\n"_s);
    EXPECT_EQ(host.text(u"Elsewhere/Submission Log.txt"_s), u"earlier\n"_s);
}

TEST_F(StapleOnly, closesTheLogFileOfAnEarlierRunBeforeItBeginsItsOwn)
{
    launched().loggingToFile.set(true);
    host.openLog(document(), host.item(u"open.txt"_s), u"head"_s);
    const auto earlier = document().logHandle();
    staple(u"Elsewhere/Foo.app"_s);
    earlier->write("later");
    EXPECT_EQ(host.text(u"open.txt"_s), u"14:03:22.123: head\n"_s);
    EXPECT_TRUE(host.text(u"Elsewhere/Submission Log.txt"_s).contains(u"Stapling succeeded."_s));
}

TEST_F(StapleOnly, goesOnWithALogFileThatCannotBeMade)
{
    host.files.failure = [](const QString &operation, const QString &) {
        return operation == "createFile"_L1 ? u"read-only"_s : QString();
    };
    staple(u"Elsewhere/Foo.app"_s);
    EXPECT_EQ(host.listing(u"Elsewhere"_s), QStringList{u"Foo.app"_s});
    expectStapled(u"Elsewhere/Foo.app"_s);
    EXPECT_TRUE(host.log(LogStyle::error).isEmpty());
}

TEST_F(StapleOnly, goesOnWithALogFileThatCannotBeOpened)
{
    items::makeFolder(host.item(u"Elsewhere/Submission Log.txt"_s));
    staple(u"Elsewhere/Foo.app"_s);
    expectStapled(u"Elsewhere/Foo.app"_s);
    EXPECT_EQ(document().logHandle(), nullptr);
}

// The verdict

TEST_F(StapleOnly, whoseAssessmentFailsStaplesNothingAndRenamesNothing)
{
    host.tools.answer(u"spctl"_s, {.status = 3, .error = "Foo.app: rejected"});
    choose(u"Foo - Submitted/Foo.app"_s);
    host.settle();
    expectReport(u"Error Verifying Signing"_s, u"Error # in spctl codesign verification: Foo.app: rejected"_s,
                 seeLog);
    EXPECT_EQ(host.tools.order(), QStringList{u"spctl"_s});
    EXPECT_EQ(host.listing(), (QStringList{u"Elsewhere"_s, u"Foo - Submitted"_s}));
    EXPECT_EQ(host.listing(u"Foo - Submitted"_s), (QStringList{u"Foo.app"_s, u"Submission Log.txt"_s}));
    EXPECT_FALSE(document().isBusy());
    EXPECT_EQ(document().lastAction(), quint64(stapleAction));
    EXPECT_EQ(document().logHandle(), nullptr);
}

TEST_F(StapleOnly, whoseAssessmentFailsWithoutAWordSaysNull)
{
    host.tools.answer(u"spctl"_s, {.status = 3, .output = "told on the other stream"});
    staple(u"Elsewhere/Foo.app"_s);
    expectReport(u"Error Verifying Signing"_s, u"Error # in spctl codesign verification: (null)"_s, seeLog);
}

TEST_F(StapleOnly, whoseAssessmentFailsIsNotSavedByTheWordAccepted)
{
    host.tools.answer(u"spctl"_s, {.status = 1, .error = accepted});
    staple(u"Elsewhere/Foo.app"_s);
    EXPECT_EQ(host.window().sheets.value(0).messageText, u"Error Verifying Signing"_s);
    EXPECT_EQ(host.tools.order(), QStringList{u"spctl"_s});
}

TEST_F(StapleOnly, whoseAssessmentSaysNothingIsNotStapled)
{
    host.tools.answer(u"spctl"_s, {});
    staple(u"Elsewhere/Foo.app"_s);
    expectReport(u"Error Verifying Signing"_s, u"Error in spctl: returned 0 but no output received."_s,
                 seeLog);
    EXPECT_EQ(host.tools.order(), QStringList{u"spctl"_s});
}

TEST_F(StapleOnly, whoseAssessmentDoesNotAcceptIsNotStapled)
{
    host.tools.answer(u"spctl"_s, {.error = "Foo.app: accepted by nobody\nsource=None"});
    staple(u"Elsewhere/Foo.app"_s);
    expectReport(u"Error Verifying Code Signing"_s,
                 u"Code signing could not be verified: Foo.app: accepted by nobody\nsource=None"_s, seeLog);
    EXPECT_EQ(host.tools.order(), QStringList{u"spctl"_s});
    EXPECT_EQ(host.listing(), (QStringList{u"Elsewhere"_s, u"Foo - Submitted"_s}));
}

TEST_F(StapleOnly, readsTheVerdictFromStandardOutputIfThereIsAny)
{
    host.tools.answer(u"spctl"_s, {.output = "Foo.app: accepted\n", .error = "Foo.app: rejected\n"});
    staple(u"Elsewhere/Foo.app"_s);
    expectStapled(u"Elsewhere/Foo.app"_s);
}

TEST_F(StapleOnly, doesNotSeeAnAcceptanceBehindAnyTextOnStandardOutput)
{
    host.tools.answer(u"spctl"_s, {.output = "note", .error = accepted});
    staple(u"Elsewhere/Foo.app"_s);
    expectReport(u"Error Verifying Code Signing"_s, u"Code signing could not be verified: note"_s, seeLog);
}

namespace {

struct ScriptRow {
    const char *name;
    ToolAnswer assessment;
    qint64 number;
    QString text;
};

class StapleOnlyScript : public StapleOnly, public testing::WithParamInterface<ScriptRow> { };

} // namespace

TEST_P(StapleOnlyScript, isToldTheFailure)
{
    host.tools.answer(u"spctl"_s, GetParam().assessment);
    stapleByScript(u"Elsewhere/Foo.app"_s);
    ASSERT_TRUE(scriptReply);
    EXPECT_EQ(scriptReply->errorNumber, GetParam().number);
    EXPECT_TRUE(scriptReply->errorText.startsWith(GetParam().text)) << scriptReply->errorText.toStdString();
    EXPECT_TRUE(host.window().sheets.isEmpty());
    EXPECT_EQ(document().statusString(), u"ready"_s);
}

INSTANTIATE_TEST_SUITE_P(
    Verdicts, StapleOnlyScript,
    testing::Values(
        ScriptRow{"failure", {.status = 3, .error = "rejected"}, 1112, u"Error Verifying Signing: Error "_s},
        ScriptRow{"silence",
                  {},
                  1112,
                  u"Error Verifying Signing: Error in spctl: returned 0 but no output received."_s},
        ScriptRow{"noAcceptance",
                  {.error = "hm"},
                  1119,
                  u"Error Verifying Code Signing: Code signing could not be verified: hm"_s}),
    [](const auto &row) { return row.param.name; });

// Failures of the stapling

TEST_F(StapleOnly, ofASubmissionThatCannotBeStapledNamesItsFolderForIt)
{
    host.tools.answer(u"stapler"_s, {.status = 65});
    choose(u"Foo - Submitted/Foo.app"_s);
    host.settle();
    expectReport(u"Stapling Failed"_s, u"Error # running stapler."_s, seeLog);
    EXPECT_EQ(host.listing(), (QStringList{u"Elsewhere"_s, u"Foo - Failed"_s}));
    EXPECT_TRUE(host.listing(u"Foo - Failed"_s).contains(u"Foo.app"_s));
}

TEST_F(StapleOnly, elsewhereThatCannotBeStapledRenamesNothing)
{
    host.tools.answer(u"stapler"_s, {.status = 65});
    staple(u"Elsewhere/Foo.app"_s);
    EXPECT_EQ(host.window().sheets.value(0).messageText, u"Stapling Failed"_s);
    EXPECT_EQ(host.listing(), (QStringList{u"Elsewhere"_s, u"Foo - Submitted"_s}));
}
