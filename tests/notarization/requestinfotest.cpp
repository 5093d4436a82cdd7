// The lookup of one request: where its identifier comes from, and what of its record is shown.

#include "notarization/requestinfo.h"
#include "document/documentcommands.h"

#include "notarization/pollingsteps.h"
#include "platform/itempath.h"
#include "support/steptest.h"

using namespace Qt::StringLiterals;

namespace {

const QString infoTool = u"altool--notarization-info"_s;
const QString historyTool = u"altool--notarization-history"_s;
const QString logAddress = u"https://example.com/log.json"_s;
const QString uuid = u"01234567-89ab-cdef-0123-456789abcdef"_s;

QByteArray list(const QByteArray &entries)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + entries
        + "</dict></plist>\n";
}

QByteArray history(const QByteArray &items)
{
    return list("<key>notarization-history</key><dict><key>items</key>" + items + "</dict>");
}

QByteArray item(const QByteArray &identifier)
{
    return "<dict><key>RequestUUID</key><string>" + identifier + "</string></dict>";
}

} // namespace

// The clipboard's form

struct FormRow {
    const char *situation;
    const char *text;
    bool isAccepted = false;
};

class RequestUUIDForm : public testing::TestWithParam<FormRow> { };

TEST_P(RequestUUIDForm, isExact)
{
    EXPECT_EQ(isRequestUUID(QString::fromUtf8(GetParam().text)), GetParam().isAccepted);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, RequestUUIDForm,
    testing::Values(FormRow{"digitsAndLowerCase", "01234567-89ab-cdef-0123-456789abcdef", true},
                    FormRow{"theLettersGAndH", "gggggggg-hhhh-gghh-hhgg-ghghghghghgh", true},
                    FormRow{"theLetterI", "iggggggg-hhhh-gghh-hhgg-ghghghghghgh"},
                    FormRow{"upperCase", "01234567-89AB-CDEF-0123-456789ABCDEF"},
                    FormRow{"oneUpperCaseLetter", "01234567-89ab-cdef-0123-456789abcdeF"},
                    FormRow{"aLineEndBehind", "01234567-89ab-cdef-0123-456789abcdef\n"},
                    FormRow{"aBlankInFront", " 01234567-89ab-cdef-0123-456789abcdef"},
                    FormRow{"withoutHyphens", "0123456789abcdef0123456789abcdef"},
                    FormRow{"fourParts", "01234567-89ab-cdef-0123456789abcdef"},
                    FormRow{"sixParts", "01234567-89ab-cdef-0123-456789ab-cdef"},
                    FormRow{"aHyphenBehind", "01234567-89ab-cdef-0123-456789abcdef-"},
                    FormRow{"otherLengths", "0123456-789ab-cdef-0123-456789abcdef"},
                    FormRow{"inBraces", "{01234567-89ab-cdef-0123-456789abcdef}"},
                    FormRow{"digitsOfAnotherScript",
                            "\xd9\xa0"
                            "1234567-89ab-cdef-0123-456789abcdef"},
                    FormRow{"empty", ""}, FormRow{"nothing", nullptr}),
    [](const auto &row) { return row.param.situation; });

// The newest entry

struct NewestRow {
    const char *situation;
    QByteArray history;
    const char *identifier; ///< null: there is none
};

class NewestRequest : public testing::TestWithParam<NewestRow> { };

