// The lookup of one request: what of its record is shown.

#include "notarization/requestinfotest.h"

using namespace Qt::StringLiterals;

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
