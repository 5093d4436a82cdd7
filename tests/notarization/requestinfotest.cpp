// The lookup of one request: where its identifier comes from.

#include "notarization/requestinfotest.h"

using namespace Qt::StringLiterals;

namespace {

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