TEST_P(NewestRequest, isTheFirstItem)
{
    const auto identifier = newestRequestUUID(QString::fromUtf8(GetParam().history));
    ASSERT_EQ(identifier.has_value(), GetParam().identifier != nullptr);
    if (identifier) {
        EXPECT_EQ(*identifier, QString::fromUtf8(GetParam().identifier));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, NewestRequest,
    testing::Values(
        NewestRow{"ofTwo", history("<array>" + item("b-2") + item("a-1") + "</array>"), "b-2"},
        NewestRow{"ofAnyForm", history("<array>" + item(" \xc3\xbc ") + "</array>"), " \xc3\xbc "},
        NewestRow{"empty", history("<array>" + item("") + "</array>"), ""},
        NewestRow{"noItems", history("<array/>"), nullptr},
        NewestRow{"firstItemWithoutIdentifier", history("<array><dict/>" + item("a-1") + "</array>"),
                  nullptr},
        NewestRow{"anItemThatIsNoDictionary", history("<array><string>a-1</string></array>"), nullptr},
        NewestRow{"anIdentifierThatIsNoText",
                  history("<array><dict><key>RequestUUID</key><integer>5</integer></dict></array>"), nullptr},
        NewestRow{"itemsThatAreNoArray", history(item("a-1")), nullptr},
        NewestRow{"noHistory", list("<key>items</key><array>" + item("a-1") + "</array>"), nullptr},
        NewestRow{"cutOff", history("<array>" + item("a-1") + "</array>").chopped(20), nullptr},
        NewestRow{"plainText", "No items found.\n", nullptr}, NewestRow{"nothing", "", nullptr}),
    [](const auto &row) { return row.param.situation; });

TEST(LookupFailureLine, showsTheReferenceWhereAFailedPollShowsTheStatus)
{
    const auto response = SLWTaskResponse::responseWithPath(u"/usr/bin/xcrun"_s, {});
    response->status.set(239);
    EXPECT_EQ(withoutReference(lookupFailureLine(*response)), u"Error # fetching info."_s);
    EXPECT_EQ(queryFailureLine(*response), u"Error 239 fetching info."_s);
    response->setData(std::make_shared<OutputBuffer>(QByteArray("out")),
                      std::make_shared<OutputBuffer>(QByteArray("err")));
    EXPECT_EQ(withoutReference(lookupFailureLine(*response)), u"Error # fetching info: err"_s);
    EXPECT_EQ(lookupFailureLine(*response),
              u"Error %1 fetching info: err"_s.arg(reinterpret_cast<qint64>(response.get())));
    EXPECT_EQ(queryFailureLine(*response), u"Error 239 fetching info: err"_s);
}

// The commands and the job

class RequestInfoTest : public StepTest {
protected:
    RequestInfoTest()
    {
        host.launch();
        isLaunched = true;
        beepsAtStart = host.applicationHost.beeps;
        host.tools.answer(infoTool, {.output = FakeTools::infoReport(u"in progress"_s)});
    }

    void lookUp(const QString &identifier = uuid)
    {
        commands().requestInfo.infoForRequestUUID(identifier);
        host.settle();
    }

    void lookUpLastUpload()
    {
        document().perform(Action::doInfoForUUIDOfLastUpload);
        host.settle();
    }

    void lookUpInFile(const QByteArray &contents)
    {
        const QString path = host.item(u"RequestUUID.txt"_s);
        items::makeFile(path, contents);
        document().perform(Action::doInfoForUUIDInFile);
        host.window().choose(itempath::toUrl(path));
        host.settle();
    }

    /// Answers the lookup with a report of that status, and names a log that has these contents.
    QString answerWithLog(const QString &status, const QByteArray &log)
    {
        const QByteArray report = FakeTools::infoReport(status, logAddress);
        host.tools.answer(infoTool, {.output = report});
        host.urls.contents.insert(QUrl(logAddress), log);
        return QString::fromUtf8(report);
    }

    /// Leaves marks of work that only an end that clears them takes away.
    void markBusy()
    {
        document().isBusy.set(true);
        document().isSubmitting.set(true);
        document().progressIndicator.startAnimation();
    }

    QString askedFor() { return host.tools.callsOf(infoTool).value(0).value(2); }

    void expectIdle()
    {
        EXPECT_EQ(document().statusString(), u"ready"_s);
        EXPECT_FALSE(document().isBusy());
        EXPECT_FALSE(document().isSubmitting());
        EXPECT_FALSE(document().progressIndicator.isAnimating());
    }

    const QString heading = u"Fetching notarizing info for Request UUID %1...\n"_s.arg(uuid);
    int beepsAtStart;
};

// From the clipboard

class RefusedClipboard : public RequestInfoTest, public testing::WithParamInterface<FormRow> { };

TEST_P(RefusedClipboard, isABeepAndNothingElse)
{
    host.pasteboard.text = QString::fromUtf8(GetParam().text);
    document().logStringMain(u"kept"_s, false);
    document().perform(Action::doInfoForUUIDOnClipboard);
    host.settle();
    EXPECT_EQ(host.applicationHost.beeps, beepsAtStart + 1);
    EXPECT_EQ(host.log(), QStringList{u"kept"_s});
    EXPECT_TRUE(host.window().sheets.isEmpty());
    EXPECT_TRUE(host.window().subtitles.isEmpty());
    EXPECT_EQ(host.window().editsEnded, 0);
    EXPECT_TRUE(host.tools.calls().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Rows, RefusedClipboard,
                         testing::Values(FormRow{"withoutText", nullptr}, FormRow{"empty", ""},
                                         FormRow{"upperCase", "01234567-89AB-CDEF-0123-456789ABCDEF"},
                                         FormRow{"aLineEndBehind", "01234567-89ab-cdef-0123-456789abcdef\n"},
                                         FormRow{"otherLengths", "0123456-789ab-cdef-0123-456789abcdef"}),
                         [](const auto &row) { return row.param.situation; });

TEST_F(RequestInfoTest, ofTheClipboardAsksForWhatStandsThere)
{
    host.pasteboard.text = uuid;
    document().perform(Action::doInfoForUUIDOnClipboard);
    host.settle();
    EXPECT_EQ(host.tools.calls(),
              (QList<ToolCall>{{infoTool,
                                {u"altool"_s, u"--notarization-info"_s, uuid, u"-u"_s, u"dev@example.com"_s,
                                 u"-p"_s, u"@keychain:notary"_s}}}));
    expectIdle();
}

TEST_F(RequestInfoTest, ofTheClipboardLeavesTheLettersGAndHToTheService)
{
    host.pasteboard.text = u"gggggggg-hhhh-gghh-hhgg-ghghghghghgh"_s;
    document().perform(Action::doInfoForUUIDOnClipboard);
    host.settle();
    EXPECT_EQ(askedFor(), u"gggggggg-hhhh-gghh-hhgg-ghghghghghgh"_s);
}

// From a file

TEST_F(RequestInfoTest, ofAFileAsksForIt)
{
    document().perform(Action::doInfoForUUIDInFile);
    ASSERT_TRUE(host.window().panel);
    const platform::OpenPanel panel = host.window().panel->panel;
    EXPECT_EQ(panel.message, u"Choose the RequestUUID.txt file"_s);
    EXPECT_EQ(panel.allowedFileTypes, QStringList{u"txt"_s});
    EXPECT_TRUE(panel.canChooseFiles);
    EXPECT_FALSE(panel.canChooseDirectories);
    EXPECT_TRUE(panel.shouldEnable(QUrl(u"file:///a/RequestUUID.txt"_s)));
    EXPECT_FALSE(panel.shouldEnable(QUrl(u"file:///a/notes.txt"_s)));
    EXPECT_EQ(document().statusString(), u"interacting"_s);
    EXPECT_FALSE(document().isBusy());
}

TEST_F(RequestInfoTest, ofAFileThatIsNotChosenLeavesTheDocumentIdle)
{
    document().perform(Action::doInfoForUUIDInFile);
    markBusy();
    host.window().choose({});
    host.settle();
    expectIdle();
    EXPECT_EQ(host.applicationHost.beeps, beepsAtStart);
    EXPECT_TRUE(host.tools.calls().isEmpty());
}

TEST_F(RequestInfoTest, ofAFileTrimsItsContents)
{
    lookUpInFile(" " + uuid.toUtf8() + "\r\n");
    EXPECT_EQ(askedFor(), uuid);
    expectIdle();
}

TEST_F(RequestInfoTest, ofAFileDoesNotLookAtTheForm)
{
    lookUpInFile("NOT an identifier\n");
    EXPECT_EQ(askedFor(), u"NOT an identifier"_s);
}

TEST_F(RequestInfoTest, ofAnEmptyFileAsksForAnEmptyIdentifier)
{
    for (const QByteArray &contents : {QByteArray(""), QByteArray(" \n")}) {
        host.tools.forgetCalls();
        lookUpInFile(contents);
        EXPECT_EQ(host.tools.order(), QStringList{infoTool}) << "and not for the newest request";
        EXPECT_EQ(host.tools.callsOf(infoTool).value(0).mid(1, 3),
                  (QStringList{u"--notarization-info"_s, u""_s, u"-u"_s}));
    }
}

TEST_F(RequestInfoTest, ofAFileThatIsGoneIsABeepAndLeavesTheDocumentIdle)
{
    document().perform(Action::doInfoForUUIDInFile);
    markBusy();
    host.window().choose(itempath::toUrl(host.item(u"gone/RequestUUID.txt"_s)));
    host.settle();
    EXPECT_EQ(host.applicationHost.beeps, beepsAtStart + 1);
    EXPECT_EQ(host.window().subtitles, (QStringList{u"interacting"_s, u"fetching"_s, u"ready"_s}));
    expectIdle();
    expectNoReport();
    EXPECT_TRUE(host.tools.calls().isEmpty());
}

TEST_F(RequestInfoTest, ofAFileThatIsNoUtf8IsABeepAndLeavesTheDocumentIdle)
{
    markBusy();
    lookUpInFile(uuid.toUtf8() + "\xff\xfe");
    EXPECT_EQ(host.applicationHost.beeps, beepsAtStart + 1);
    expectIdle();
    EXPECT_TRUE(host.tools.calls().isEmpty());
}

TEST_F(RequestInfoTest, whosePanelIsUpWhenTheDocumentClosesLeavesNothingBehind)
{
    host.application().newDocument(0);
    const std::weak_ptr<MainWinController> watched = document().weak_from_this();
    document().perform(Action::doInfoForUUIDInFile);
    host.window().performClose();
    host.settle();
    EXPECT_TRUE(watched.expired());
}

// From the history

TEST_F(RequestInfoTest, ofTheLastUploadTakesTheFirstItemOfTheHistory)
{
    document().providerNameField.setStringValue(u"Team1"_s);
    host.tools.answer(historyTool, {.output = history("<array>" + item("b-2") + item("a-1") + "</array>")});
    lookUpLastUpload();
    EXPECT_EQ(host.tools.calls(),
              (QList<ToolCall>{
                  {historyTool,
                   {u"altool"_s, u"--notarization-history"_s, u"0"_s, u"-u"_s, u"dev@example.com"_s, u"-p"_s,
                    u"@keychain:notary"_s, u"--asc-provider"_s, u"Team1"_s, u"--output-format"_s, u"xml"_s}},
                  {infoTool,
                   {u"altool"_s, u"--notarization-info"_s, u"b-2"_s, u"-u"_s, u"dev@example.com"_s, u"-p"_s,
                    u"@keychain:notary"_s, u"--asc-provider"_s, u"Team1"_s}}}));
    EXPECT_EQ(host.log(LogStyle::bold),
              (QStringList{u"\nFetching notarizing history..."_s,
                           u"Fetching notarizing info for Request UUID b-2...\n"_s}));
    EXPECT_EQ(host.log().size(), 3) << "the history itself is not shown";
    expectIdle();
}

TEST_F(RequestInfoTest, ofTheLastUploadOfAnAccountWithoutAnyIsNotFound)
{
    const QByteArray reply = history("<array/>");
    host.tools.answer(historyTool, {.output = reply});
    lookUpLastUpload();
    expectReport(u"Request UUID Not Found"_s, u"Unable to parse history:\n"_s + QString::fromUtf8(reply));
    EXPECT_EQ(host.tools.order(), QStringList{historyTool});
    EXPECT_FALSE(document().isBusy());
}

TEST_F(RequestInfoTest, ofTheLastUploadWithAnEmptyReplyIsNotFound)
{
    host.tools.answer(historyTool, {.error = "a warning"});
    lookUpLastUpload();
    expectReport(u"Request UUID Not Found"_s, u"Unable to parse history:\n(null)"_s);
}

struct HistoryFailureRow {
    const char *situation;
    ToolAnswer answer;
    QString reason;
    QString shownError;
};

class FailedHistory : public RequestInfoTest, public testing::WithParamInterface<HistoryFailureRow> { };

TEST_P(FailedHistory, endsTheLookup)
{
    host.tools.answer(historyTool, GetParam().answer);
    lookUpLastUpload();
    expectReport(
        u"Cannot Fetch History"_s,
        u"%1\nError message: %2\nCheck that both the app-specific pasword and Apple ID are correct."_s.arg(
            GetParam().reason, GetParam().shownError));
    EXPECT_EQ(host.tools.order(), QStringList{historyTool});
    EXPECT_FALSE(document().isBusy());
    host.window().answerSheet();
    EXPECT_EQ(document().statusString(), u"ready"_s);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, FailedHistory,
    testing::Values(
        HistoryFailureRow{
            "aKeychainItemThatDoesNotExist",
            {.status = 1, .error = "Oops. The specified item could not be found in the keychain."},
            u"Invalid Apple ID, or invalid key for app-specific password in login keychain."_s,
            u"Oops. The specified item could not be found in the keychain."_s},
        HistoryFailureRow{
            "anotherProblem",
            {.status = 3, .error = "Unable to authenticate."},
            u"Unknown problem using altool. Check that the app-specific pasword, Apple ID, and team provider name are correct."_s,
            u"Unable to authenticate."_s},
        HistoryFailureRow{"nothingOnStandardError",
                          {.status = 1, .output = "Unable to authenticate."},
                          u"Invalid Apple ID, or invalid key for app-specific password in login keychain."_s,
                          u"(null)"_s}),
    [](const auto &row) { return row.param.situation; });

// The record

TEST_F(RequestInfoTest, inProgressShowsTheReportAndNoLog)
{
    const QString report = answerWithLog(u"In Progress"_s, "{}");
    lookUp();
    EXPECT_EQ(host.log(LogStyle::bold), QStringList{heading});
    EXPECT_EQ(host.log(LogStyle::plain), QStringList{report});
    EXPECT_TRUE(host.urls.asked.isEmpty());
    expectNoReport();
    expectIdle();
}

TEST_F(RequestInfoTest, approvedShowsTheReportAndTheWholeLog)
{
    const QString report = answerWithLog(u"success"_s, "{\"issues\": [{\"a\": \"ü\"}]}\n");
    lookUp();
    EXPECT_EQ(
        host.log(),
        (QStringList{heading, report, u"Contents of LogFileURL:"_s, u"{\"issues\": [{\"a\": \"ü\"}]}\n"_s}));
    EXPECT_EQ(host.log(LogStyle::bold), (QStringList{heading, u"Contents of LogFileURL:"_s}));
    EXPECT_EQ(host.urls.asked, QList<QUrl>{QUrl(logAddress)});
    expectNoReport();
    expectIdle();
}

TEST_F(RequestInfoTest, approvedWithoutALogShowsTheReportAlone)
{
    host.tools.answer(infoTool, {.output = FakeTools::infoReport(u"success"_s)});
    lookUp();
    EXPECT_EQ(host.log(LogStyle::bold), QStringList{heading});
    EXPECT_EQ(host.log(LogStyle::plain).size(), 1);
    EXPECT_TRUE(host.urls.asked.isEmpty());
    expectIdle();
}

TEST_F(RequestInfoTest, approvedWithALogThatCannotBeReadSaysNothingOfIt)
{
    host.tools.answer(infoTool, {.output = FakeTools::infoReport(u"success"_s, logAddress)});
    lookUp();
    EXPECT_EQ(host.urls.asked.size(), 1);
    EXPECT_EQ(host.log().size(), 2);
    expectNoReport();
    expectIdle();
}

TEST_F(RequestInfoTest, approvedWithALogThatIsNoUtf8SaysNothingOfIt)
{
    answerWithLog(u"success"_s, "\xff\xfe{}");
    lookUp();
    EXPECT_EQ(host.log().size(), 2);
    expectIdle();
}

TEST_F(RequestInfoTest, refusedShowsTheReportAsAnErrorAndTheLogWithoutADialog)
{
    const QString report = answerWithLog(u"invalid"_s, "why\n");
    lookUp();
    EXPECT_EQ(
        host.log(),
        (QStringList{heading, report, u"Contents of LogFileURL:"_s, u"why\n"_s, u"Notarization Failed"_s}));
    EXPECT_EQ(host.log(LogStyle::error), QStringList{report});
    EXPECT_EQ(host.log(LogStyle::bold),
              (QStringList{heading, u"Contents of LogFileURL:"_s, u"Notarization Failed"_s}));
    EXPECT_TRUE(host.window().sheets.isEmpty());
    expectIdle();
}

TEST_F(RequestInfoTest, refusedWithoutALogDoesNotSayThatItFailed)
{
    host.tools.answer(infoTool, {.output = FakeTools::infoReport(u"invalid"_s, logAddress)});
    lookUp();
    EXPECT_EQ(host.log(LogStyle::bold), QStringList{heading});
    EXPECT_EQ(host.log(LogStyle::error).size(), 1);
    expectIdle();
}

TEST_F(RequestInfoTest, withoutAStatusLineShowsTheReportAsAnError)
{
    host.tools.answer(infoTool, {.output = "everything fine\n"});
    lookUp();
    EXPECT_EQ(host.log(LogStyle::error), QStringList{u"everything fine\n"_s});
    EXPECT_TRUE(host.window().sheets.isEmpty());
    expectIdle();
}

TEST_F(RequestInfoTest, takesAReportOnStandardErrorWhereThereIsNoOther)
{
    host.tools.answer(infoTool, {.error = "Status: in progress"});
    lookUp();
    EXPECT_EQ(host.log(LogStyle::plain), QStringList{u"Status: in progress"_s});
    expectNoReport();
}

TEST_F(RequestInfoTest, withoutAnyTextAsksToTryAgainAndShowsNoDialog)
{
    host.tools.answer(infoTool, {});
    lookUp();
    EXPECT_EQ(
        host.log(LogStyle::bold),
        (QStringList{heading,
                     u"Fetching notarizing info for Request UUID %1 failed. Try again.\n"_s.arg(uuid)}));
    EXPECT_EQ(host.log().size(), 2);
    expectNoReport();
    expectIdle();
}

struct InfoFailureRow {
    const char *situation;
    ToolAnswer answer;
    QString line;
};

class FailedInfo : public RequestInfoTest, public testing::WithParamInterface<InfoFailureRow> { };

TEST_P(FailedInfo, endsTheLookupAtOnce)
{
    host.tools.answer(infoTool, GetParam().answer);
    lookUp();
    expectReport(u"Failed to Retrieve Info"_s, GetParam().line);
    EXPECT_EQ(host.tools.callsOf(infoTool).size(), 1);
    EXPECT_TRUE(host.timers.armed().isEmpty());
    EXPECT_FALSE(document().isBusy());
    EXPECT_FALSE(document().progressIndicator.isAnimating());
    host.window().answerSheet();
    expectIdle();
}

INSTANTIATE_TEST_SUITE_P(Rows, FailedInfo,
                         testing::Values(InfoFailureRow{"withAText",
                                                        {.status = 1, .error = "no network"},
                                                        u"Error # fetching info: no network"_s},
                                         InfoFailureRow{"withoutAText",
                                                        {.status = 1, .output = "Status: success"},
                                                        u"Error # fetching info."_s},
                                         InfoFailureRow{
                                             "ofAnUnknownRequest",
                                             {.status = 239, .error = "Could not find the RequestUUID."},
                                             u"Error # fetching info: Could not find the RequestUUID."_s}),
                         [](const auto &row) { return row.param.situation; });

TEST_F(RequestInfoTest, clearsTheFlagsOfAScriptAtItsEndAndNoOthers)
{
    document().isScripted.set(true);
    document().suppressDialogs.set(true);
    document().isPolling.set(true);
    lookUp();
    EXPECT_FALSE(document().isScripted());
    EXPECT_FALSE(document().suppressDialogs());
    EXPECT_TRUE(document().isPolling());
    document().isPolling.set(false);
}

TEST_F(RequestInfoTest, whoseLogHasTheAddressNullSaysNothingOfIt)
{
    host.tools.answer(infoTool, {.output = FakeTools::infoReport(u"success"_s, u"(null)"_s)});
    lookUp();
    EXPECT_FALSE(host.log().contains(u"Contents of LogFileURL:"_s));
    expectIdle();
}

TEST_F(RequestInfoTest, afterACancelThatNobodyUsedUpSwallowsItsFailureAndStaysBusy)
{
    host.tools.answer(infoTool, {.status = 1, .error = "refused"});
    document().cancelPressed.set(true);
    lookUp();
    EXPECT_TRUE(host.window().sheets.isEmpty());
    EXPECT_TRUE(host.log(LogStyle::error).isEmpty());
    EXPECT_TRUE(document().isBusy());
    EXPECT_EQ(document().statusString(), u"fetching"_s);
    EXPECT_FALSE(document().cancelPressed());
    lookUp();
    EXPECT_EQ(host.window().sheets.value(0).messageText, u"Failed to Retrieve Info"_s);
    EXPECT_FALSE(document().isBusy());
}
