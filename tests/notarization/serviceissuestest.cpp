// The issues that the service's log tells of a submission that it accepts.

#include "notarization/pollingtest.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

class Issues : public Polling {
protected:
    /// The log of a submission whose service log has these bytes.
    void finishWithLog(const QByteArray &serviceLog)
    {
        waitWithLog(serviceLog);
        poll();
        EXPECT_EQ(host.listing(), QStringList{u"Foo - Notarized"_s});
    }

    void waitWithLog(const QByteArray &serviceLog)
    {
        const QString url = u"https://example.com/log.json"_s;
        host.urls.contents.insert(QUrl(url), serviceLog);
        host.tools.answer(infoTool, reply(FakeTools::infoReport(u"success"_s, url)));
        wait();
    }

    const QString heading =
        u"Apple's servers reported one or more issues with this submission, which may or may not affect how it is treated by Gatekeeper. It will still be notarized, but you should check the result carefully before distributing it. Here is a summary of the issues:"_s;
};

TEST_F(Issues, areSummedUpUnderTheirHeading)
{
    finishWithLog(R"({"issues": [{"severity": "warning", "path": "Foo.app", "code": 7},
                                 {"message": "unsigned"}]})");
    EXPECT_TRUE(host.log(LogStyle::bold).contains(heading));
    EXPECT_EQ(
        host.log(LogStyle::error),
        QStringList{u"\npath: Foo.app\nseverity: warning\n----------\nmessage: unsigned\n----------"_s});
}

TEST_F(Issues, stayWithTheDocumentAsTheServiceToldThem)
{
    finishWithLog(R"({"issues": [{"severity": "warning", "path": "Foo.app", "code": 7}]})");
    const QJsonArray issues = QJsonDocument::fromJson(host.document().serviceIssues().toUtf8()).array();
    ASSERT_EQ(issues.size(), 1);
    EXPECT_EQ(issues.first().toObject().value("path"_L1).toString(), u"Foo.app"_s);
    EXPECT_EQ(issues.first().toObject().value("code"_L1).toInt(), 7);
}

TEST_F(Issues, asAnEmptyArrayLogTheHeadingAndAnEmptyEntry)
{
    finishWithLog(R"({"issues": []})");
    EXPECT_TRUE(host.log(LogStyle::bold).contains(heading));
    EXPECT_EQ(host.log(LogStyle::error), QStringList{u""_s});
}

TEST_F(Issues, asNullLogNothing)
{
    finishWithLog(R"({"issues": null})");
    EXPECT_FALSE(host.log(LogStyle::bold).contains(heading));
    EXPECT_TRUE(host.log(LogStyle::error).isEmpty());
}

TEST_F(Issues, withNumbersAndNestedObjectsAloneGiveTheSeparatorLineAlone)
{
    finishWithLog(R"({"issues": [{"code": 7, "inner": {"a": "b"}}]})");
    EXPECT_EQ(host.log(LogStyle::error), QStringList{u"\n----------"_s});
}

TEST_F(Issues, withoutAnyEntryGiveTheSeparatorLineAsWell)
{
    finishWithLog(R"({"issues": [{}, {"message": "unsigned"}]})");
    EXPECT_EQ(host.log(LogStyle::error), QStringList{u"\n----------\nmessage: unsigned\n----------"_s});
}

TEST_F(Issues, inALogThatIsNoJsonAreNone)
{
    finishWithLog("<html>");
    EXPECT_TRUE(host.log(LogStyle::error).isEmpty());
}

TEST_F(Issues, standWithTheFullContentsInAnyOpenLogFileAndNeverInTheWindow)
{
    waitWithLog(R"({"issues": null})");
    host.document().loggingToFile.set(false); // the file stays open
    poll();
    EXPECT_EQ(fileLines(u"Foo - Notarized"_s, u"LogFileURL full contents: {\"issues\": null}"_s).size(), 1);
    EXPECT_TRUE(host.log().filter(u"LogFileURL"_s).isEmpty());
}

TEST_F(Issues, inALogThatFailsToLoadDoesNotStopStaplingAndSaysNothing)
{
    host.tools.answer(infoTool,
                      reply(FakeTools::infoReport(u"success"_s, u"https://example.com/gone.json"_s)));
    wait();
    poll();
    EXPECT_EQ(host.urls.asked, QList<QUrl>{QUrl(u"https://example.com/gone.json"_s)});
    EXPECT_EQ(host.listing(), QStringList{u"Foo - Notarized"_s});
    EXPECT_TRUE(host.log(LogStyle::error).isEmpty());
    EXPECT_EQ(host.log(LogStyle::bold).mid(host.log(LogStyle::bold).size() - 2),
              (QStringList{u"The submission has been notarized and will now be stapled..."_s,
                           u"Stapling succeeded."_s}));
}
